// What a test of the monitors sees and refuses besides the agent probe: timers and memory.
#ifndef ORV_TESTS_MONITOR_MONITOR_PROBE_H
#define ORV_TESTS_MONITOR_MONITOR_PROBE_H

#include <orv/command.h>
#include <orv/monitor.h>
#include <orv/protocol.h>

#include <string>
#include <vector>

#include "agent_probe.h"

namespace orv_test {

// Intervals of the timers that were registered since the last call, in milliseconds.
std::vector<unsigned> take_intervals();

// From now on, in this test, allocations of this size fail, all but the first `granted`; of 0,
// none.
void refuse_memory(size_t size, int granted = 0);

// No monitor runs when a test begins, none when it ends.
class MonitorTest : public AgentTest {
 protected:
  void SetUp() override;
  void TearDown() override;

  static int start(int type, int interval_ms);
  static int stop(int type);

  explicit MonitorTest(int (*proc)(void*) = nullptr) : proc_{proc} {}

  // The packet, without times, after one tick of the monitor on this text.
  std::string packet_after(const std::string& old_text) const;

 private:
  int (*proc_)(void*);
};

}  // namespace orv_test

#endif
