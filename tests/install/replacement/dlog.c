/* A system log as a camera might have it, from the platform's contract alone. */
#include <stdarg.h>
#include <stdio.h>

int __dlog_print(int log_id, int priority, const char* tag, const char* format, ...);
int __dlog_print(int log_id, int priority, const char* tag, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  printf("log %d %d %s ", log_id, priority, tag);
  vprintf(format, arguments);
  va_end(arguments);
  return 0;
}
