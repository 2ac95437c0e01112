#include "handler/entry_count.h"

#include <string.h>

#include "common/handle.h"

namespace orv {

const dirent* next_entry(DIR* directory) noexcept {
  const dirent* entry = readdir(directory);
  while (entry != nullptr &&
         (strcmp(entry->d_name, ".") == 0 || strcmp(entry->d_name, "..") == 0)) {
    entry = readdir(directory);
  }
  return entry;
}

std::optional<int32_t> count_entries(const char* directory) noexcept {
  const handle<DIR> entries{opendir(directory)};
  if (!entries) {
    return std::nullopt;
  }
  int32_t count = 0;
  while (next_entry(entries.get()) != nullptr) {
    ++count;
  }
  return count;
}

}  // namespace orv
