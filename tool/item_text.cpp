#include "item_text.h"

#include <orv/protocol.h>
#include <stdarg.h>
#include <stdio.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "memory_size.h"

namespace orvctl {
namespace {

using nlohmann::ordered_json;

struct state_row {
  int code;
  const char* name;
};
constexpr state_row states[] = {
    {ORV_STATE_SLEEPING, "sleeping"}, {ORV_STATE_RUNNING, "running"},
    {ORV_STATE_WAITING, "waiting"},   {ORV_STATE_ZOMBIE, "zombie"},
    {ORV_STATE_STOPPED, "stopped"},   {ORV_STATE_PAGING, "paging"},
};

const char* name_of(const packet_item& item) {
  constexpr const char* names[] = {"cpu", "heap", "stack"};  // as the variant's alternatives
  static_assert(std::variant_size_v<packet_item> == std::size(names));
  return names[item.index()];
}

const char* state_name(int code) {
  const auto* row = std::find_if(std::begin(states), std::end(states),
                                 [code](const auto& one) { return one.code == code; });
  return row != std::end(states) ? row->name : "other";
}

__attribute__((format(printf, 1, 2))) std::string print(const char* format, ...) {
  char text[256];
  va_list arguments;
  va_start(arguments, format);
  vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  return text;
}

std::string line_of(const cpu_item& item) {
  return print("thread %d runs", item.thread);
}

std::string line_of(const heap_item& item) {
  return memory_size(item.free) + " free";
}

std::string line_of(const stack_item& item) {
  const auto most = std::max_element(item.threads.begin(), item.threads.end(),
                                     [](const stack_sample& one, const stack_sample& other) {
                                       return used_bytes(one) < used_bytes(other);
                                     });
  std::string line = print("%zu threads", item.threads.size());
  if (most != item.threads.end() && used_bytes(*most)) {
    line += print(", most stack in use by %d: ", most->thread) + memory_size(*used_bytes(*most)) +
            " of " + memory_size(most->end - most->start);
  }
  return line;
}

void add_fields(ordered_json& object, const cpu_item& item) {
  object["tid"] = item.thread;
}

void add_fields(ordered_json& object, const heap_item& item) {
  object["free_bytes"] = item.free;
  object["max_free_bytes"] = item.max_free;
}

void add_fields(ordered_json& object, const stack_item& item) {
  auto threads = ordered_json::array();
  for (const stack_sample& one : item.threads) {
    const auto used = used_bytes(one);
    threads.push_back({{"tid", one.thread},
                       {"state", state_name(one.state)},
                       {"pointer", one.pointer},
                       {"end", one.end},
                       {"start", one.start},
                       {"used_bytes", used ? ordered_json(*used) : ordered_json(nullptr)}});
  }
  object["threads"] = std::move(threads);
}

std::string rows_of(const cpu_item& item) {
  return print("%u,cpu,%d,running,,,,,,\n", item.tick_ms, item.thread);
}

std::string rows_of(const heap_item& item) {
  return print("%u,heap,,,,,,,%u,%u\n", item.tick_ms, item.free, item.max_free);
}

std::string rows_of(const stack_item& item) {
  std::string rows;
  for (const stack_sample& one : item.threads) {
    const auto used = used_bytes(one);
    rows += print("%u,stack,%d,%s,%u,%u,%u,%s,,\n", item.tick_ms, one.thread, state_name(one.state),
                  one.pointer, one.end, one.start, used ? std::to_string(*used).c_str() : "");
  }
  return rows;
}

}  // namespace

std::string to_line(const packet_item& item) {
  const std::string start = print("%10.3f s  %-5s  ", tick_of(item) / 1000.0, name_of(item));
  return start + std::visit([](const auto& one) { return line_of(one); }, item) + "\n";
}

std::string to_json(const packet_item& item) {
  ordered_json object{{"item", name_of(item)}, {"tick_ms", tick_of(item)}};
  std::visit([&object](const auto& one) { add_fields(object, one); }, item);
  return object.dump() + "\n";
}

const char csv_head[] =
    "tick_ms,item,tid,state,pointer,end,start,used_bytes,free_bytes,max_free_bytes\n";

std::string to_csv(const packet_item& item) {
  return std::visit([](const auto& one) { return rows_of(one); }, item);
}

}  // namespace orvctl
