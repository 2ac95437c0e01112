// The items of a monitor packet.
#ifndef ORV_TOOL_PACKET_ITEMS_H
#define ORV_TOOL_PACKET_ITEMS_H

#include <orv/protocol.h>

#include <cstdint>
#include <optional>
#include <string_view>
#include <variant>
#include <vector>

namespace orvctl {

// A thread that was running.
struct cpu_item {
  static constexpr int code = ORV_ITEM_CPU;
  uint32_t tick_ms;  // since the agent's start
  int thread;
};

// Bytes, modulo 2^32.
struct heap_item {
  static constexpr int code = ORV_ITEM_HEAP;
  uint32_t tick_ms;
  uint32_t free;
  uint32_t max_free;
};

struct stack_sample {
  int thread;
  int state;  // the agent's code
  uint32_t pointer;
  uint32_t end;
  uint32_t start;
};

struct stack_item {
  static constexpr int code = ORV_ITEM_STACK;
  uint32_t tick_ms;
  std::vector<stack_sample> threads;
};

using packet_item = std::variant<cpu_item, heap_item, stack_item>;

uint32_t tick_of(const packet_item& item);
int code_of(const packet_item& item);

// Bytes between the pointer and the stack's end; empty when the stack is not known or the pointer
// lies outside it.
std::optional<uint32_t> used_bytes(const stack_sample& stack);

// The text behind a packet's header; empty when the text is no packet.
std::optional<std::string_view> payload_of(std::string_view packet);

// Empty when the text is anything but whole items.
std::optional<std::vector<packet_item>> parse_items(std::string_view payload);

}  // namespace orvctl

#endif
