// Text as a user writes it, and as one reads it.
#ifndef ORV_TOOL_TEXT_H
#define ORV_TOOL_TEXT_H

#include <chrono>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvctl {

// A 32-bit integer: decimal with an optional minus sign, or hexadecimal after 0x up to ffffffff.
// Empty for anything else.
std::optional<int32_t> parse_int(std::string_view text);

// A time as in "500ms", "1.5s", "2m" or "1h"; a bare number is seconds. Empty for anything else,
// for nothing at all and for more than a day.
std::optional<std::chrono::milliseconds> parse_duration(std::string_view text);

// "2026-08-30T09:05:07.042Z", of milliseconds since 1970.
std::string utc_time(int64_t wall_ms);

// As printf has it.
__attribute__((format(printf, 1, 2))) std::string format(const char* format, ...);

// "0x208"
std::string hexadecimal(int32_t number);

// An amount of memory in the largest unit of which there is one, with a tenth: "132.0 KiB". Below
// 1 KiB in bytes: "96 B".
std::string memory_size(uint64_t bytes);

// "cpu, heap or stack", with `last` as " or "
std::string join(const std::vector<std::string>& texts, const char* last = ", ");

// Foreign text for a terminal. Terminals take commands from control characters, those of UTF-8's
// second half too (0xc2 and 0x80 to 0x9f), and a thread's name can hold any.
std::string printable(std::string text);

// Foreign text as a field of a CSV row, on one line: in quotes where it needs them.
std::string csv_field(const std::string& text);

// The object with a newline at its end: on one line, or indented by so many blanks. Bytes that are
// no UTF-8 are replaced.
std::string json_text(const nlohmann::ordered_json& object, int indent = -1);

}  // namespace orvctl

#endif
