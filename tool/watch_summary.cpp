#include "watch_summary.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "text.h"

namespace orvctl {
namespace {

using nlohmann::ordered_json;

constexpr size_t most_lines = 10;

// The first lines of a list, and how many there are beyond.
template <class List, class Line>
std::string first_lines(const List& list, Line line) {
  std::string text;
  for (size_t i = 0; i < std::min(list.size(), most_lines); ++i) {
    text += "  " + line(list[i]) + "\n";
  }
  if (list.size() > most_lines) {
    text += "  and " + std::to_string(list.size() - most_lines) + " more\n";
  }
  return text;
}

template <class Value, class Greater>
std::vector<std::pair<int32_t, Value>> sorted(const std::map<int32_t, Value>& threads,
                                              Greater greater) {
  std::vector<std::pair<int32_t, Value>> list{threads.begin(), threads.end()};
  std::stable_sort(list.begin(), list.end(), [&greater](const auto& one, const auto& other) {
    return greater(one.second, other.second);
  });
  return list;
}

}  // namespace

void watch_summary::add(const orv_item& item) {
  ++items_;
  if (item.monitor == ORV_MONITOR_CPU) {
    add_running(item.tid, item.name);
  } else if (item.monitor == ORV_MONITOR_HEAP) {
    add_free(item.free_bytes);
  }
  for (const orv_stack_sample& one : std::span{item.stacks, item.stack_count}) {
    add_stack(one);
  }
}

void watch_summary::add_running(int32_t thread, const char* name) {
  ++running_[thread];
  set_name(thread, name);
}

void watch_summary::add_free(uint32_t free_bytes) {
  ++heap_items_;
  free_sum_ += free_bytes;
  least_free_ = std::min(least_free_, free_bytes);
}

void watch_summary::add_stack(const orv_stack_sample& stack) {
  const auto used = used_bytes(stack);
  if (used && *used >= largest_use_[stack.tid].used_bytes) {
    largest_use_[stack.tid] = {*used, stack.end - stack.start};
  }
  set_name(stack.tid, stack.name);
}

// A name is learned some time after its thread is seen first.
void watch_summary::set_name(int32_t thread, const char* name) {
  if (*name != '\0') {
    names_[thread] = name;
  }
}

std::vector<std::pair<int32_t, uint64_t>> watch_summary::by_running() const {
  return sorted(running_, std::greater<>{});
}

std::vector<std::pair<int32_t, watch_summary::stack_use>> watch_summary::by_stack_use() const {
  return sorted(largest_use_, [](const stack_use& one, const stack_use& other) {
    return one.used_bytes > other.used_bytes;
  });
}

uint32_t watch_summary::mean_free() const {
  return static_cast<uint32_t>(free_sum_ / heap_items_);
}

std::string watch_summary::name_of(int32_t thread) const {
  const auto named = names_.find(thread);
  return named != names_.end() ? named->second : "";
}

std::string watch_summary::to_lines() const {
  const auto titled = [this](int32_t thread, const std::string& told) {
    return format("%7d  %-15s  ", thread, printable(name_of(thread)).c_str()) + told;
  };
  std::string text = std::to_string(items_) + " items\n";
  if (!running_.empty()) {
    text += "seen running, times by thread:\n" + first_lines(by_running(), [&](const auto& row) {
              return titled(row.first, std::to_string(row.second));
            });
  }
  if (heap_items_ != 0) {
    text += "free memory: least " + memory_size(least_free_) + ", mean " +
            memory_size(mean_free()) + "\n";
  }
  if (!largest_use_.empty()) {
    text += "largest stack use by thread:\n" + first_lines(by_stack_use(), [&](const auto& row) {
              return titled(row.first, memory_size(row.second.used_bytes) + " of " +
                                           memory_size(row.second.size_bytes));
            });
  }
  return text;
}

std::string watch_summary::to_json() const {
  ordered_json summary{{"items", items_}};
  auto running = ordered_json::array();
  for (const auto& [thread, times] : by_running()) {
    running.push_back({{"tid", thread}, {"name", name_of(thread)}, {"times", times}});
  }
  auto stacks = ordered_json::array();
  for (const auto& [thread, use] : by_stack_use()) {
    stacks.push_back({{"tid", thread},
                      {"name", name_of(thread)},
                      {"used_bytes", use.used_bytes},
                      {"size_bytes", use.size_bytes}});
  }
  summary["running"] = std::move(running);
  if (heap_items_ != 0) {
    summary["free_bytes"] = {{"least", least_free_}, {"mean", mean_free()}};
  }
  summary["stack_use"] = std::move(stacks);
  return json_text({{"summary", std::move(summary)}});
}

}  // namespace orvctl
