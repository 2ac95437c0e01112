#include "main_loop.h"

#include <glib.h>

namespace orv_test {

bool run_until(const std::function<bool()>& done, int deadline_ms) {
  bool late = false;
  GSource* timer = g_timeout_source_new(static_cast<guint>(deadline_ms));
  g_source_set_callback(
      timer,
      [](gpointer flag) -> gboolean {
        *static_cast<bool*>(flag) = true;
        return G_SOURCE_REMOVE;
      },
      &late, nullptr);
  g_source_attach(timer, nullptr);
  while (!late && !done()) {
    g_main_context_iteration(nullptr, TRUE);
  }
  g_source_destroy(timer);
  g_source_unref(timer);
  return done();
}

}  // namespace orv_test
