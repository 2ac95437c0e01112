// The agent's log, at the library's edge.

#include <functional>
#include <memory>

#include "session.h"

namespace {

using orv_client::ending;
using orv_client::session;

}  // namespace

struct orv_log {
  // The line is null at the end.
  using function = std::function<void(orv_log*, const char* line, const ending& how)>;

  orv_log(const orv_camera& camera, bool follow, function on_line)
      : follows{follow},
        report{std::move(on_line)},
        running{camera.state,
                {[this] { return start(); }, camera.state->carried_by->stop_log,
                 camera.state->carried_by->cancel_log,
                 [this](const ending& how) { report_end(how); }}} {}

  void* start() {
    const auto& camera = *running.of();
    return camera.carried_by->log(camera.connection, follows ? 1 : 0, line_came, this);
  }

  // A close of the camera within the user's callback destroys this.
  static void line_came(const char* line, const orv_reply* end, void* self) {
    auto* log = static_cast<orv_log*>(self);
    if (line == nullptr) {
      log->running.ended();
      log->report_end({end->outcome, end->why, end->message, end->result, {}});
    } else {
      const orv_client::user_callback around{log->running.of()};
      log->report(log, line, {});
    }
  }

  void report_end(const ending& how) {
    const std::unique_ptr<orv_log> self{this};
    const orv_client::user_callback around{running.of()};
    report(this, nullptr, how);
  }

  const bool follows;
  const function report;
  session running;
};

namespace {

orv_log* start(const orv_camera& camera, int follow, orv_log::function on_line) {
  auto made = std::make_unique<orv_log>(camera, follow != 0, std::move(on_line));
  orv_client::post_to_loop([log = made.get()] { log->running.start(nullptr); });
  return made.release();
}

}  // namespace

orv_log* orv_log_start(orv_camera* camera, int follow, orv_log_fn on_line, void* user_data) try {
  return start(*camera, follow, [=](orv_log* log, const char* line, const ending& how) {
    on_line(log, line, how.message.c_str(), user_data);
  });
} catch (...) {
  return nullptr;
}

void orv_log_stop(orv_log* log) try {
  orv_client::post_to_loop([running = &log->running] {
    if (session* found = session::find(running)) {
      found->stop();
    }
  });
} catch (...) {
}

orv_reply* orv_log_read(orv_camera* camera, int follow, orv_log_fn on_line, void* user_data) try {
  if (orv_client::in_callback()) {
    return orv_client::make_reply(orv_client::within_callback());
  }
  orv_client::endless_wait waited;
  start(*camera, follow, [&](orv_log* log, const char* line, const ending& how) {
    on_line(log, line, how.message.c_str(), user_data);
    if (line == nullptr) {
      waited.arrive(how.view());
    }
  });
  return waited.wait();
} catch (...) {
  return nullptr;
}
