#include "main_loop.h"

#include <glib.h>

namespace orv_test {

bool run_until(const std::function<bool()>& done, int deadline_ms) {
  bool late = false;
  const auto note = [](gpointer flag) -> gboolean {
    *static_cast<bool*>(flag) = true;
    return G_SOURCE_CONTINUE;
  };
  const guint timer =
      g_timeout_add_full(G_PRIORITY_DEFAULT, static_cast<guint>(deadline_ms), note, &late, nullptr);
  while (!late && !done()) {
    g_main_context_iteration(nullptr, TRUE);
  }
  g_source_remove(timer);
  return done();
}

}  // namespace orv_test
