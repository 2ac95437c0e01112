/* Keys and touches: the key map and the injectors.
 *
 * An injector sends its events over an X connection of its own to the display that the host's
 * environment names, closes it, asks check_failed() (orv/health.h) how the application took it and
 * writes the result key once, on every path:
 *   0   the events were sent, the check passed, and no earlier failure stood
 *  -1   a parameter or a key name is wrong, the display cannot be reached or takes no synthetic
 *       input, the X server refused an event or went away, or the check failed. The next injection
 *       whose check passes answers -1 as well; the one after it answers 0 again.
 *
 * Record and text stay the caller's and are only read. The record may not be null; a null text
 * names no key. Main loop's thread only. While an injection runs, the process's X error handlers
 * are the agent's; what other threads' connections report meanwhile goes on to the host's handlers.
 */
#ifndef ORV_INPUT_H
#define ORV_INPUT_H

#include <stdint.h>

#include <orv/export.h>

ORV_BEGIN_DECLS

struct orv_command; /* orv/command.h */

struct key_map_entry {
  char key_name[80]; /* NUL-terminated */
  int32_t keycode;   /* as the camera's X server knows the key */
};

enum { ORV_KEY_MAP_ROWS = 34 };

/* The keys that the injectors know; the row named "end" is none. */
ORV_API extern const struct key_map_entry orv_key_map[ORV_KEY_MAP_ROWS];

/* Presses (param2 1) or releases (param2 0) the key that `data` names. A pressed key stays down
 * until its release is sent. */
ORV_API void orv_event_key_handler(const struct orv_command* record, const char* data);

/* Presses and releases (param1 2), or only releases (param1 0), the key that `data` names. */
ORV_API void orv_event_virtual_key_handler(const struct orv_command* record, const char* data);

/* Moves the pointer to (param3, param4), in pixels of the screen that it is on, and presses
 * (param2 1) or releases (param2 0) its button 1 there. Does not read `data`, which may be null. */
ORV_API void orv_event_touch_handler(const struct orv_command* record, const char* data);

ORV_END_DECLS

#endif
