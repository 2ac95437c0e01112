#include "monitor_kinds.h"

#include <orv/protocol.h>

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <vector>

#include "camera.h"
#include "text.h"

namespace orvctl {
namespace {

using nlohmann::ordered_json;

struct state_row {
  int32_t code;
  const char* name;
};
constexpr state_row states[] = {
    {ORV_THREAD_SLEEPING, "sleeping"}, {ORV_THREAD_RUNNING, "running"},
    {ORV_THREAD_WAITING, "waiting"},   {ORV_THREAD_ZOMBIE, "zombie"},
    {ORV_THREAD_STOPPED, "stopped"},   {ORV_THREAD_PAGING, "paging"},
};

const char* state_name(int32_t code) {
  const auto* row = std::find_if(std::begin(states), std::end(states),
                                 [code](const auto& one) { return one.code == code; });
  return row != std::end(states) ? row->name : "other";
}

std::span<const orv_stack_sample> stacks_of(const orv_item& item) {
  return {item.stacks, item.stack_count};
}

// ---- cpu ----

std::string cpu_line(const orv_item& item) {
  return format("thread %d runs", item.tid);
}

void add_cpu_fields(ordered_json& object, const orv_item& item) {
  object["tid"] = item.tid;
}

std::string cpu_rows(const orv_item& item) {
  return format("%u,cpu,%d,running,,,,,,\n", item.tick_ms, item.tid);
}

// ---- heap ----

std::string heap_line(const orv_item& item) {
  return memory_size(item.free_bytes) + " free";
}

void add_heap_fields(ordered_json& object, const orv_item& item) {
  object["free_bytes"] = item.free_bytes;
  object["max_free_bytes"] = item.max_free_bytes;
}

std::string heap_rows(const orv_item& item) {
  return format("%u,heap,,,,,,,%u,%u\n", item.tick_ms, item.free_bytes, item.max_free_bytes);
}

// ---- stack ----

std::string stack_line(const orv_item& item) {
  const auto stacks = stacks_of(item);
  const auto most = std::max_element(
      stacks.begin(), stacks.end(),
      [](const auto& one, const auto& other) { return used_bytes(one) < used_bytes(other); });
  std::string line = format("%zu threads", stacks.size());
  if (most != stacks.end() && used_bytes(*most)) {
    line += format(", most stack in use by %d: ", most->tid) + memory_size(*used_bytes(*most)) +
            " of " + memory_size(most->end - most->start);
  }
  return line;
}

void add_stack_fields(ordered_json& object, const orv_item& item) {
  auto threads = ordered_json::array();
  for (const orv_stack_sample& one : stacks_of(item)) {
    const auto used = used_bytes(one);
    threads.push_back({{"tid", one.tid},
                       {"state", state_name(one.state)},
                       {"pointer", one.pointer},
                       {"end", one.end},
                       {"start", one.start},
                       {"used_bytes", used ? ordered_json(*used) : ordered_json(nullptr)}});
  }
  object["threads"] = std::move(threads);
}

std::string stack_rows(const orv_item& item) {
  std::string rows;
  for (const orv_stack_sample& one : stacks_of(item)) {
    const auto used = used_bytes(one);
    rows += format("%u,stack,%d,%s,%u,%u,%u,%s,,\n", item.tick_ms, one.tid, state_name(one.state),
                   one.pointer, one.end, one.start, used ? std::to_string(*used).c_str() : "");
  }
  return rows;
}

// ---- All ----

constexpr monitor_kind kinds[] = {
    {"cpu", ORV_MONITOR_CPU, 0, true, usual_timeout_ms, cpu_line, add_cpu_fields, cpu_rows},
    {"heap", ORV_MONITOR_HEAP, ORV_HEAP_MONITOR_INTERVAL_MS, false, usual_timeout_ms, heap_line,
     add_heap_fields, heap_rows},
    {"stack", ORV_MONITOR_STACK, ORV_STACK_MONITOR_INTERVAL_MS, true, stack_timeout_ms, stack_line,
     add_stack_fields, stack_rows},
};

const monitor_kind& kind_of(const orv_item& item) {
  return *std::find_if(std::begin(kinds), std::prev(std::end(kinds)),
                       [&item](const auto& kind) { return kind.monitor == item.monitor; });
}

}  // namespace

std::span<const monitor_kind> monitor_kinds() {
  return kinds;
}

const monitor_kind* find_monitor(std::string_view name) {
  const auto* row = std::find_if(std::begin(kinds), std::end(kinds),
                                 [name](const auto& one) { return one.name == name; });
  return row != std::end(kinds) ? row : nullptr;
}

std::string monitor_names(const char* last) {
  std::vector<std::string> names;
  for (const monitor_kind& kind : kinds) {
    names.emplace_back(kind.name);
  }
  return join(names, last);
}

std::string fixed_intervals() {
  std::vector<std::string> intervals;
  for (const monitor_kind& kind : kinds) {
    if (kind.fixed_interval_ms != 0) {
      intervals.push_back(format("%s%s every %d ms", kind.name, intervals.empty() ? " ticks" : "",
                                 kind.fixed_interval_ms));
    }
  }
  return join(intervals, " and ");
}

std::optional<uint32_t> used_bytes(const orv_stack_sample& stack) {
  const bool inside = stack.end != 0 && stack.start <= stack.pointer && stack.pointer <= stack.end;
  return inside ? std::optional{stack.end - stack.pointer} : std::nullopt;
}

std::string to_line(const orv_item& item) {
  const monitor_kind& kind = kind_of(item);
  return format("%10.3f s  %-5s  ", item.tick_ms / 1000.0, kind.name) + kind.line(item) + "\n";
}

std::string to_json(const orv_item& item) {
  const monitor_kind& kind = kind_of(item);
  ordered_json object{{"item", kind.name}, {"tick_ms", item.tick_ms}};
  kind.add_fields(object, item);
  return json_text(object);
}

const char csv_head[] =
    "tick_ms,item,tid,state,pointer,end,start,used_bytes,free_bytes,max_free_bytes\n";

std::string to_csv(const orv_item& item) {
  return kind_of(item).rows(item);
}

}  // namespace orvctl
