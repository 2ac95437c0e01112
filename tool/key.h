// Pressing and releasing keys.
#ifndef ORV_TOOL_KEY_H
#define ORV_TOOL_KEY_H

#include <orv/protocol.h>

#include <array>
#include <string>

#include "context.h"

namespace orvctl {

struct key_action {
  const char* name;
  const char* help;
  std::array<int, 4> parameters;
};

inline constexpr key_action key_actions[] = {
    {"tap", "Press a key and release it at once", {ORV_EVENT_VIRTUAL_KEY}},
    {"press", "Press a key; it stays down until it is released", {ORV_EVENT_KEY, ORV_PRESS}},
    {"release", "Release a key", {ORV_EVENT_KEY, ORV_RELEASE}},
};

// `text` stands for one key (key_names.h).
void send_key(context& shared, const key_action& action, const std::string& text);

// Prints the names of all keys and their X keycodes.
void list_keys();

}  // namespace orvctl

#endif
