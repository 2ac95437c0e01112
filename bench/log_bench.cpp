// A log line of the agent, beside the least that a line in a file takes.

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

__attribute__((format(printf, 2, 3))) void write_line(int fd, const char* format, ...) {
  char line[256];
  va_list arguments;
  va_start(arguments, format);
  const int length = vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
  orv_bench::keep(write(fd, line, static_cast<size_t>(length)));
}

void log_line(int number) {
  orv_log_info("  param1=%d \n", number);
}

void compare_lines(orv_bench::row& row) {
  const char* root = getenv("ORV_PLATFORM_ROOT");
  const std::string path = std::string{root != nullptr ? root : "/dev/shm"} + "/bare-log";
  const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND, S_IRUSR | S_IWUSR);
  int number = 0;
  row.alternate([&] { log_line(++number); },
                [&] {
                  write_line(fd, "%s: %s(%d) > \033[33m  param1=%d \033[m\n", "log_bench.cpp",
                             "log_line", __LINE__, ++number);
                });
  close(fd);
  unlink(path.c_str());
}

const bool registered =
    orv_bench::compare("log/line", "log/vsnprintf-and-write", 1.15, compare_lines);

}  // namespace
