// The monitors' table, and starting and stopping them.

#include <orv/command.h>
#include <orv/monitor.h>
#include <orv/timer.h>

#include <algorithm>
#include <array>

#include "common/log.h"

namespace orv {
namespace {

struct monitor_row {
  char name[16];
  int32_t type;  // 0 closes the table
  int (*open)();
  orv_timer_callback proc;
  int (*close)();
  uint32_t timer_id;  // 0: not running
};

constexpr auto monitors_at_load = std::to_array<monitor_row>({
    {"cpu", ORV_MON_TYPE_CPU, orv_cpu_monitor_open, orv_cpu_monitor_proc, orv_cpu_monitor_close, 0},
    {"heap", ORV_MON_TYPE_HEAP, orv_heap_monitor_open, orv_heap_monitor_proc,
     orv_heap_monitor_close, 0},
    {"stack", ORV_MON_TYPE_STACK, orv_stack_monitor_open, orv_stack_monitor_proc,
     orv_stack_monitor_close, 0},
    {"end", 0, nullptr, nullptr, nullptr, 0},
});
static_assert(monitors_at_load.back().type == 0);
static_assert(std::adjacent_find(monitors_at_load.begin(), monitors_at_load.end() - 1,
                                 [](const monitor_row& one, const monitor_row& next) {
                                   return one.type >= next.type;
                                 }) == monitors_at_load.end() - 1);

constinit auto monitor_table = monitors_at_load;

monitor_row* find_monitor(int32_t type) {
  for (monitor_row* row = monitor_table.data(); row->type != 0; ++row) {
    if (row->type == type) {
      return row;
    }
  }
  return nullptr;
}

}  // namespace
}  // namespace orv

int orv_monitor(orv_command* request, int32_t action) {
  switch (action) {
    case ORV_MON_ACTION_START:
      orv_log_info("ORV_MON_ACTION_START entered.\n");
      return orv_monitor_start(request, action);
    case ORV_MON_ACTION_TERMINATE:
      orv_log_info("ORV_MON_ACTION_TERMINATE entered.\n");
      return orv_monitor_terminate(request, action);
    case ORV_MON_ACTION_CHANGE_PROPERTY:
      orv_log_info("ORV_MON_ACTION_CHANGE_PROPERTY entered.\n");
      return orv_monitor_change_property(request, action);
    default:
      orv_log_error("orv_monitor():: Unknown action (%d) \n", action);
      return -1;
  }
}

int orv_monitor_start(orv_command* request, int32_t /*action*/) {
  orv::monitor_row* monitor = orv::find_monitor(request->param1);
  if (monitor == nullptr) {
    return 0;
  }
  if (monitor->open != nullptr) {
    monitor->open();
  }
  if (monitor->proc != nullptr && request->param2 != 0) {
    orv_start_timer(static_cast<uint32_t>(request->param3), monitor->proc, nullptr,
                    &monitor->timer_id);
  }
  return 0;
}

int orv_monitor_terminate(orv_command* request, int32_t /*action*/) {
  orv::monitor_row* monitor = orv::find_monitor(request->param1);
  if (monitor == nullptr) {
    return 0;
  }
  if (monitor->timer_id != 0) {
    orv_stop_timer(&monitor->timer_id);
  }
  if (monitor->close != nullptr) {
    monitor->close();
  }
  return 0;
}

int orv_monitor_change_property(orv_command* /*request*/, int32_t /*action*/) {
  return 0;
}
