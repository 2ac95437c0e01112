// Synthetic input, each over a connection of its own.
#ifndef ORV_HANDLER_INJECTION_H
#define ORV_HANDLER_INJECTION_H

#include <stdint.h>

namespace orv {

// All true when the X server has taken every event; false when it cannot be reached, takes no
// synthetic input, refuses an event or goes away.
bool inject_key(int32_t keycode, bool press) noexcept;
bool inject_key_tap(int32_t keycode) noexcept;
bool inject_touch(int32_t x, int32_t y, bool press) noexcept;

}  // namespace orv

#endif
