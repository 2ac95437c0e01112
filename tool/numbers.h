// Numbers as a user writes them.
#ifndef ORV_TOOL_NUMBERS_H
#define ORV_TOOL_NUMBERS_H

#include <optional>
#include <string>
#include <string_view>

namespace orvctl {

// A 32-bit integer: decimal with an optional minus sign, or hexadecimal behind 0x up to ffffffff.
// Empty for anything else.
std::optional<int> parse_int(std::string_view text);

// "0x208"
std::string hexadecimal(int number);

}  // namespace orvctl

#endif
