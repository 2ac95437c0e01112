/* Periodic callbacks on the default GLib main context.
 *
 * A timer id is the caller's: 0 when no timer is registered through it, else the id of the main
 * loop's source. Operations report through it and through the log alone. They never look whether
 * the source still exists: a caller whose callback ended its timer stops the timer or clears the
 * id itself, or a new start is refused. All from the main loop's thread.
 */
#ifndef ORV_TIMER_H
#define ORV_TIMER_H

#include <stdint.h>

#include <orv/export.h>

ORV_BEGIN_DECLS

/* True: call again after the next interval; 0: end the timer. */
typedef int (*orv_timer_callback)(void* user_data);

/* Calls `callback` every `interval` milliseconds, or seconds, until the timer is stopped or the
 * callback ends it. `user_data` is handed on and stays the caller's. `timer_id` may be null: the
 * timer then cannot be stopped from here. Refused with a logged error, the id left alone, when the
 * callback is null, when the id is set or when the main loop refuses. */
ORV_API void orv_start_timer(uint32_t interval, orv_timer_callback callback, void* user_data,
                             uint32_t* timer_id);
ORV_API void orv_start_timer_seconds(uint32_t interval, orv_timer_callback callback,
                                     void* user_data, uint32_t* timer_id);

/* Ends the timer and clears the id; silent when it is 0. A null pointer is logged as an error. */
ORV_API void orv_stop_timer(uint32_t* timer_id);

ORV_END_DECLS

#endif
