// The two steps that every parser of procfs text here is made of.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace orv::camera {

// Cuts the next word off the front of `text`; blanks and newlines separate. Empty at the end.
std::string_view take_word(std::string_view& text);

// The whole of `word` as a number. Addresses are 64 bits wide whatever this program is built for: a
// 32-bit build may look at 64-bit processes.
std::optional<std::uint64_t> to_number(std::string_view word, int base = 10);

}  // namespace orv::camera
