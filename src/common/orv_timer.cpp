// Timers on the host's main loop.

#include <glib.h>
#include <orv/timer.h>

#include "common/log.h"

namespace orv {
namespace {

using add_operation = guint (*)(guint interval, GSourceFunc callback, gpointer user_data);

// Both starts, which differ in `add` and in the name under which they log.
void start(const char* name, add_operation add, uint32_t interval, orv_timer_callback callback,
           void* user_data, uint32_t* timer_id) {
  const auto refuse = [name](const char* reason) {
    log_line(log_level::error, ORV_LOG_FILE, name, __LINE__, "%s():: %s \n", name, reason);
  };
  log_line(log_level::info, ORV_LOG_FILE, name, __LINE__,
           "Register timer with callback pointer (%p) \n", reinterpret_cast<void*>(callback));
  if (callback == nullptr) {
    return refuse("cb is NULL");
  }
  if (timer_id != nullptr && *timer_id != 0) {
    return refuse("timer already is registered");
  }
  const guint source = add(interval, callback, user_data);
  if (source == 0) {
    return refuse("Can't add timer");
  }
  if (timer_id != nullptr) {
    *timer_id = source;
  }
}

}  // namespace
}  // namespace orv

void orv_start_timer(uint32_t interval, orv_timer_callback callback, void* user_data,
                     uint32_t* timer_id) {
  orv::start(__func__, g_timeout_add, interval, callback, user_data, timer_id);
}

void orv_start_timer_seconds(uint32_t interval, orv_timer_callback callback, void* user_data,
                             uint32_t* timer_id) {
  orv::start(__func__, g_timeout_add_seconds, interval, callback, user_data, timer_id);
}

void orv_stop_timer(uint32_t* timer_id) {
  if (timer_id == nullptr) {
    orv_log_error("orv_stop_timer():: timer_id is NULL \n");
    return;
  }
  if (*timer_id != 0) {
    g_source_remove(*timer_id);
    *timer_id = 0;
  }
}
