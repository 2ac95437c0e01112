#include "monitor/packet.h"

#include <orv/monitor.h>
#include <orv/protocol.h>
#include <vconf.h>

#include <charconv>
#include <utility>

#include "common/answer.h"
#include "common/log.h"

orv_packet_header g_packet_data = {};

namespace orv {
namespace {

constexpr std::string_view packet_start = ORV_PACKET_START;
static_assert(ORV_COMMAND_SEND_BUFFER == 848);

constexpr packet empty_packet = {ORV_PACKET_HEADER_SIZE, {}};

int32_t leading_number(std::string_view field) {
  uint32_t number = 0;
  std::from_chars(field.data(), field.data() + field.size(), number);
  return static_cast<int32_t>(number);
}

// A foreign packet may claim any total.
int32_t wrapping_sum(int32_t one, int32_t other) {
  return static_cast<int32_t>(static_cast<uint32_t>(one) + static_cast<uint32_t>(other));
}

}  // namespace

owned_text read_packet() {
  return owned_text{vconf_get_str(VCONFKEY_ORV_RESULT_DATA)};
}

packet parse_packet(std::string_view text) {
  if (!text.starts_with(packet_start)) {
    return empty_packet;
  }
  text.remove_prefix(packet_start.size());
  const size_t comma = text.find(',');
  if (comma == std::string_view::npos) {
    return empty_packet;
  }
  const std::string_view total = text.substr(0, comma);
  text.remove_prefix(comma + 1);
  return {leading_number(total), text};
}

packet copy_packet(const owned_text& text, char* copy, size_t size) {
  const std::string_view whole{text ? text.get() : ""};
  if (whole.empty()) {
    return empty_packet;
  }
  const size_t length = copy_cut(copy, size, whole);
  return parse_packet(length == whole.size() ? std::string_view{copy, length} : whole);
}

bool grow_packet(const packet& old, const tick_items& items, bounded_text& grown) {
  const int32_t total = wrapping_sum(old.total_count, items.size_bytes);
  const bool fits = grown.format("%d,%d,", ORV_COMMAND_SEND_BUFFER, total) &&
                    grown.append(old.payload) && grown.append(items.first) &&
                    grown.append(items.rest);
  g_packet_data.total_count = fits ? total : old.total_count;
  if (!fits) {
    orv_log_error("grow_packet():: packet is full, item of %d bytes dropped \n", items.size_bytes);
  }
  return fits;
}

const char* reread_packet(owned_text& text) {
  if (owned_text now = read_packet()) {
    text = std::move(now);
  }
  g_packet_data.total_count = parse_packet(text.get()).total_count;
  return text.get();
}

void answer_tick(const char* packet) {
  answer(packet, ORV_RESULT_OK);
}

}  // namespace orv
