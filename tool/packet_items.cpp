#include "packet_items.h"

#include <orv/protocol.h>

#include <charconv>
#include <type_traits>

namespace orvctl {
namespace {

constexpr std::string_view packet_start = ORV_PACKET_START;
constexpr std::string_view mark = "$";

// Takes fields off a text; once one is missing or is not what was asked for, all that follow fail.
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
  void expect(int value) { good_ = number<int>() == value && good_; }
  void expect_mark() { good_ = next() == mark && good_; }
  void fail() { good_ = false; }

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

// The agent prints its 32-bit clock with a sign.
uint32_t take_tick(field_reader& fields) {
  return static_cast<uint32_t>(fields.number<int32_t>());
}

cpu_item take_cpu_item(field_reader& fields) {
  const uint32_t tick_ms = take_tick(fields);
  const int thread = fields.number<int>();
  fields.expect_mark();
  return {tick_ms, thread};
}

heap_item take_heap_item(field_reader& fields) {
  const uint32_t tick_ms = take_tick(fields);
  fields.expect(1);
  fields.expect(1);
  const auto free = static_cast<uint32_t>(fields.number<int32_t>());
  const auto max_free = static_cast<uint32_t>(fields.number<int32_t>());
  fields.expect_mark();
  return {tick_ms, free, max_free};
}

stack_sample take_stack_sample(field_reader& fields) {
  stack_sample stack{};
  stack.thread = fields.number<int>();
  stack.state = fields.number<int>();
  stack.pointer = fields.number<uint32_t>();
  stack.end = fields.number<uint32_t>();
  stack.start = fields.number<uint32_t>();
  fields.expect_mark();
  return stack;
}

stack_item take_stack_item(field_reader& fields, int size) {
  stack_item item{take_tick(fields), {}};
  const int count = fields.number<int>();
  if (count < 0 || size != ORV_ITEM_STACK_SIZE + int64_t{ORV_ITEM_STACK_GROUP_SIZE} * count) {
    fields.fail();
  }
  for (int i = 0; i < count && fields.good(); ++i) {
    item.threads.push_back(take_stack_sample(fields));
  }
  return item;
}

std::optional<packet_item> take_item(field_reader& fields) {
  const int size = fields.number<int>();
  const int code = fields.number<int>();
  if (code == ORV_ITEM_CPU && size == ORV_ITEM_CPU_SIZE) {
    return take_cpu_item(fields);
  }
  if (code == ORV_ITEM_HEAP && size == ORV_ITEM_HEAP_SIZE) {
    return take_heap_item(fields);
  }
  if (code == ORV_ITEM_STACK) {
    return take_stack_item(fields, size);
  }
  return std::nullopt;
}

}  // namespace

uint32_t tick_of(const packet_item& item) {
  return std::visit([](const auto& one) { return one.tick_ms; }, item);
}

int code_of(const packet_item& item) {
  return std::visit([](const auto& one) { return one.code; }, item);
}

std::optional<uint32_t> used_bytes(const stack_sample& stack) {
  const bool inside = stack.end != 0 && stack.start <= stack.pointer && stack.pointer <= stack.end;
  return inside ? std::optional{stack.end - stack.pointer} : std::nullopt;
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
    std::optional<packet_item> item = take_item(fields);
    if (!item) {
      return std::nullopt;
    }
    items.push_back(*std::move(item));
  }
  return fields.good() ? std::optional{std::move(items)} : std::nullopt;
}

}  // namespace orvctl
