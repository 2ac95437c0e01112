// Runs the benchmarks on a platform root of their own.

#include <stdio.h>
#include <stdlib.h>

#include <filesystem>

#include "ratio_table.h"
#include "serving_process.h"

int main(int argc, char** argv) {
  orv_bench::serve_if_asked(argc, argv);
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
