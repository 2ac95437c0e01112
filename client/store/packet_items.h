// The monitors, and the items that they write into their packet.
#ifndef ORV_CLIENT_STORE_PACKET_ITEMS_H
#define ORV_CLIENT_STORE_PACKET_ITEMS_H

#include <orv/client.h>

#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace orv_client::store {

struct packet_item {
  orv_item fields{};  // without the time of reading, names and the pointer to the stacks
  std::vector<orv_stack_sample> stacks;
};

class field_reader;

struct monitor_row {
  int32_t monitor;  // ORV_MONITOR_*, which is also the agent's number for it
  int item_code;
  uint32_t fixed_interval_ms;  // 0: the request says it
  // Reads what follows the item's size and code.
  void (*read)(field_reader& fields, int size, packet_item& item);
};

std::span<const monitor_row> monitor_rows();

inline uint32_t interval_of(const monitor_row& row, uint32_t cpu_interval_ms) {
  return row.fixed_interval_ms != 0 ? row.fixed_interval_ms : cpu_interval_ms;
}

// The text after a packet's header; empty when the text is no packet.
std::optional<std::string_view> payload_of(std::string_view packet);

// Empty when the text is anything but whole items.
std::optional<std::vector<packet_item>> parse_items(std::string_view payload);

}  // namespace orv_client::store

#endif
