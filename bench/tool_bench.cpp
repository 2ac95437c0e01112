// The test tool as a whole process, beside a process that does nothing.

#include <benchmark/benchmark.h>

#include <initializer_list>

#include "child_process.h"
#include "ratio_table.h"
#include "serving_process.h"

namespace {

void measure(benchmark::State& state, std::initializer_list<const char*> words) {
  for (auto _ : state) {
    if (orv_bench::run_program(words) != 0) {
      state.SkipWithError("the process failed");
      break;
    }
  }
}

void orvctl_target(benchmark::State& state) {
  const orv_bench::serving_process host{"agent"};
  measure(state, {ORVCTL_PATH, "target"});
}

void bin_true(benchmark::State& state) {
  measure(state, {"/bin/true"});
}

BENCHMARK(orvctl_target)->Name("tool/orvctl-target")->UseRealTime();
BENCHMARK(bin_true)->Name("tool/bin-true")->UseRealTime();

const bool wanted = orv_bench::want("tool/orvctl-target", "tool/bin-true", 2.5);

}  // namespace
