// The camera's keys as a user names them.
#ifndef ORV_TOOL_KEY_NAMES_H
#define ORV_TOOL_KEY_NAMES_H

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvctl {

struct key_name {
  std::string_view name;
  int keycode;
};

// In the agent's order.
std::span<const key_name> all_keys();

// The keys that the text may stand for: the one that it names, or else all that begin with it. Case
// does not matter, nor whether KEY_ or VK_ is said.
std::vector<std::string_view> keys_like(std::string_view text);

// Why the text is no key's name, and what may have been meant; empty when it stands for one key.
std::string check_key(const std::string& text);

}  // namespace orvctl

#endif
