#include "watch_reporter.h"

#include <chrono>

#include "../answers.h"
#include "../printable.h"

namespace orv_client::store {
namespace {

constexpr size_t most_quoted = 200;

int64_t wall_clock_ms() {
  using namespace std::chrono;
  return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

}  // namespace

void watch_reporter::items(std::vector<packet_item> news, size_t packet_bytes) {
  packet_bytes_ = packet_bytes;
  const int64_t now_ms = wall_clock_ms();
  for (packet_item& item : news) {
    orv_item& fields = item.fields;
    fields.wall_ms = now_ms;
    fields.name = fields.tid != 0 ? name_of(fields.tid) : "";
    for (orv_stack_sample& one : item.stacks) {
      one.name = name_of(one.tid);
    }
    fields.stacks = item.stacks.empty() ? nullptr : item.stacks.data();
    fields.stack_count = item.stacks.size();
    report({ORV_WATCH_ITEM, &fields, packet_bytes_, "", nullptr});
  }
}

void watch_reporter::gap() {
  report({ORV_WATCH_GAP, nullptr, packet_bytes_,
          "something else overwrote the packet; items may be missing", nullptr});
}

void watch_reporter::garbled(const std::string& packet) {
  const std::string message =
      "the packet holds something that is no item: " + printable(packet).substr(0, most_quoted);
  report({ORV_WATCH_GARBLED, nullptr, packet_bytes_, message.c_str(), nullptr});
}

void watch_reporter::ended(const orv_reply& reply) {
  report({ORV_WATCH_ENDED, nullptr, packet_bytes_, "", &reply});
}

void watch_reporter::set_names(const std::string& answer) {
  lacks_names_ = false;
  const auto list = parse_threads(answer);
  for (const thread_stack& one : list ? list->threads : std::vector<thread_stack>{}) {
    names_[one.tid] = one.name;
  }
}

void watch_reporter::report(const orv_watch_event& event) const {
  if (on_event_ != nullptr) {
    on_event_(&event, user_data_);
  }
}

// A thread without a name takes a row as well: it is asked for once.
const char* watch_reporter::name_of(int32_t tid) {
  const auto [row, unknown] = names_.try_emplace(tid);
  lacks_names_ = lacks_names_ || unknown;
  return row->second.c_str();
}

}  // namespace orv_client::store
