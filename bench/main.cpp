// Runs the benchmarks on a platform root of their own.

#include <sched.h>
#include <stdio.h>
#include <stdlib.h>

#include <filesystem>

#include "ratio_table.h"
#include "serving_process.h"

namespace {

// With all that it starts. Where each of two processes that take turns happens to be put, and what
// else runs there, would make more of a difference than anything that is measured here.
void stay_on_one_processor() {
  cpu_set_t processors;
  CPU_ZERO(&processors);
  CPU_SET(static_cast<size_t>(sched_getcpu()), &processors);
  if (sched_setaffinity(0, sizeof processors, &processors) != 0) {
    perror("orv-bench: sched_setaffinity");
  }
}

}  // namespace

int main(int argc, char** argv) {
  orv_bench::serve_if_asked(argc, argv);
  stay_on_one_processor();
  char root[] = "/dev/shm/orv-bench-XXXXXX";
  if (mkdtemp(root) == nullptr) {
    perror("orv-bench: mkdtemp");
    return 1;
  }
  setenv("ORV_PLATFORM_ROOT", root, 1);
  const int outcome = orv_bench::run(argc, argv);
  std::error_code ignored;
  std::filesystem::remove_all(root, ignored);
  return outcome;
}
