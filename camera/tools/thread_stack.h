// Where a thread's stack is. The kernel stopped telling in /proc/PID/stat with Linux 4.14.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string_view>

#include "task_stat.h"

namespace orv::camera {

// The stack pointer in a line of /proc/PID/task/TID/syscall; 0 for a thread without user memory,
// none for one that runs.
std::optional<std::uint64_t> parse_stack_pointer(std::string_view syscall_line);

// An address in the thread's own stack: its stack pointer while it waits; while it runs, or where
// we may not know, an address near the stack's base. 0 for a thread of the kernel or a dead one,
// none when nothing is known. Only reads: no thread is stopped or notices. `task_directory` is an
// open /proc/PID/task.
std::optional<std::uint64_t> stack_address(int task_directory, pid_t pid, pid_t tid,
                                           const task_stat& stat);

}  // namespace orv::camera
