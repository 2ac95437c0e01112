// Watches of the monitors, at the library's edge.

#include <algorithm>
#include <functional>
#include <memory>

#include "session.h"

namespace {

using orv_client::ending;
using orv_client::not_run;
using orv_client::session;
using orv_client::source;
using orv_client::steady_clock;
using std::chrono::milliseconds;

constexpr uint32_t longest_cpu_interval_ms = 4000;

}  // namespace

struct orv_watch {
  using function = std::function<void(orv_watch*, const orv_watch_event&)>;

  orv_watch(const orv_camera& camera, const orv_watch_options& wanted, function on_event)
      : options{wanted},
        report{std::move(on_event)},
        running{camera.state,
                {[this] { return start(); }, camera.state->carried_by->stop_watch,
                 camera.state->carried_by->cancel_watch,
                 [this](const ending& how) { report_end(how.view()); }}} {}

  void* start() {
    const auto& camera = *running.of();
    return camera.carried_by->watch(camera.connection, &options, happened, this);
  }

  // A close of the camera within the user's callback destroys this.
  static void happened(const orv_watch_event* event, void* self) {
    auto* watch = static_cast<orv_watch*>(self);
    if (event->kind == ORV_WATCH_ENDED) {
      watch->running.ended();
      watch->report_end(*event->reply, event->packet_bytes);
    } else {
      const orv_client::user_callback around{watch->running.of()};
      watch->report(watch, *event);
    }
  }

  void report_end(const orv_reply& how, size_t packet_bytes = 0) {
    const std::unique_ptr<orv_watch> self{this};
    const std::unique_ptr<orv_reply, decltype(&orv_reply_free)> whole{
        orv_client::make_reply(how, 0), orv_reply_free};
    const orv_client::user_callback around{running.of()};
    report(this, {ORV_WATCH_ENDED, nullptr, packet_bytes, "", whole ? whole.get() : &how});
  }

  const orv_watch_options options;
  const function report;
  session running;
};

namespace {

ending fault_of(const orv_watch_options& options) {
  if ((options.monitors & ~uint32_t{ORV_MONITORS_ALL}) != 0) {
    return not_run(ORV_WHY_BAD_REQUEST, "an unknown monitor");
  }
  if (options.cpu_interval_ms > longest_cpu_interval_ms) {
    return not_run(ORV_WHY_BAD_REQUEST, "the CPU monitor's interval is from 1 to 4000 ms");
  }
  return {};
}

orv_watch* start(const orv_camera& camera, const orv_watch_options& options,
                 orv_watch::function on_event) {
  auto made = std::make_unique<orv_watch>(camera, options, std::move(on_event));
  orv_client::post_to_loop([watch = made.get()] {
    const ending fault = fault_of(watch->options);
    watch->running.start(fault.outcome == ORV_RAN ? nullptr : &fault);
  });
  return made.release();
}

// One timer of the main context is too short for the longest durations.
class timed_stop {
 public:
  void begin(orv_watch* watch, uint64_t duration_ms) {
    constexpr uint64_t century_ms = uint64_t{100} * 366 * 24 * 3600 * 1000;
    end_ = steady_clock::now() + milliseconds{std::min(duration_ms, century_ms)};
    go_on(watch);
  }

 private:
  void go_on(orv_watch* watch) {
    const auto next = std::min(end_, steady_clock::now() + std::chrono::hours{24});
    timer_ = source::at(next, [this, watch] {
      if (steady_clock::now() >= end_) {
        orv_watch_stop(watch);
      } else {
        go_on(watch);
      }
    });
  }

  steady_clock::time_point end_;
  source timer_;
};

}  // namespace

orv_watch* orv_watch_start(orv_camera* camera, const orv_watch_options* options,
                           orv_watch_fn on_event, void* user_data) try {
  return start(*camera, *options, [=](orv_watch* watch, const orv_watch_event& event) {
    on_event(watch, &event, user_data);
  });
} catch (...) {
  return nullptr;
}

void orv_watch_stop(orv_watch* watch) try {
  orv_client::post_to_loop([running = &watch->running] {
    if (session* found = session::find(running)) {
      found->stop();
    }
  });
} catch (...) {
}

orv_reply* orv_watch_for(orv_camera* camera, const orv_watch_options* options, uint64_t duration_ms,
                         orv_watch_fn on_event, void* user_data) try {
  if (orv_client::in_callback()) {
    return orv_client::make_reply(orv_client::within_callback());
  }
  orv_client::endless_wait waited;
  timed_stop stop;
  start(*camera, *options, [&](orv_watch* watch, const orv_watch_event& event) {
    if (event.kind == ORV_WATCH_STARTED && duration_ms != 0) {
      stop.begin(watch, duration_ms);
    }
    on_event(watch, &event, user_data);
    if (event.kind == ORV_WATCH_ENDED) {
      stop = {};
      waited.arrive(*event.reply);
    }
  });
  return waited.wait();
} catch (...) {
  return nullptr;
}
