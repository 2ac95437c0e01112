// What a watch of the monitors comes to.
#ifndef ORV_TOOL_WATCH_SUMMARY_H
#define ORV_TOOL_WATCH_SUMMARY_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "monitor_kinds.h"

namespace orvctl {

class watch_summary {
 public:
  void add(const orv_item& item);

  [[nodiscard]] uint64_t items() const { return items_; }
  // Several lines to read, or one JSON object on one line.
  [[nodiscard]] std::string to_lines() const;
  [[nodiscard]] std::string to_json() const;

 private:
  struct stack_use {
    uint32_t used_bytes;
    uint32_t size_bytes;
  };

  void add_running(int32_t thread, const char* name);
  void add_free(uint32_t free_bytes);
  void add_stack(const orv_stack_sample& stack);

  // Threads by id, the busiest first; the most used stack first.
  [[nodiscard]] std::vector<std::pair<int32_t, uint64_t>> by_running() const;
  [[nodiscard]] std::vector<std::pair<int32_t, stack_use>> by_stack_use() const;
  [[nodiscard]] uint32_t mean_free() const;
  void set_name(int32_t thread, const char* name);
  [[nodiscard]] std::string name_of(int32_t thread) const;

  uint64_t items_ = 0;
  std::map<int32_t, uint64_t> running_;
  uint64_t heap_items_ = 0;
  uint64_t free_sum_ = 0;
  uint32_t least_free_ = UINT32_MAX;
  std::map<int32_t, stack_use> largest_use_;
  std::map<int32_t, std::string> names_;  // of a thread without one, the id is all that is shown
};

}  // namespace orvctl

#endif
