#include "packet_follower.h"

#include <utility>

namespace orv_client::store {

packet_follower::news packet_follower::look(std::string_view text) {
  const std::string_view payload = payload_of(text).value_or("");
  news found;
  found.begun_anew = !payload.starts_with(taken_);
  const size_t known = found.begun_anew ? 0 : taken_.size();
  auto items = parse_items(payload.substr(known));
  found.garbled = !items;
  found.items = std::move(items).value_or(std::vector<packet_item>{});
  taken_ = payload;
  return found;
}

}  // namespace orv_client::store
