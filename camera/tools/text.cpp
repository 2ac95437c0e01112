#include "text.h"

#include <algorithm>
#include <charconv>

namespace orv::camera {

std::string_view take_word(std::string_view& text) {
  constexpr std::string_view separators = " \n";
  text.remove_prefix(std::min(text.find_first_not_of(separators), text.size()));
  const std::string_view word = text.substr(0, text.find_first_of(separators));
  text.remove_prefix(word.size());
  return word;
}

std::optional<std::uint64_t> to_number(std::string_view word, int base) {
  std::uint64_t value = 0;
  const char* end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, value, base);
  if (error != std::errc{} || stop != end) return std::nullopt;
  return value;
}

}  // namespace orv::camera
