// The agent's log.

#include <memory>
#include <string>

#include "main_loop.h"
#include "subcommands.h"

namespace orvctl {
namespace {

class log_reading {
 public:
  log_reading(const context& shared, bool follow) : out_{shared.out}, follow_{follow} {}

  exit_status run(const context& shared);

 private:
  static void on_line(orv_log* log, const char* line, const char* message, void* self);
  void print(const char* line) const;
  void end(const std::string& message);
  void stop() const;

  const output& out_;
  bool follow_;
  orv_log* log_ = nullptr;
  exit_status status_ = exit_status::done;
};

exit_status log_reading::run(const context& shared) {
  const camera target{shared};
  if (target.get() == nullptr) {
    return refuse(target.failure());
  }
  const stop_signals signals{[this] { stop(); }};
  log_ = orv_log_start(target.get(), follow_ ? 1 : 0, on_line, this);
  if (log_ == nullptr) {
    refuse(nullptr);
    return exit_status::not_run;
  }
  while (log_ != nullptr) {
    run_main_loop_once();
  }
  // Whoever stopped this learns that it was not the log that ended.
  return signals.status(status_);
}

void log_reading::on_line(orv_log* /*log*/, const char* line, const char* message, void* self) {
  auto* reading = static_cast<log_reading*>(self);
  line != nullptr ? reading->print(line) : reading->end(message);
}

// A reader that has enough ends it.
void log_reading::print(const char* line) const {
  out_.print("%s\n", line);
  if (follow_ && !out_.flush()) {
    stop();
  }
}

void log_reading::end(const std::string& message) {
  log_ = nullptr;
  if (!message.empty()) {
    complain(message);
    status_ = exit_status::not_run;
  }
}

void log_reading::stop() const {
  if (log_ != nullptr) {
    orv_log_stop(log_);
  }
}

}  // namespace

void add_log(const subcommand& program, context& shared) {
  const subcommand log = program.add("log", "Print the agent's log and follow it until stopped");
  const auto dump = std::make_shared<bool>(false);
  log.flag("--dump", *dump, "Print what the log holds and end");
  log.run([&shared, dump] { return log_reading{shared, !*dump}.run(shared); });
}

}  // namespace orvctl
