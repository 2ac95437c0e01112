#include "main_loop.h"

#include <glib-unix.h>
#include <glib.h>
#include <signal.h>

#include <iterator>

namespace orvctl {
namespace {

constexpr int stopping[] = {SIGINT, SIGTERM, SIGHUP};

// timeout(1) signals a process and right after that its group: the process is in both.
constexpr uint32_t same_signal_ms = 100;

}  // namespace

std::unique_ptr<source> source::on_signal(int number, function call) {
  std::unique_ptr<source> made{new source{std::move(call)}};
  made->id_ = g_unix_signal_add(number, dispatch, made.get());
  return made;
}

std::unique_ptr<source> source::every(uint32_t interval_ms, function call) {
  std::unique_ptr<source> made{new source{std::move(call)}};
  made->id_ = g_timeout_add(interval_ms, dispatch, made.get());
  return made;
}

source::~source() {
  g_source_remove(id_);
}

int source::dispatch(void* self) {
  static_cast<source*>(self)->call_();
  return G_SOURCE_CONTINUE;
}

stop_signals::stop_signals(source::function stop, second next)
    : stop_{std::move(stop)}, next_{next} {
  static_assert(std::size(stopping) == std::extent_v<decltype(sources_)>);
  for (size_t i = 0; i < std::size(stopping); ++i) {
    sources_[i] = source::on_signal(stopping[i], [this, number = stopping[i]] { take(number); });
  }
  signal(SIGPIPE, SIG_IGN);
}

void stop_signals::take(int number) {
  caught_ = number;
  if (next_ == second::ends_at_once && !patience_) {
    patience_ = source::every(same_signal_ms, [] {
      for (const int one : stopping) {
        signal(one, SIG_DFL);
      }
    });
  }
  stop_();
}

exit_status stop_signals::status(exit_status otherwise) const {
  return caught_ != 0 ? by_signal(caught_) : otherwise;
}

void run_main_loop_once() {
  g_main_context_iteration(nullptr, TRUE);
}

}  // namespace orvctl
