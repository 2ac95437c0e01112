/* The command record and the commands' handlers.
 *
 * A handler answers through the result key, and through the result data key before it where it
 * answers with a text; it reports nothing to its caller. It keeps neither the record nor the text,
 * which stay the caller's. Neither may be null. Main loop's thread only.
 */
#ifndef ORV_COMMAND_H
#define ORV_COMMAND_H

#include <stdint.h>

#include <orv/export.h>

ORV_BEGIN_DECLS

struct orv_command {
  int32_t param1;
  int32_t param2;
  int32_t param3;
  int32_t param4;
  int32_t command; /* the command code */
};

/* Keys and touches: hands record and text to the injector (orv/input.h) that param1 names,
 * ORV_EVENT_KEY, ORV_EVENT_VIRTUAL_KEY or ORV_EVENT_TOUCH. Any other event type is logged and not
 * answered. */
ORV_API void orv_event_handler(struct orv_command* record, const char* data);

/* Identity of the target: category, platform, model, board version, firmware version, byte-order
 * code, build type and cis_no, joined by commas. Reads neither argument. Result 0, always. */
ORV_API void orv_target_handler(struct orv_command* record, const char* data);

/* Stack of every thread: the command code and the number of threads, then a group for each thread
 * of id, name, stack size in bytes, stack base and "$", every field followed by a comma. Groups
 * that do not fit into 4095 characters are left out, the number stays. Blocks the main loop for one
 * shell command a thread. Reads neither argument. Result 0, always. */
ORV_API void orv_stack_handler(struct orv_command* record, const char* data);

/* Memory summary: 1, 1 and the total memory in bytes modulo 2^32 as a signed number, joined by
 * commas. Reads neither argument. Result 0, always. */
ORV_API void orv_heap_handler(struct orv_command* record, const char* data);

/* Starts or stops the monitor that param1 names, or asks for the application's health; see
 * <orv/monitor.h>. `data` is only logged. No answer for an unknown monitor (logged). */
ORV_API void orv_monitor_handler(struct orv_command* record, const char* data);

ORV_END_DECLS

#endif
