// The heap query and its answer.
#ifndef ORV_TOOL_HEAP_H
#define ORV_TOOL_HEAP_H

#include <cstdint>
#include <optional>
#include <string_view>

#include "context.h"

namespace orvctl {

struct heap {
  uint32_t total_bytes;  // modulo 4 GiB
};

// Empty when the text is no heap summary. The agent prints the total signed.
std::optional<heap> parse_heap(std::string_view text);

// Asks the target how much memory it has and prints it as a table or as a JSON object.
void show_heap(context& shared, bool json);

}  // namespace orvctl

#endif
