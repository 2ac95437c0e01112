// POSIX threads with the agent's logging.

#include <orv/thread.h>
#include <signal.h>
#include <string.h>

#include <algorithm>

#include "common/log.h"

// A failed call's two lines. `code` is what the call returned: these calls leave errno alone. A
// macro, since both records name the operation that failed.
#define log_failure(code, ...)                                 \
  do {                                                         \
    orv_log_error(__VA_ARGS__);                                \
    orv_log_info("%s(errno=%d) \n", strerror((code)), (code)); \
  } while (false)

namespace orv {
namespace {

constexpr int32_t default_stack_size_bytes = 1024 * 1024;

// The log shows 32 bits of an id, all that there are on the target.
unsigned shown(pthread_t thread) {
  return static_cast<unsigned>(thread);
}

struct outcome {
  int code;  // 0: done
  const char* message;
};

outcome set_attributes(pthread_attr_t* attributes, int32_t stack_size, uint32_t joinable) {
  // A negative size is below the minimum as well; converted, it would be huge.
  int code =
      pthread_attr_setstacksize(attributes, static_cast<size_t>(std::max<int32_t>(stack_size, 0)));
  if (code != 0) {
    return {code, "orv_thread_create():: Got error from pthread_attr_setstacksize \n"};
  }
  code = pthread_attr_setdetachstate(
      attributes, joinable == 0 ? PTHREAD_CREATE_DETACHED : PTHREAD_CREATE_JOINABLE);
  return {code, "orv_thread_create():: Got error from pthread_attr_setdetachstate \n"};
}

}  // namespace
}  // namespace orv

int orv_thread_create(pthread_t* thread, const char* name, uint32_t /*reserved*/, uint32_t joinable,
                      int32_t stack_size, void* (*start_routine)(void*), void* argument) {
  if (start_routine == nullptr) {
    return -1;
  }
  pthread_attr_t attributes;
  int code = pthread_attr_init(&attributes);
  if (code != 0) {
    log_failure(code, "orv_thread_create():: Got error from pthread_attr_init \n");
    return -1;
  }
  if (stack_size == 0) {
    stack_size = orv::default_stack_size_bytes;
  }
  orv::outcome made = orv::set_attributes(&attributes, stack_size, joinable);
  if (made.code == 0) {
    made = {pthread_create(thread, &attributes, start_routine, argument),
            "orv_thread_create():: pthread_create() failed \n"};
  }
  if (made.code != 0) {
    log_failure(made.code, "%s", made.message);
    pthread_attr_destroy(&attributes);
    return -1;
  }
  orv_log_info("%s Thread created (ID=%u, stack_size=%d) \n", orv::printable(name),
               orv::shown(*thread), stack_size);
  code = pthread_attr_destroy(&attributes);
  if (code != 0) {
    log_failure(code, "orv_thread_create():: pthread attr destroy failed \n");
  }
  return 0;
}

int orv_thread_join(pthread_t thread, void** result) {
  const int code = pthread_join(thread, result);
  if (code != 0) {
    log_failure(code, "orv_thread_join():: Thread join failed for thread [%u] \n",
                orv::shown(thread));
    return -1;
  }
  orv_log_info("orv_thread_join():: Thread join success \n");
  return 0;
}

int orv_thread_cancel(pthread_t thread) {
  const int code = pthread_cancel(thread);
  if (code != 0) {
    log_failure(code, "orv_thread_cancel():: Thread cancel failed for thread [%u] \n",
                orv::shown(thread));
    return -1;
  }
  return 0;
}

int orv_thread_kill(pthread_t thread, int signal_number) {
  const int code = pthread_kill(thread, signal_number);
  if (code != 0) {
    log_failure(code, "orv_thread_kill():: Thread kill failed for thread [%u:%d] \n",
                orv::shown(thread), signal_number);
    return -1;
  }
  return 0;
}

void orv_thread_exit(void* value) {
  pthread_exit(value);
}

pthread_t orv_get_current_thread_id(void) {
  return pthread_self();
}
