// The address range of a thread's stack.
#ifndef ORV_COMMON_STACK_RANGE_H
#define ORV_COMMON_STACK_RANGE_H

#include <stdint.h>

#include <optional>
#include <string_view>

#include "common/thread_line.h"

namespace orv {

struct stack_range {
  uint32_t start;
  uint32_t end;
};

// Empty unless the line starts with two addresses of exactly eight digits, joined by a hyphen.
std::optional<stack_range> parse_stack_range(std::string_view line) noexcept;

// A line that the stack command printed; empty when it printed none.
struct stack_line {
  char text[84];
};

// Runs the thread's stack command; keeps the first line that it prints, or the last one for a
// thread of the monitored application. Empty when the command cannot be started.
std::optional<stack_line> ask_stack_line(const listed_thread& thread) noexcept;

}  // namespace orv

#endif
