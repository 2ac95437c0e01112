// The main loop of a subcommand that goes on until it is stopped.
#ifndef ORV_TOOL_MAIN_LOOP_H
#define ORV_TOOL_MAIN_LOOP_H

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "exit_status.h"

namespace orvctl {

// Has the default main loop call a function, until this goes.
class source {
 public:
  using function = std::function<void()>;

  static std::unique_ptr<source> on_signal(int number, function call);
  static std::unique_ptr<source> every(uint32_t interval_ms, function call);

  source(const source&) = delete;
  source& operator=(const source&) = delete;
  ~source();

 private:
  explicit source(function call) : call_{std::move(call)} {}
  static int dispatch(void* self);

  function call_;
  unsigned id_ = 0;
};

// While this lives, SIGINT, SIGTERM and SIGHUP do not end the process: the main loop calls `stop`.
// SIGPIPE is ignored from then on: writing for a reader that has gone fails instead.
class stop_signals {
 public:
  enum class second { waits, ends_at_once };

  explicit stop_signals(source::function stop, second next = second::ends_at_once);

  // The last one, or 0.
  [[nodiscard]] int caught() const { return caught_; }
  // That of a program which the signal ends; without one, the other.
  [[nodiscard]] exit_status status(exit_status otherwise) const;

 private:
  void take(int number);

  source::function stop_;
  second next_;
  int caught_ = 0;
  std::unique_ptr<source> patience_;
  std::unique_ptr<source> sources_[3];
};

// Waits for something to happen, and has the main loop handle it.
void run_main_loop_once();

}  // namespace orvctl

#endif
