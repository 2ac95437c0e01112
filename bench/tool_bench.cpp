// The test tool as a whole process, beside a process that does nothing.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "ratio_table.h"
#include "serving_process.h"

namespace {

// The exit status, or -1. Standard output goes to nowhere.
int run(const char* program, const char* argument) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  const char* arguments[] = {program, argument, nullptr};
  pid_t child = -1;
  const int error =
      posix_spawn(&child, program, &actions, nullptr, const_cast<char**>(arguments), environ);
  posix_spawn_file_actions_destroy(&actions);
  int status = -1;
  if (error != 0 || waitpid(child, &status, 0) != child) {
    return -1;
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void measure(benchmark::State& state, const char* program, const char* argument) {
  for (auto _ : state) {
    if (run(program, argument) != 0) {
      state.SkipWithError("the process failed");
      break;
    }
  }
}

void orvctl_target(benchmark::State& state) {
  const orv_bench::serving_process host{"agent"};
  measure(state, ORVCTL_PATH, "target");
}

void bin_true(benchmark::State& state) {
  measure(state, "/bin/true", nullptr);
}

BENCHMARK(orvctl_target)->Name("tool/orvctl-target")->UseRealTime();
BENCHMARK(bin_true)->Name("tool/bin-true")->UseRealTime();

const bool wanted = orv_bench::want("tool/orvctl-target", "tool/bin-true", 2.5);

}  // namespace
