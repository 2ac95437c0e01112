// The monitor command.

#include <orv/command.h>
#include <orv/health.h>
#include <orv/monitor.h>
#include <orv/protocol.h>

#include "common/answer.h"
#include "common/log.h"

namespace orv {
namespace {

void answer_health() {
  answer(check_failed() < 0 ? ORV_RESULT_FAILED : ORV_RESULT_OK);
}

bool asks_to_start(const orv_command& record) {
  return record.param2 == ORV_MONITOR_START && record.param3 != 0;
}

void start(orv_command* record, int32_t interval_ms) {
  answer(ORV_RESULT_OK);
  record->param3 = interval_ms;
  orv_monitor(record, ORV_MON_ACTION_START);
}

void stop(orv_command* record) {
  orv_monitor(record, ORV_MON_ACTION_TERMINATE);
  answer(ORV_RESULT_OK);
  answer_health();
}

void run(orv_command* record, int32_t interval_ms) {
  if (asks_to_start(*record)) {
    start(record, interval_ms);
  } else if (record->param2 == ORV_MONITOR_STOP) {
    stop(record);
  } else {
    answer_health();
  }
}

}  // namespace
}  // namespace orv

void orv_monitor_handler(orv_command* record, const char* data) {
  orv_log_info("orv_monitor_handler+ \n");
  orv_log_info(" - param1=%d \n", record->param1);
  switch (record->param1) {
    case ORV_MON_TYPE_HEAP:
      orv_heap_monitor(record, data);
      break;
    case ORV_MON_TYPE_STACK:
      orv_stack_monitor(record, data);
      break;
    case ORV_MON_TYPE_CPU:
      orv_cpu_monitor(record, data);
      break;
    default:
      orv_log_error("orv_monitor_handler():: unknown type = %d \n", record->param1);
  }
  orv_log_info("orv_monitor_handler- \n");
}

void orv_cpu_monitor(orv_command* record, const char* data) {
  orv_log_info("orv_cpu_monitor_handler+ \n");
  orv_log_info("  param1=%d \n", record->param1);
  orv_log_info("  param2=%d \n", record->param2);
  orv_log_info("  param3=%d \n", record->param3);
  orv_log_info("  param4=%d \n", record->param4);
  orv_log_info("  data=%s \n", orv::printable(data));
  orv::run(record, record->param3);
  orv_log_info("orv_event_cpu_monitor- \n");
}

void orv_heap_monitor(orv_command* record, const char* data) {
  orv_log_info("orv_heap_monitor_handler+ \n");
  orv_log_info("param1=%d \n", record->param1);
  orv_log_info("param2=%d \n", record->param2);
  orv_log_info("param3=%d \n", record->param3);
  orv_log_info("  data=%s \n", orv::printable(data));
  orv::run(record, ORV_HEAP_MONITOR_INTERVAL_MS);
  orv_log_info("orv_heap_monitor_handler- \n");
}

void orv_stack_monitor(orv_command* record, const char* data) {
  orv_log_info("orv_stack_monitor+ \n");
  orv_log_info("  param1=%d \n", record->param1);
  orv_log_info("  param2=%d \n", record->param2);
  orv_log_info("  param3=%d \n", record->param3);
  orv_log_info("  param4=%d \n", record->param4);
  orv_log_info("  data=%s \n", orv::printable(data));
  orv::run(record, ORV_STACK_MONITOR_INTERVAL_MS);
}
