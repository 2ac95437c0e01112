// The monitors, as a user names them, and their items as text.
#ifndef ORV_TOOL_MONITOR_KINDS_H
#define ORV_TOOL_MONITOR_KINDS_H

#include <orv/client.h>

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace orvctl {

struct monitor_kind {
  const char* name;
  int32_t monitor;        // ORV_MONITOR_*
  int fixed_interval_ms;  // 0: the tool sets it
  bool has_threads;
  uint32_t usual_timeout_ms;  // of a command while it ticks
  std::string (*line)(const orv_item& item);
  void (*add_fields)(nlohmann::ordered_json& object, const orv_item& item);
  std::string (*rows)(const orv_item& item);  // of CSV
};

std::span<const monitor_kind> monitor_kinds();

// Null when there is no such monitor.
const monitor_kind* find_monitor(std::string_view name);

// "cpu, heap or stack"
std::string monitor_names(const char* last);

// "heap ticks every 1000 ms and stack every 2000 ms"
std::string fixed_intervals();

// Bytes between the pointer and the stack's end; empty when the stack is not known or the pointer
// lies outside it.
std::optional<uint32_t> used_bytes(const orv_stack_sample& stack);

// An item as text that ends in a newline: one line to read; a JSON object on one line; a CSV row,
// or a row for each thread of a stack item.
std::string to_line(const orv_item& item);
std::string to_json(const orv_item& item);
extern const char csv_head[];
std::string to_csv(const orv_item& item);

}  // namespace orvctl

#endif
