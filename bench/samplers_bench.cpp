// The memory reader and the samplers, beside the bare system calls and shell commands that they
// cannot do without.

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

void read_meminfo() {
  static uint32_t buffers;
  static uint32_t cached;
  static uint32_t free;
  static uint32_t total;
  constexpr meminfo_row table[] = {
      {"Buffers", &buffers}, {"Cached", &cached}, {"MemFree", &free}, {"MemTotal", &total}};
  orv_meminfo(table, 4);
}

void read_meminfo_bare() {
  char buffer[2048];
  const int fd = open("/proc/meminfo", O_RDONLY | O_CLOEXEC);
  orv_bench::keep(read(fd, buffer, sizeof buffer - 1));
  close(fd);
}

void run_lister() {
  orv_bench::keep(system("ps -eLo pid,tid,pcpu,esp,comm,state > /tmp/stackmon"));
}

void run_stack_command(const std::string& command) {
  char line[84];
  FILE* pipe = popen(command.c_str(), "re");
  orv_bench::keep(fgets(line, sizeof line, pipe));
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

void meminfo(orv_bench::row& row) {
  row.alternate(read_meminfo, read_meminfo_bare);
}

void stack_sampler(orv_bench::row& row) {
  const std::vector<std::string> commands = stack_commands();
  row.alternate([] { orv_bench::keep(orv_get_stack_info(res_stack_info)); },
                [&] {
                  run_lister();
                  for (const std::string& command : commands) {
                    run_stack_command(command);
                  }
                });
}

void cpu_sampler(orv_bench::row& row) {
  row.alternate([] { orv_bench::keep(orv_get_cpu_info(result_cpu_info)); }, run_lister);
}

const bool registered[] = {
    orv_bench::compare("meminfo/read", "meminfo/open-read-close", 1.05, meminfo),
    orv_bench::compare("samplers/stack", "samplers/bare-stack-commands", 1.02, stack_sampler),
    orv_bench::compare("samplers/cpu", "samplers/bare-lister", 1.02, cpu_sampler),
};

}  // namespace
