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

// While it lives, allocations of this size fail.
class refused_memory {
 public:
  explicit refused_memory(size_t size);
  refused_memory(const refused_memory&) = delete;
  refused_memory& operator=(const refused_memory&) = delete;
  ~refused_memory();
};

// No monitor runs when a test begins, none when it ends.
class MonitorTest : public AgentTest {
 protected:
  void SetUp() override;
  void TearDown() override;

  static int start(int type, int interval_ms);
  static int stop(int type);

  // The packet, without times, after one tick of `proc` on this text.
  static std::string packet_after(int (*proc)(void*), const std::string& old_text);
};

}  // namespace orv_test

#endif
