// What a directory holds, besides itself and its parent.
#ifndef ORV_HANDLER_ENTRY_COUNT_H
#define ORV_HANDLER_ENTRY_COUNT_H

#include <dirent.h>
#include <stdint.h>

#include <optional>

namespace orv {

// The next entry that is neither "." nor ".."; null after the last.
const dirent* next_entry(DIR* directory) noexcept;

// How many there are; empty when the directory cannot be listed.
std::optional<int32_t> count_entries(const char* directory) noexcept;

}  // namespace orv

#endif
