// The kernel's view of a thread's memory.
#ifndef ORV_TESTS_SUPPORT_MAPPING_H
#define ORV_TESTS_SUPPORT_MAPPING_H

#include <stdint.h>

#include <fstream>
#include <optional>
#include <sstream>
#include <string>

namespace orv_test {

struct mapping {
  uint64_t start;
  uint64_t end;

  bool operator==(const mapping&) const = default;
};

// The one that holds the address, of those that a file of /proc tells.
inline std::optional<mapping> mapping_of(const std::string& maps_file, uint64_t address) {
  std::ifstream maps{maps_file};
  for (std::string line; std::getline(maps, line);) {
    mapping found{};
    char hyphen = 0;
    std::istringstream{line} >> std::hex >> found.start >> hyphen >> found.end;
    if (found.start <= address && address < found.end) {
      return found;
    }
  }
  return std::nullopt;
}

}  // namespace orv_test

#endif
