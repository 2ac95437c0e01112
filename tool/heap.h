// The answer to the heap query.
#ifndef ORV_TOOL_HEAP_H
#define ORV_TOOL_HEAP_H

#include <cstdint>
#include <optional>
#include <string_view>

namespace orvctl {

struct heap {
  uint32_t total_bytes;  // modulo 4 GiB
};

// Empty when the text is no heap summary. The agent prints the total signed.
std::optional<heap> parse_heap(std::string_view text);

}  // namespace orvctl

#endif
