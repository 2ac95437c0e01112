// What the listing needs of a thread's line in /proc/PID/task/TID/stat.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace orv::camera {

struct task_stat {
  std::string_view comm;  // in the parsed text; may hold blanks and parentheses
  char state;
  std::uint64_t cpu_ticks;    // user and system time
  std::uint64_t start_ticks;  // after boot
  std::uint64_t start_stack;  // where the process's first stack began; 0: no memory, or not for us
};

std::optional<task_stat> parse_task_stat(std::string_view line);

}  // namespace orv::camera
