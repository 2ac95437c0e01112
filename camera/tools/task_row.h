// A line of the listing, in the columns of an ordinary ps.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <cstdio>
#include <optional>

#include "task_stat.h"

namespace orv::camera {

struct clock_reading {
  std::uint64_t now_ticks;  // after boot
  std::uint64_t ticks_per_second;
};

// CPU time in thousandths of the time since the thread's start.
unsigned cpu_permille(const task_stat& stat, const clock_reading& clock);

// What the stack pointer's column holds: the low 32 bits of `address`. Readers take 0 for a thread
// without a stack, so a live thread never has it: one whose low bits are all 0 has 1, and one of
// which nothing is known has the process's first stack, rather than to be missed.
std::uint32_t esp_column(std::optional<std::uint64_t> address, std::uint64_t start_stack);

void print_header(FILE* out, int id_width);
void print_row(FILE* out, int id_width, pid_t pid, pid_t tid, std::uint32_t esp,
               const task_stat& stat, const clock_reading& clock);

}  // namespace orv::camera
