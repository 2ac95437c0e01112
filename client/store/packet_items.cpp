#include "packet_items.h"

#include <orv/protocol.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <type_traits>

namespace orv_client::store {

// Takes fields off a text. Once one is missing or is not what was asked for, all that follow fail.
class field_reader {
 public:
  explicit field_reader(std::string_view text) : rest_{text} {}

  template <class Number>
  Number number() {
    const std::string_view field = next();
    Number value = 0;
    const auto [stop, error] = std::from_chars(field.data(), field.data() + field.size(), value);
    good_ = good_ && error == std::errc{} && stop == field.data() + field.size();
    return good_ ? value : 0;
  }
  // The agent prints its 32-bit clock and sizes with a sign.
  uint32_t signed_number() { return static_cast<uint32_t>(number<int32_t>()); }
  void expect(int value) { require(number<int>() == value); }
  void expect_separator() { require(next() == "$"); }
  void require(bool holds) { good_ = good_ && holds; }

  [[nodiscard]] bool good() const { return good_; }
  [[nodiscard]] bool more() const { return good_ && !rest_.empty(); }

 private:
  std::string_view next() {
    const size_t comma = rest_.find(',');
    if (comma == std::string_view::npos) {
      good_ = false;
      return {};
    }
    const std::string_view field = rest_.substr(0, comma);
    rest_.remove_prefix(comma + 1);
    return field;
  }

  std::string_view rest_;
  bool good_ = true;
};

namespace {

constexpr std::string_view packet_start = ORV_PACKET_START;

void read_cpu_item(field_reader& fields, int size, packet_item& item) {
  fields.require(size == ORV_ITEM_CPU_SIZE);
  item.fields.tick_ms = fields.signed_number();
  item.fields.tid = fields.number<int32_t>();
  fields.expect_separator();
}

void read_heap_item(field_reader& fields, int size, packet_item& item) {
  fields.require(size == ORV_ITEM_HEAP_SIZE);
  item.fields.tick_ms = fields.signed_number();
  fields.expect(1);
  fields.expect(1);
  item.fields.free_bytes = fields.signed_number();
  item.fields.max_free_bytes = fields.signed_number();
  fields.expect_separator();
}

orv_stack_sample read_stack_sample(field_reader& fields) {
  orv_stack_sample sample{};
  sample.tid = fields.number<int32_t>();
  sample.state = fields.number<int32_t>();
  sample.pointer = fields.number<uint32_t>();
  sample.end = fields.number<uint32_t>();
  sample.start = fields.number<uint32_t>();
  fields.expect_separator();
  return sample;
}

void read_stack_item(field_reader& fields, int size, packet_item& item) {
  item.fields.tick_ms = fields.signed_number();
  const int count = fields.number<int>();
  fields.require(count >= 0 &&
                 size == ORV_ITEM_STACK_SIZE + int64_t{ORV_ITEM_STACK_GROUP_SIZE} * count);
  for (int i = 0; i < count && fields.good(); ++i) {
    item.stacks.push_back(read_stack_sample(fields));
  }
}

constexpr monitor_row rows[] = {
    {ORV_MONITOR_CPU, ORV_ITEM_CPU, 0, read_cpu_item},
    {ORV_MONITOR_HEAP, ORV_ITEM_HEAP, ORV_HEAP_MONITOR_INTERVAL_MS, read_heap_item},
    {ORV_MONITOR_STACK, ORV_ITEM_STACK, ORV_STACK_MONITOR_INTERVAL_MS, read_stack_item},
};
static_assert(ORV_THREAD_SLEEPING == int{ORV_STATE_SLEEPING} &&
              ORV_THREAD_WAITING == int{ORV_STATE_WAITING} &&
              ORV_THREAD_STOPPED == int{ORV_STATE_STOPPED} &&
              ORV_THREAD_RUNNING == int{ORV_STATE_RUNNING} &&
              ORV_THREAD_PAGING == int{ORV_STATE_PAGING} &&
              ORV_THREAD_ZOMBIE == int{ORV_STATE_ZOMBIE});
static_assert(ORV_MONITOR_CPU == int{ORV_MON_TYPE_CPU} &&
              ORV_MONITOR_HEAP == int{ORV_MON_TYPE_HEAP} &&
              ORV_MONITOR_STACK == int{ORV_MON_TYPE_STACK});

packet_item read_item(field_reader& fields) {
  packet_item item;
  const int size = fields.number<int>();
  const int code = fields.number<int>();
  const auto* row = std::find_if(std::begin(rows), std::end(rows),
                                 [code](const auto& one) { return one.item_code == code; });
  if (row == std::end(rows)) {
    fields.require(false);
    return item;
  }
  item.fields.monitor = row->monitor;
  row->read(fields, size, item);
  return item;
}

}  // namespace

std::span<const monitor_row> monitor_rows() {
  return rows;
}

std::optional<std::string_view> payload_of(std::string_view packet) {
  const size_t comma = packet.find(',', packet_start.size());
  if (!packet.starts_with(packet_start) || comma == std::string_view::npos) {
    return std::nullopt;
  }
  return packet.substr(comma + 1);
}

std::optional<std::vector<packet_item>> parse_items(std::string_view payload) {
  std::vector<packet_item> items;
  field_reader fields{payload};
  while (fields.more()) {
    items.push_back(read_item(fields));
  }
  return fields.good() ? std::optional{std::move(items)} : std::nullopt;
}

}  // namespace orv_client::store
