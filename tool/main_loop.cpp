#include "main_loop.h"

#include <glib-unix.h>
#include <glib.h>
#include <signal.h>

#include <iterator>

namespace orvctl {

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

stop_signals::stop_signals(const source::function& stop) {
  constexpr int numbers[] = {SIGINT, SIGTERM, SIGHUP};
  static_assert(std::size(numbers) == std::extent_v<decltype(sources_)>);
  for (size_t i = 0; i < std::size(numbers); ++i) {
    sources_[i] = source::on_signal(numbers[i], [this, stop, number = numbers[i]] {
      caught_ = number;
      stop();
    });
  }
  signal(SIGPIPE, SIG_IGN);
}

void run_main_loop_once() {
  g_main_context_iteration(nullptr, TRUE);
}

}  // namespace orvctl
