// The answer to the stack query.
#ifndef ORV_TOOL_THREAD_LIST_H
#define ORV_TOOL_THREAD_LIST_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvctl {

struct thread_stack {
  int tid;
  std::string name;
  uint32_t size_bytes;  // 0, as the base, when the agent could not learn it
  uint32_t base;
};

struct thread_list {
  int count;  // threads sampled; more than are listed when the answer had no room for all
  std::vector<thread_stack> threads;
};

// Empty when the text is no whole thread list, or lists more threads than it counts. A thread may
// have any name, commas and marks included: a group ends at the first mark behind two numbers that
// the next group or the end follows.
std::optional<thread_list> parse_thread_list(std::string_view text);

enum class sort_key { tid, name, size, base };

// By size the largest first, else ascending; threads that are equal in it, by id.
void sort_threads(std::vector<thread_stack>& threads, sort_key key);

}  // namespace orvctl

#endif
