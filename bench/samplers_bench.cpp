// The memory reader and the samplers, beside the bare system calls and shell commands that they
// cannot do without.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <orv/cpu.h>
#include <orv/meminfo.h>
#include <orv/stack.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "ratio_table.h"

namespace {

void read_meminfo(benchmark::State& state) {
  static uint32_t buffers;
  static uint32_t cached;
  static uint32_t free;
  static uint32_t total;
  constexpr meminfo_row table[] = {
      {"Buffers", &buffers}, {"Cached", &cached}, {"MemFree", &free}, {"MemTotal", &total}};
  for (auto _ : state) {
    orv_meminfo(table, 4);
  }
}

void bare_meminfo(benchmark::State& state) {
  char buffer[2048];
  for (auto _ : state) {
    const int fd = open("/proc/meminfo", O_RDONLY | O_CLOEXEC);
    benchmark::DoNotOptimize(read(fd, buffer, sizeof buffer - 1));
    close(fd);
  }
}

void run_lister() {
  benchmark::DoNotOptimize(system("ps -eLo pid,tid,pcpu,esp,comm,state > /tmp/stackmon"));
}

void run_stack_command(const std::string& command) {
  char line[84];
  FILE* pipe = popen(command.c_str(), "re");
  benchmark::DoNotOptimize(fgets(line, sizeof line, pipe));
  pclose(pipe);
}

std::vector<std::string> stack_commands() {
  std::vector<std::string> commands;
  const int32_t count = orv_get_stack_info(res_stack_info);
  for (int32_t i = 0; i < count; ++i) {
    const std::string pid = std::to_string(res_stack_info[i].pid);
    const std::string tid = std::to_string(res_stack_info[i].tid);
    commands.push_back("cat /proc/" + pid + "/task/" + tid +
                       "/maps | grep stack | awk '{print $ 1}'");
  }
  return commands;
}

void sample_stacks(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(orv_get_stack_info(res_stack_info));
  }
}

void bare_stack_commands(benchmark::State& state) {
  const std::vector<std::string> commands = stack_commands();
  for (auto _ : state) {
    run_lister();
    for (const std::string& command : commands) {
      run_stack_command(command);
    }
  }
}

void sample_cpu(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(orv_get_cpu_info(result_cpu_info));
  }
}

void bare_lister(benchmark::State& state) {
  for (auto _ : state) {
    run_lister();
  }
}

BENCHMARK(read_meminfo)->Name("meminfo/read")->UseRealTime();
BENCHMARK(bare_meminfo)->Name("meminfo/open-read-close")->UseRealTime();
BENCHMARK(sample_stacks)->Name("samplers/stack")->UseRealTime();
BENCHMARK(bare_stack_commands)->Name("samplers/bare-stack-commands")->UseRealTime();
BENCHMARK(sample_cpu)->Name("samplers/cpu")->UseRealTime();
BENCHMARK(bare_lister)->Name("samplers/bare-lister")->UseRealTime();

const bool wanted[] = {
    orv_bench::want("meminfo/read", "meminfo/open-read-close", 1.05),
    orv_bench::want("samplers/stack", "samplers/bare-stack-commands", 1.02),
    orv_bench::want("samplers/cpu", "samplers/bare-lister", 1.02),
};

}  // namespace
