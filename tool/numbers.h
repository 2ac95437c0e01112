// Numbers as a user writes them.
#ifndef ORV_TOOL_NUMBERS_H
#define ORV_TOOL_NUMBERS_H

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace orvctl {

// A 32-bit integer: decimal with an optional minus sign, or hexadecimal behind 0x up to ffffffff.
// Empty for anything else.
std::optional<int> parse_int(std::string_view text);

// A time as in "500ms", "30s", "2m" or "1h"; a bare number is seconds. Empty for anything else, for
// nothing at all and for more than a day.
std::optional<std::chrono::milliseconds> parse_duration(std::string_view text);

// "0x208"
std::string hexadecimal(int number);

}  // namespace orvctl

#endif
