// Injecting, as the dispatcher would have it, and what came of it.
#ifndef ORV_TESTS_INPUT_INJECTION_PROBE_H
#define ORV_TESTS_INPUT_INJECTION_PROBE_H

#include <orv/command.h>
#include <orv/input.h>
#include <orv/protocol.h>

#include <string>

#include "agent_probe.h"
#include "camera_application.h"

namespace orv_test {

// The agent's writes of one injection, joined: "memory/orv/result=0" for one that went well.
template <class Inject>
std::string writes_of(Inject inject, orv_command record, const char* data = "") {
  take_writes();
  inject(&record, data);
  std::string joined;
  for (const std::string& one : take_writes()) {
    joined += (joined.empty() ? "" : " ") + one;
  }
  return joined;
}

inline std::string key(const char* name, int action) {
  return writes_of(orv_event_key_handler, {0, action, 0, 0, ORV_COMMAND_EVENT}, name);
}
inline std::string virtual_key(const char* name, int action = ORV_EVENT_VIRTUAL_KEY) {
  return writes_of(orv_event_virtual_key_handler, {action, 0, 0, 0, ORV_COMMAND_EVENT}, name);
}
inline std::string touch(int action, int x, int y) {
  return writes_of(orv_event_touch_handler, {ORV_EVENT_TOUCH, action, x, y, ORV_COMMAND_EVENT},
                   nullptr);
}

constexpr char ok[] = "memory/orv/result=0";
constexpr char failed[] = "memory/orv/result=-1";

// With an application in good health and no failure outstanding.
class InjectionTest : public AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    touch(ORV_RELEASE, 0, 0);
    ASSERT_EQ(touch(ORV_RELEASE, 0, 0), ok);
    take_messages();
  }

  camera_application application_;
};

}  // namespace orv_test

#endif
