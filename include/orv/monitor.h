/* The periodic monitors: CPU, heap and stack.
 *
 * A running monitor samples the system on a timer of the default GLib main context and appends
 * what it saw to the packet in the result data key; see <orv/protocol.h> for its sizes. Everything
 * here belongs to the main loop's thread; the data are the agent's, to be read only. Monitor types
 * are ORV_MON_TYPE_CPU, ORV_MON_TYPE_HEAP and ORV_MON_TYPE_STACK.
 */
#ifndef ORV_MONITOR_H
#define ORV_MONITOR_H

#include <stdint.h>

#include <orv/export.h>
#include <orv/protocol.h>

ORV_BEGIN_DECLS

struct orv_command; /* <orv/command.h> */

enum { ORV_MON_ACTION_START = 0, ORV_MON_ACTION_TERMINATE = 1, ORV_MON_ACTION_CHANGE_PROPERTY = 2 };

/* Runs the operation that `action` names. Its result, or -1 for an unknown action (logged). The
 * request stays the caller's: param1 is the monitor type, param2 not 0 to register the timer of a
 * start, param3 its interval in milliseconds. */
ORV_API int orv_monitor(struct orv_command* request, int32_t action);

/* 0, always; an unknown type does nothing. A start of a running monitor opens it again and leaves
 * its timer as it is; a stop closes the monitor whether or not it runs. Neither reads `action`. */
ORV_API int orv_monitor_start(struct orv_command* request, int32_t action);
ORV_API int orv_monitor_terminate(struct orv_command* request, int32_t action);
/* Does nothing. 0, always. */
ORV_API int orv_monitor_change_property(struct orv_command* request, int32_t action);

/* The monitor command for one type, with the shape of a command handler: param2 1 and param3 not 0
 * starts, param2 0 stops, anything else asks for the application's health. A start answers 0, the
 * others 0 or -1 after the application's health. The CPU monitor's interval is param3 in
 * milliseconds; heap and stack set param3 to theirs, 1000 and 2000. */
ORV_API void orv_cpu_monitor(struct orv_command* record, const char* data);
ORV_API void orv_heap_monitor(struct orv_command* record, const char* data);
ORV_API void orv_stack_monitor(struct orv_command* record, const char* data);

/* Open and close return 1, always; close answers 0. The periodic callbacks do not read their
 * argument and return 1 to be called again. An item that does not fit into the packet is dropped
 * with a logged error, the packet stays as it was. */
ORV_API int orv_cpu_monitor_open(void);
/* 0, which ends its timer, when memory for the list of running threads is refused (logged). */
ORV_API int orv_cpu_monitor_proc(void* user_data);
ORV_API int orv_cpu_monitor_close(void);

ORV_API int orv_heap_monitor_open(void);
/* Ends the process with status 1 when memory for the packet is refused (logged). */
ORV_API int orv_heap_monitor_proc(void* user_data);
ORV_API int orv_heap_monitor_close(void);

ORV_API int orv_stack_monitor_open(void);
/* Skips the tick when memory is refused (logged). */
ORV_API int orv_stack_monitor_proc(void* user_data);
ORV_API int orv_stack_monitor_close(void);

/* Header of the packet that a monitor wrote last; 0 before the first. The stack monitor leaves
 * packet_code alone. */
struct orv_packet_header {
  int32_t packet_code; /* ORV_COMMAND_SEND_BUFFER */
  int32_t total_count; /* four for each number in the packet */
};
ORV_API extern struct orv_packet_header g_packet_data;

/* The heap monitor's last item. Sizes in bytes; tick_count in milliseconds since the start. */
struct orv_heap_item {
  int32_t item_size;
  int32_t item_code;
  int32_t tick_count;
  int32_t item_count;
  int32_t item_id;
  int32_t heap_free; /* modulo 2^32 */
  int32_t heap_max_free;
  char mark[4];
};
ORV_API extern struct orv_heap_item orv_mon_heap_info;

/* The CPU monitor's item of the thread that it looked at last, running or not. In the packet
 * tick_count comes before task_id. */
struct orv_cpu_item {
  int32_t item_size;
  int32_t item_code;
  int32_t task_id;
  int32_t tick_count;
  char mark[4];
};
ORV_API extern struct orv_cpu_item orv_mon_cpu_info;

/* The CPU monitor's copy of the packet that it found, and the packet that it built from it. */
ORV_API extern char vconf_cpu_data[ORV_PACKET_MAX_TEXT];
ORV_API extern char wr_vconf_data[ORV_PACKET_MAX_TEXT];

ORV_END_DECLS

#endif
