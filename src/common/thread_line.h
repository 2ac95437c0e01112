// A line of the process lister: "pid tid pcpu esp comm state".
#ifndef ORV_COMMON_THREAD_LINE_H
#define ORV_COMMON_THREAD_LINE_H

#include <stdint.h>

#include <optional>
#include <string_view>

namespace orv {

// The texts are cut to their sizes and padded with NUL.
struct listed_thread {
  int32_t pid;
  int32_t tid;
  uint32_t esp;
  char pid_text[18];  // digits only, as tid_text: they go into a shell command
  char tid_text[32];
  char pcpu[8];
  char comm[32];
  char state[8];  // with the newline, when the line ends behind it
};

// Empty for a line of no thread, of a thread without a stack pointer, and of those named "ps" and
// "sh": the lister and the shell that runs it.
std::optional<listed_thread> parse_thread(std::string_view line) noexcept;

}  // namespace orv

#endif
