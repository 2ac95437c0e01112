// Looking a key up in the exported key map.
#ifndef ORV_HANDLER_KEY_MAP_H
#define ORV_HANDLER_KEY_MAP_H

#include <stdint.h>

#include <optional>

namespace orv {

// The keycode of the key with exactly this name; null names no key.
std::optional<int32_t> find_keycode(const char* name);

}  // namespace orv

#endif
