// The other process of a two-process benchmark: this program run anew in a serving role.
#ifndef ORV_BENCH_SERVING_PROCESS_H
#define ORV_BENCH_SERVING_PROCESS_H

#include <sys/types.h>

#include <atomic>
#include <string>

namespace orv_bench {

// Memory that a serving process shares with its starter.
struct shared_counters {
  std::atomic<int> ready;
  std::atomic<int> wake_ups;  // of the serving process's main loop
};

class serving_process {
 public:
  explicit serving_process(const std::string& role, const std::string& argument = "");
  serving_process(const serving_process&) = delete;
  serving_process& operator=(const serving_process&) = delete;
  ~serving_process();

  [[nodiscard]] int wake_ups() const { return counters_->wake_ups; }

 private:
  shared_counters* counters_;
  pid_t pid_;
};

// The roles, run by main when the program is started in one; they do not return.
void serve_agent(shared_counters& counters);
void serve_bare_store(shared_counters& counters);
void serve_echo(shared_counters& counters, const std::string& bus_address);

// Runs the role that the arguments name, if they name one.
void serve_if_asked(int argc, char** argv);

}  // namespace orv_bench

#endif
