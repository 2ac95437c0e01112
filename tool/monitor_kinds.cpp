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

// "77 (AeMain)", or "77" where the name is not known.
std::string thread_text(int32_t tid, const std::string& name) {
  return std::to_string(tid) + (name.empty() ? "" : " (" + printable(name) + ")");
}

std::string csv_start(const orv_item& item, const char* kind) {
  return format("%u,%s,%s,", item.tick_ms, utc_time(item.wall_ms).c_str(), kind);
}

// ---- cpu ----

std::string cpu_line(const orv_item& item) {
  return "thread " + thread_text(item.tid, item.name) + " runs";
}

void add_cpu_fields(ordered_json& object, const orv_item& item) {
  object["tid"] = item.tid;
  object["name"] = item.name;
}

std::string cpu_rows(const orv_item& item) {
  return csv_start(item, "cpu") +
         format("%d,%s,running,,,,,,\n", item.tid, csv_field(item.name).c_str());
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
  return csv_start(item, "heap") + format(",,,,,,,%u,%u\n", item.free_bytes, item.max_free_bytes);
}

// ---- stack ----

std::string stack_line(const orv_item& item) {
  const auto stacks = stacks_of(item);
  const auto most = std::max_element(
      stacks.begin(), stacks.end(),
      [](const auto& one, const auto& other) { return used_bytes(one) < used_bytes(other); });
  std::string line = format("%zu threads", stacks.size());
  if (most != stacks.end() && used_bytes(*most)) {
    line += ", most stack in use by " + thread_text(most->tid, most->name) + ": " +
            memory_size(*used_bytes(*most)) + " of " + memory_size(most->end - most->start);
  }
  return line;
}

void add_stack_fields(ordered_json& object, const orv_item& item) {
  auto threads = ordered_json::array();
  for (const orv_stack_sample& one : stacks_of(item)) {
    const auto used = used_bytes(one);
    threads.push_back({{"tid", one.tid},
                       {"name", one.name},
                       {"state", state_name(one.state)},
                       {"pointer", one.pointer},
                       {"end", one.end},
                       {"start", one.start},
                       {"used_bytes", used ? ordered_json(*used) : ordered_json(nullptr)}});
  }
  object["threads"] = std::move(threads);
}

std::string stack_rows(const orv_item& item) {
  const std::string start = csv_start(item, "stack");
  std::string rows;
  for (const orv_stack_sample& one : stacks_of(item)) {
    const auto used = used_bytes(one);
    rows += start + format("%d,%s,%s,%u,%u,%u,%s,,\n", one.tid, csv_field(one.name).c_str(),
                           state_name(one.state), one.pointer, one.end, one.start,
                           used ? std::to_string(*used).c_str() : "");
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
  return format("%10.3f s  %s  %-5s  ", item.tick_ms / 1000.0, utc_time(item.wall_ms).c_str(),
                kind.name) +
         kind.line(item) + "\n";
}

std::string to_json(const orv_item& item) {
  const monitor_kind& kind = kind_of(item);
  ordered_json object{
      {"item", kind.name}, {"tick_ms", item.tick_ms}, {"time", utc_time(item.wall_ms)}};
  kind.add_fields(object, item);
  return json_text(object);
}

const char csv_head[] =
    "tick_ms,time,item,tid,name,state,pointer,end,start,used_bytes,free_bytes,max_free_bytes\n";

std::string to_csv(const orv_item& item) {
  return kind_of(item).rows(item);
}

}  // namespace orvctl
