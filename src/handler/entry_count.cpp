#include "handler/entry_count.h"

#include <string.h>

#include "common/handle.h"

namespace orv {

std::optional<int32_t> count_entries(const char* directory) noexcept {
  const handle<DIR> entries{opendir(directory)};
  if (!entries) {
    return std::nullopt;
  }
  int32_t count = 0;
  while (const dirent* entry = readdir(entries.get())) {
    if (strcmp(entry->d_name, ".") != 0 && strcmp(entry->d_name, "..") != 0) {
      ++count;
    }
  }
  return count;
}

}  // namespace orv
