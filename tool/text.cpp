#include "text.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <memory>
#include <nlohmann/json.hpp>
#include <utility>

namespace orvctl {
namespace {

template <class Number>
std::optional<int32_t> parse_whole(std::string_view text, int base) {
  Number number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base);
  if (error != std::errc{} || stop != end) {
    return std::nullopt;
  }
  return static_cast<int32_t>(number);
}

}  // namespace

std::optional<int32_t> parse_int(std::string_view text) {
  if (text.starts_with("0x") || text.starts_with("0X")) {
    return parse_whole<uint32_t>(text.substr(2), 16);
  }
  return parse_whole<int32_t>(text, 10);
}

std::optional<std::chrono::milliseconds> parse_duration(std::string_view text) {
  constexpr std::chrono::hours longest{24};
  constexpr std::pair<std::string_view, int> units[] = {
      {"ms", 1}, {"s", 1000}, {"", 1000}, {"m", 60000}, {"h", 3600000}};
  const size_t size = std::min(text.find_first_not_of("0123456789."), text.size());
  const std::string number{text.substr(0, size)};
  char* end = nullptr;
  const double amount = strtod(number.c_str(), &end);
  for (const auto& [name, factor] : units) {
    const double time_ms = amount * factor;
    if (*end == '\0' && text.substr(size) == name && time_ms >= 1 &&
        time_ms <= static_cast<double>(std::chrono::milliseconds{longest}.count())) {
      return std::chrono::milliseconds{std::llround(time_ms)};
    }
  }
  return std::nullopt;
}

std::string utc_time(int64_t wall_ms) {
  const auto seconds = static_cast<time_t>(wall_ms / 1000);
  tm parts{};
  gmtime_r(&seconds, &parts);
  char text[sizeof "2026-08-30T09:05:07"] = "";
  strftime(text, sizeof text, "%FT%T", &parts);
  return format("%s.%03dZ", text, static_cast<int>(wall_ms % 1000));
}

std::string format(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  char* text = nullptr;
  const int size = vasprintf(&text, format, arguments);
  va_end(arguments);
  const std::unique_ptr<char, decltype(&free)> made{size >= 0 ? text : nullptr, free};
  return made ? std::string{made.get(), static_cast<size_t>(size)} : "";
}

std::string hexadecimal(int32_t number) {
  return format("0x%x", static_cast<unsigned>(number));
}

std::string memory_size(uint64_t bytes) {
  constexpr const char* units[] = {"KiB", "MiB", "GiB"};
  if (bytes < 1024) {
    return std::to_string(bytes) + " B";
  }
  size_t unit = 0;
  auto amount = static_cast<double>(bytes) / 1024;
  // What would be shown as 1024.0 is 1.0 of the next unit.
  while (amount >= 1023.95 && unit + 1 < std::size(units)) {
    amount /= 1024;
    ++unit;
  }
  return format("%.1f %s", amount, units[unit]);
}

std::string join(const std::vector<std::string>& texts, const char* last) {
  std::string joined;
  for (size_t i = 0; i < texts.size(); ++i) {
    const char* separator = i + 1 == texts.size() ? last : ", ";
    joined += (i == 0 ? "" : separator) + texts[i];
  }
  return joined;
}

std::string printable(std::string text) {
  unsigned char before = 0;
  for (char& letter : text) {
    const auto byte = static_cast<unsigned char>(letter);
    if (byte < ' ' || byte == 0x7f || (before == 0xc2 && byte >= 0x80 && byte < 0xa0)) {
      letter = '?';
    }
    before = byte;
  }
  return text;
}

std::string csv_field(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) {
    return printable(text);
  }
  std::string quoted;
  for (const char letter : printable(text)) {
    quoted += letter == '"' ? "\"\"" : std::string(1, letter);
  }
  return "\"" + quoted + "\"";
}

std::string json_text(const nlohmann::ordered_json& object, int indent) {
  return object.dump(indent, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace orvctl
