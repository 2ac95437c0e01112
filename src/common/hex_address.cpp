#include "common/hex_address.h"

namespace orv {
namespace {

constexpr std::string_view letters = "aAbBcCdDeEfF";

constexpr int not_a_digit = -1;

int digit_of(char c) {
  if (c >= '0' && c <= '9') {
    return c - '0';
  }
  const int letter = hex_letter(c);
  return letter != 0 ? letter : not_a_digit;
}

}  // namespace

uint32_t hex_address(std::string_view text) noexcept {
  if (text.starts_with("0x") || text.starts_with("0X")) {
    text.remove_prefix(2);
  }
  uint32_t value = 0;
  for (const char c : text) {
    const int digit = digit_of(c);
    if (digit == not_a_digit) {
      return 0;
    }
    value = value << 4U | static_cast<uint32_t>(digit);
  }
  return value;
}

int hex_letter(char c) noexcept {
  const size_t position = letters.find(c);
  return position != std::string_view::npos ? static_cast<int>(position / 2) + 10 : 0;
}

}  // namespace orv
