// libdlog.so.0 and libversion-info.so.0 of another platform, one text for both. A record is
// a line, "TAG PRIORITY: TEXT", at the end of the file "log" in the directory that ELSEWHERE names,
// where this platform's dlogutil finds it. Left out: times, processes, a bound on the file's size.
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#define PUBLIC extern "C" __attribute__((visibility("default")))

// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the platform's name
PUBLIC int __dlog_print(int log_id, int priority, const char* tag, const char* format, ...)
    __attribute__((format(printf, 4, 5)));

int __dlog_print(int /*log_id*/, int priority, const char* tag, const char* format, ...) {
  char text[1024];
  va_list arguments;
  va_start(arguments, format);
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): the checker overlooks the line above
  vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  std::string line = tag + (" " + std::to_string(priority)) + ": " + text;
  std::erase(line, '\n');
  line += '\n';
  const char* directory = getenv("ELSEWHERE");
  const std::string path = (directory != nullptr ? directory : "") + std::string{"/log"};
  const int fd = open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
  const bool written = write(fd, line.data(), line.size()) > 0;
  close(fd);
  return written ? 0 : -1;
}

PUBLIC const char* get_project_name(void) {
  return "ANOTHER";
}

PUBLIC const char* get_board_version_name(void) {
  return "MP";
}

PUBLIC const char* get_fw_version_full(void) {
  return "9.9";
}
