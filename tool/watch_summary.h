// What a watch of the monitors comes to.
#ifndef ORV_TOOL_WATCH_SUMMARY_H
#define ORV_TOOL_WATCH_SUMMARY_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "packet_items.h"

namespace orvctl {

class watch_summary {
 public:
  void add(const packet_item& item);
  // For threads that are told; one without a name is told by its id alone.
  void set_names(std::map<int, std::string> names) { names_ = std::move(names); }

  [[nodiscard]] uint64_t items() const { return items_; }
  [[nodiscard]] bool tells_threads() const { return !running_.empty() || !largest_use_.empty(); }
  // Several lines to read, or one JSON object on one line.
  [[nodiscard]] std::string to_lines() const;
  [[nodiscard]] std::string to_json() const;

 private:
  struct stack_use {
    uint32_t used_bytes;
    uint32_t size_bytes;
  };

  void count(const cpu_item& item);
  void count(const heap_item& item);
  void count(const stack_item& item);

  // Threads by id, the busiest first; the most used stack first.
  [[nodiscard]] std::vector<std::pair<int, uint64_t>> by_running() const;
  [[nodiscard]] std::vector<std::pair<int, stack_use>> by_stack_use() const;
  [[nodiscard]] uint32_t mean_free() const;
  [[nodiscard]] std::string name_of(int thread) const;

  uint64_t items_ = 0;
  std::map<int, uint64_t> running_;
  uint64_t heap_items_ = 0;
  uint64_t free_sum_ = 0;
  uint32_t least_free_ = UINT32_MAX;
  std::map<int, stack_use> largest_use_;
  std::map<int, std::string> names_;
};

}  // namespace orvctl

#endif
