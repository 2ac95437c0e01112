// Amounts of memory as a user reads them.
#ifndef ORV_TOOL_MEMORY_SIZE_H
#define ORV_TOOL_MEMORY_SIZE_H

#include <cstdint>
#include <string>

namespace orvctl {

// In the largest unit of which there is one, with a tenth: "132.0 KiB". Below 1 KiB in bytes:
// "96 B".
std::string memory_size(uint64_t bytes);

}  // namespace orvctl

#endif
