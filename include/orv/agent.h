/* Start and stop of the agent.
 *
 * The host calls these from the thread that runs the default GLib main context. Loading the
 * library does nothing by itself; the host must run a main loop on that context, or no command is
 * dispatched and no monitor ticks.
 */
#ifndef ORV_AGENT_H
#define ORV_AGENT_H

#include <stdint.h>

#include <orv/export.h>

ORV_BEGIN_DECLS

/* Wall-clock time of the last start in milliseconds, modulo 2^32; 0 before the first. Read only. */
ORV_API extern uint32_t orv_start_time;

/* Resets the command keys, watches the command key and starts the log reader in the background.
 * 0, or -1 when the command key cannot be watched (logged; the keys are reset all the same). */
ORV_API int orv_init_handler(void);

/* Stops watching the command key. Monitors that run keep running, keys keep their values. */
ORV_API void orv_destroy_handler(void);

ORV_END_DECLS

#endif
