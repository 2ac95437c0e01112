#include "numbers.h"

#include <charconv>
#include <cstdint>
#include <utility>

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

std::optional<std::chrono::milliseconds> parse_duration(std::string_view text) {
  constexpr std::chrono::hours longest{24};
  constexpr std::pair<std::string_view, int64_t> units[] = {
      {"ms", 1}, {"s", 1000}, {"", 1000}, {"m", 60000}, {"h", 3600000}};
  int64_t number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  const std::string_view unit{stop, static_cast<size_t>(end - stop)};
  for (const auto& [name, factor] : units) {
    if (error == std::errc{} && unit == name && number > 0 &&
        number <= longest / std::chrono::milliseconds{factor}) {
      return std::chrono::milliseconds{number * factor};
    }
  }
  return std::nullopt;
}

std::string hexadecimal(int number) {
  char digits[16];
  const auto [end, error] =
      std::to_chars(digits, digits + sizeof digits, static_cast<unsigned>(number), 16);
  return "0x" + std::string{digits, end};
}

}  // namespace orvctl
