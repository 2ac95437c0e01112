#include "common/log.h"

#include <dlog.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <string_view>

namespace orv {
namespace {

constexpr int applications_log = 3;
constexpr char log_tag[] = "ORV";

constexpr size_t line_size = 256;
constexpr std::string_view info_colour = "\033[33m";
constexpr std::string_view error_colour = "\033[31m";
constexpr std::string_view reset = "\033[m\n";
constexpr size_t message_start = info_colour.size();
constexpr size_t max_message = line_size - message_start - reset.size() - 1;
static_assert(error_colour.size() == message_start && max_message == 246);

// How much of the message in `text` is kept: without its last newline, and so that the reset
// sequence still fits.
size_t kept_length(const char* text, int formatted, size_t room) {
  size_t length = std::clamp<size_t>(formatted < 0 ? 0 : static_cast<size_t>(formatted), 0, room);
  if (length > 0 && text[length - 1] == '\n') {
    --length;
  }
  return std::min(length, max_message);
}

}  // namespace

void log_line(log_level level, const char* file, const char* function, int line, const char* format,
              ...) noexcept {
  char text[line_size];
  const bool is_error = level == log_level::error;
  (is_error ? error_colour : info_colour).copy(text, message_start);
  constexpr size_t message_size = line_size - message_start;
  va_list arguments;
  va_start(arguments, format);
  const int formatted = vsnprintf(text + message_start, message_size, format, arguments);
  va_end(arguments);
  char* end = text + message_start + kept_length(text + message_start, formatted, message_size - 1);
  end[reset.copy(end, reset.size())] = '\0';

  __dlog_print(applications_log, is_error ? DLOG_ERROR : DLOG_INFO, log_tag, "%s: %s(%d) > %s",
               file, function, line, text);
  if (is_error) {
    fprintf(stderr, "[%-10s] %s", log_tag, text);
  }
}

}  // namespace orv
