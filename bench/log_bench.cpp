// A log line of the agent, beside the least that a line in a file takes.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "common/log.h"
#include "ratio_table.h"

namespace {

void agent_line(benchmark::State& state) {
  int number = 0;
  for (auto _ : state) {
    orv_log_info("  param1=%d \n", ++number);
  }
}

__attribute__((format(printf, 2, 3))) void write_line(int fd, const char* format, ...) {
  char line[256];
  va_list arguments;
  va_start(arguments, format);
  const int length = vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
  benchmark::DoNotOptimize(write(fd, line, static_cast<size_t>(length)));
}

void bare_line(benchmark::State& state) {
  const char* root = getenv("ORV_PLATFORM_ROOT");
  const std::string path = std::string{root != nullptr ? root : "/dev/shm"} + "/bare-log";
  const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND, S_IRUSR | S_IWUSR);
  int number = 0;
  for (auto _ : state) {
    write_line(fd, "%s: %s(%d) > \033[33m  param1=%d \033[m\n", "log_bench.cpp", "bare_line",
               __LINE__, ++number);
  }
  close(fd);
  unlink(path.c_str());
}

BENCHMARK(agent_line)->Name("log/line")->UseRealTime();
BENCHMARK(bare_line)->Name("log/vsnprintf-and-write")->UseRealTime();

const bool wanted = orv_bench::want("log/line", "log/vsnprintf-and-write", 1.15);

}  // namespace
