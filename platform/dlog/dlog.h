/* dlog: the platform's system log.
 *
 * Stand-in: a ring of 1 MiB in a shared file "dlog" under the platform's root (see vconf.h for the
 * root). The oldest records make room for new ones. Left out: separate logs for each log id, and
 * filters by priority.
 */
#ifndef DLOG_H
#define DLOG_H

#ifdef __cplusplus
extern "C" {
#endif

#define DLOG_API __attribute__((visibility("default")))

enum { DLOG_INFO = 4, DLOG_ERROR = 6 };

/* Appends one record, whole or not at all; a text over 4,000 bytes is cut. Any thread, any process;
 * makes no system call unless a reader waits. The text's length, or a negative number when the log
 * cannot be reached. */
/* NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the platform's name */
DLOG_API int __dlog_print(int log_id, int priority, const char* tag, const char* format, ...)
    __attribute__((format(printf, 4, 5)));

#ifdef __cplusplus
}
#endif

#endif
