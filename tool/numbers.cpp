#include "numbers.h"

#include <charconv>
#include <cstdint>

namespace orvctl {
namespace {

template <class Number>
std::optional<int> parse_whole(std::string_view text, int base) {
  Number number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base);
  if (error != std::errc{} || stop != end) {
    return std::nullopt;
  }
  return static_cast<int>(number);
}

}  // namespace

std::optional<int> parse_int(std::string_view text) {
  if (text.starts_with("0x") || text.starts_with("0X")) {
    return parse_whole<uint32_t>(text.substr(2), 16);
  }
  return parse_whole<int32_t>(text, 10);
}

std::string hexadecimal(int number) {
  char digits[16];
  const auto [end, error] =
      std::to_chars(digits, digits + sizeof digits, static_cast<unsigned>(number), 16);
  return "0x" + std::string{digits, end};
}

}  // namespace orvctl
