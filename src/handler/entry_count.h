// How full a directory is.
#ifndef ORV_HANDLER_ENTRY_COUNT_H
#define ORV_HANDLER_ENTRY_COUNT_H

#include <stdint.h>

#include <optional>

namespace orv {

// The directory's entries besides "." and ".."; empty when it cannot be listed.
std::optional<int32_t> count_entries(const char* directory) noexcept;

}  // namespace orv

#endif
