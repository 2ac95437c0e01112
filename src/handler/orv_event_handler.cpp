// The event command: keys and touches, and the watch over the application that receives them.

#include <orv/command.h>
#include <orv/health.h>
#include <orv/input.h>
#include <orv/protocol.h>
#include <stdint.h>
#include <stdlib.h>

#include "common/answer.h"
#include "common/bounded_text.h"
#include "common/log.h"
#include "handler/entry_count.h"
#include "handler/injection.h"
#include "handler/key_map.h"
#include "handler/process_scan.h"
#include "handler/thread_stat.h"

namespace orv {
namespace {

// Negative after a failed injection; the next one that goes well makes up for it.
int32_t g_event_last_status = 0;

// The first process that was found to be the application, and its threads' directory.
int32_t g_app_pid = -1;
char g_app_task_path[256];

// How many entries the card had when it was first listed.
int32_t g_sdcard_baseline = -1;

void remember_application(const char* process) {
  g_app_pid = static_cast<int32_t>(strtol(process, nullptr, 10));
  bounded_text{g_app_task_path}.format("/proc/%d/task", g_app_pid);
}

void report_failed() {
  answer(ORV_RESULT_FAILED);
  g_event_last_status = -1;
}

void report_sent() {
  const int checked = check_failed();
  if (checked >= 0 && g_event_last_status >= 0) {
    answer(ORV_RESULT_OK);
    return;
  }
  answer(ORV_RESULT_FAILED);
  g_event_last_status = checked;
}

void report(bool sent) {
  sent ? report_sent() : report_failed();
}

bool is_press_or_release(int32_t action) {
  return action == ORV_PRESS || action == ORV_RELEASE;
}

bool inject_named_key(int32_t action, const char* name) {
  if (!is_press_or_release(action)) {
    return false;
  }
  const auto keycode = find_keycode(name);
  return keycode && inject_key(*keycode, action == ORV_PRESS);
}

bool inject_virtual_key(int32_t action, const char* name) {
  if (action != ORV_EVENT_VIRTUAL_KEY && action != ORV_RELEASE) {
    return false;
  }
  const auto keycode = find_keycode(name);
  return keycode &&
         (action == ORV_RELEASE ? inject_key(*keycode, false) : inject_key_tap(*keycode));
}

}  // namespace
}  // namespace orv

void orv_event_handler(orv_command* record, const char* data) {
  orv_log_info("orv_event_handler+ \n");
  orv_log_info(" - param1=%d \n", record->param1);
  switch (record->param1) {
    case ORV_EVENT_KEY:
      orv_event_key_handler(record, data);
      break;
    case ORV_EVENT_VIRTUAL_KEY:
      orv_event_virtual_key_handler(record, data);
      break;
    case ORV_EVENT_TOUCH:
      orv_event_touch_handler(record, data);
      break;
    default:
      orv_log_error("orv_event_handler():: unknown type = %d \n", record->param1);
      break;
  }
  orv_log_info("orv_event_handler- \n");
}

void orv_event_key_handler(const orv_command* record, const char* data) {
  orv_log_info("orv_event_key_handler+ \n");
  orv_log_info("  data=%s \n", orv::printable(data));
  orv_log_info("  param2=%d \n", record->param2);
  orv_log_info("orv_event_key_handler- \n");
  orv::report(orv::inject_named_key(record->param2, data));
}

void orv_event_virtual_key_handler(const orv_command* record, const char* data) {
  orv_log_info("orv_event_virtual_key_handler+ \n");
  orv_log_info("  param1=%d \n", record->param1);
  orv_log_info("  param2=%d \n", record->param2);
  orv_log_info("  param3=%d \n", record->param3);
  orv_log_info("  param4=%d \n", record->param4);
  orv_log_info("  data=%s \n", orv::printable(data));
  orv::report(orv::inject_virtual_key(record->param1, data));
  orv_log_info("orv_event_virtual_key_handler- \n");
}

void orv_event_touch_handler(const orv_command* record, const char* /*data*/) {
  orv_log_info("orv_event_touch_handler+ \n");
  orv_log_info("  param1=%d \n", record->param1);
  orv_log_info("  param2=%d \n", record->param2);
  orv_log_info("  param3=%d \n", record->param3);
  orv_log_info("  param4=%d \n", record->param4);
  orv::report(orv::is_press_or_release(record->param2) &&
              orv::inject_touch(record->param3, record->param4, record->param2 == ORV_PRESS));
  orv_log_info("orv_event_touch_handler- \n");
}

int check_failed(void) {
  int result = -1;
  {
    orv::process_scan processes;
    if (!processes) {
      orv_log_error("opendir error :\n");
      return -1;
    }
    while (const char* process = processes.next_with("lumen-ui-host")) {
      orv_log_info("lumen-ui-host exist \n");
      if (orv::g_app_pid == -1) {
        orv::remember_application(process);
        orv_log_info("lumen-ui-host PID = %d[%s]\n", orv::g_app_pid, orv::g_app_task_path);
      }
      result = 1;
    }
  }
  const auto entries = orv::count_entries("/sdcard");
  if (!entries) {
    orv_log_error("opendir error :\n");
    return -1;
  }
  if (orv::g_sdcard_baseline == -1) {
    orv::g_sdcard_baseline = *entries;
  }
  return *entries > orv::g_sdcard_baseline ? -1 : result;
}

int CheckThread(char* line) {
  const auto thread = orv::split_thread_stat(line);
  if (!thread) {
    return 0;
  }
  for (size_t i = 0; i < thread->tail_count; ++i) {
    orv_log_info("tail [%s]", thread->name_tails[i]);
  }
  const bool healthy = thread->state == 'R' || thread->state == 'S';
  if (healthy || exceptionThreadCheck(thread->name) == 0) {
    return 0;
  }
  orv_log_error("XXXXXXXXXXXXXXXXXXXX THREAD FAULT [%s] %s : [%c]", thread->id, thread->name,
                thread->state);
  return -1;
}
