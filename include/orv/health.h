/* Health of the camera application, lumen-ui-host.
 *
 * Texts are NUL-terminated, stay the caller's and may not be null.
 */
#ifndef ORV_HEALTH_H
#define ORV_HEALTH_H

#include <orv/export.h>

ORV_BEGIN_DECLS

/* 1 when the application runs and /sdcard holds no more entries than at the first call that could
 * list it; -1 otherwise, and when /proc or /sdcard cannot be listed (logged). Logs every process
 * that it finds to be the application. Main loop's thread only. */
ORV_API int check_failed(void);

/* 0 when every character is a decimal digit, as for the empty text; -1 otherwise. Any thread. */
ORV_API int IsDigit(const char* text);

/* Takes the stat line of one thread, as in /proc/PID/task/TID/stat, and splits it in place.
 * 0 when the thread runs or sleeps (state R or S) or is exempt; -1, and an error line in the log,
 * when it is in any other state. 0 as well, with nothing logged, for a text that is no stat line:
 * fewer than three fields, a name without its closing parenthesis, an id or a name of 50 characters
 * or more, a state of 10 or more. Any thread. */
ORV_API int CheckThread(char* line);

/* Names of threads, in parentheses as in a stat line and cut to 15 characters by the kernel; a null
 * pointer ends each list. The agent reads them and never writes them; a host may, while no other
 * thread is in the functions below or in CheckThread. */
ORV_API extern const char* exception_thread_list[2]; /* exempt from CheckThread's verdict */
ORV_API extern const char* monitor_thread_list[54];  /* the application's monitored threads */

/* Whether a list holds this very name. Mind that the two answer in opposite ways. */
ORV_API int exceptionThreadCheck(const char* name); /* 0: it does; -1: it does not */
ORV_API int monitorThreadCheck(const char* name);   /* -1: it does; 0: it does not */

ORV_END_DECLS

#endif
