#include "memory_size.h"

#include <cstdio>

namespace orvctl {

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
  char text[32];
  snprintf(text, sizeof text, "%.1f %s", amount, units[unit]);
  return text;
}

}  // namespace orvctl
