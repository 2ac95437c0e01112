// Lines of a maps file, as the kernel of a 32-bit camera prints them.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string_view>

namespace orv::camera {

struct mapping {
  std::uint64_t start;
  std::uint64_t end;         // the first address after it
  std::string_view details;  // permissions, offset, device and inode
  std::string_view name;     // a path or a mark like [heap]; may hold blanks; empty: anonymous
};

std::optional<mapping> parse_mapping(std::string_view line);

// The name in a thread's own maps file, as kernels before 4.5 printed it: the mapping that holds
// its stack is marked [stack], no other one is. Paths are not touched, even with the word "stack"
// in them.
std::string_view name_for_thread(const mapping& mapping,
                                 std::optional<std::uint64_t> stack_address);

// Only the low 32 bits of addresses are printed. A mapping that crosses a multiple of 4 GiB so ends
// below its start; the 32-bit difference of both is still its size.
void print_mapping(FILE* out, const mapping& mapping);

// Which maps file a path names: a process's (no tid) or a thread's; none for any other path.
struct maps_file {
  std::string_view pid;
  std::optional<std::string_view> tid;
};
std::optional<maps_file> parse_maps_path(std::string_view path);

}  // namespace orv::camera
