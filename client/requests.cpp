// The requests of the agent's commands.

#include <orv/client.h>
#include <orv/protocol.h>

orv_request orv_identity_request() {
  return {ORV_COMMAND_TARGET_INFO, {}, nullptr};
}

orv_request orv_memory_request() {
  return {ORV_COMMAND_HEAP_INFO, {}, nullptr};
}

orv_request orv_threads_request() {
  return {ORV_COMMAND_STACK_INFO, {}, nullptr};
}

orv_request orv_key_request(orv_key_action action, const char* name) {
  if (action == ORV_KEY_TAP) {
    return {ORV_COMMAND_EVENT, {ORV_EVENT_VIRTUAL_KEY}, name};
  }
  return {
      ORV_COMMAND_EVENT, {ORV_EVENT_KEY, action == ORV_KEY_PRESS ? ORV_PRESS : ORV_RELEASE}, name};
}

orv_request orv_touch_request(orv_touch_action action, int32_t x, int32_t y) {
  return {ORV_COMMAND_EVENT,
          {ORV_EVENT_TOUCH, action == ORV_TOUCH_PRESS ? ORV_PRESS : ORV_RELEASE, x, y},
          nullptr};
}

// Where the interval is fixed, the agent only looks whether it is 0.
orv_request orv_monitor_start_request(int32_t monitor, int32_t interval_ms) {
  return {ORV_COMMAND_MONITOR,
          {monitor, ORV_MONITOR_START, monitor == ORV_MONITOR_CPU ? interval_ms : 1},
          nullptr};
}

orv_request orv_monitor_stop_request(int32_t monitor) {
  return {ORV_COMMAND_MONITOR, {monitor, ORV_MONITOR_STOP}, nullptr};
}

orv_request orv_health_request() {
  return {ORV_COMMAND_MONITOR, {ORV_MON_TYPE_CPU, -1}, nullptr};
}

const char* orv_client_version() {
  return ORV_CLIENT_VERSION;
}
