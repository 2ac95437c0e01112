#include "dlog.h"

#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>

#include "ring.h"

namespace {

// Asked for once a thread: on some machines a system call costs more than the rest of a record.
struct caller {
  int32_t pid;
  int32_t tid;
};
thread_local caller this_caller{0, 0};

void forget_caller() {
  this_caller = {0, 0};
}

const caller& known_caller() {
  if (this_caller.tid == 0) {
    [[maybe_unused]] static const int registered = pthread_atfork(nullptr, nullptr, forget_caller);
    this_caller = {getpid(), static_cast<int32_t>(syscall(SYS_gettid))};
  }
  return this_caller;
}

int64_t now_ns() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

dlog::record_header make_header(int log_id, int priority) {
  const caller& self = known_caller();
  dlog::record_header header{};
  header.time_ns = now_ns();
  header.pid = self.pid;
  header.tid = self.tid;
  header.log_id = log_id;
  header.priority = priority;
  return header;
}

}  // namespace

int __dlog_print(int log_id, int priority, const char* tag, const char* format, ...) {
  static std::optional<dlog::ring> log = dlog::ring::open();
  if (!log) {
    return -1;
  }
  char text[dlog::max_text_size + 1];
  va_list arguments;
  va_start(arguments, format);
  const int length = vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  if (length < 0) {
    return -1;
  }
  const size_t kept = std::min(static_cast<size_t>(length), dlog::max_text_size);
  log->append(make_header(log_id, priority), tag != nullptr ? tag : "", {text, kept});
  return static_cast<int>(kept);
}
