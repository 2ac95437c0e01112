/* POSIX threads with the agent's logging.
 *
 * Operations that can fail return 0, or -1 after two log lines: what failed, and the system's
 * reason. The agent's own work needs no thread. Any thread may call these.
 */
#ifndef ORV_THREAD_H
#define ORV_THREAD_H

#include <pthread.h>
#include <stdint.h>

#include <orv/export.h>

ORV_BEGIN_DECLS

/* Starts a thread and stores its id in `*thread`, which must not be null. `name` is for the log
 * alone and may be null; `reserved` is ignored. A `joinable` of 0 makes the thread detached.
 * `stack_size` is in bytes, 0 for 1 MiB; less than the system's minimum, a negative size too,
 * fails. `argument` goes to the start routine untouched. -1 without a log line when the start
 * routine is null. */
ORV_API int orv_thread_create(pthread_t* thread, const char* name, uint32_t reserved,
                              uint32_t joinable, int32_t stack_size, void* (*start_routine)(void*),
                              void* argument);

/* Waits for a joinable thread's end. Its exit value goes to `*result`, unless that is null. */
ORV_API int orv_thread_join(pthread_t thread, void** result);

/* Asks a thread to end at its next cancellation point. */
ORV_API int orv_thread_cancel(pthread_t thread);

/* Sends a signal to a thread; signal 0 only asks whether the thread is there. */
ORV_API int orv_thread_kill(pthread_t thread, int signal_number);

/* Ends the calling thread; who joins it receives `value`. */
ORV_API void orv_thread_exit(void* value) __attribute__((noreturn));

/* The calling thread's id. */
ORV_API pthread_t orv_get_current_thread_id(void);

ORV_END_DECLS

#endif
