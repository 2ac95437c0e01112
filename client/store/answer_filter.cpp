#include "answer_filter.h"

#include <orv/protocol.h>

#include <utility>

namespace orv_client::store {
namespace {

constexpr std::string_view packet_start = ORV_PACKET_START;

// A stop answers three times: from the monitor's close, for the stop, and with the health check,
// which is the verdict.
int results_of(const command& sent) {
  const bool stops_monitor =
      sent.code == ORV_COMMAND_MONITOR && sent.parameters[1] == ORV_MONITOR_STOP;
  return stops_monitor ? 3 : 1;
}

}  // namespace

bool is_packet(std::string_view text) {
  return text.starts_with(packet_start);
}

answer_filter::answer_filter(const command& sent)
    : wants_text_{describe(sent.code).answers_with == answer_kind::text},
      takes_any_{describe(sent.code).answers_with == answer_kind::unknown},
      text_start_{describe(sent.code).text_start},
      results_left_{results_of(sent)} {}

void answer_filter::command_sent() {
  sent_ = true;
  text_pending_ = false;
}

void answer_filter::text_seen(std::optional<std::string> text) {
  text_pending_ = true;
  text_.reset();
  if (sent_ && text && is_own_text(*text)) {
    text_ = std::move(text);
  }
}

std::optional<answer> answer_filter::result_seen(int32_t result) {
  const bool belongs_to_text = std::exchange(text_pending_, false);
  if (!sent_) {
    return std::nullopt;
  }
  if (belongs_to_text) {
    return text_ ? std::optional{answer{result, std::move(text_)}} : std::nullopt;
  }
  if (wants_text_ || --results_left_ > 0) {
    return std::nullopt;
  }
  return answer{result, std::nullopt};
}

bool answer_filter::is_own_text(std::string_view text) const {
  if (is_packet(text) || !(wants_text_ || takes_any_)) {
    return false;
  }
  if (!text_start_.empty()) {
    return text.starts_with(text_start_);
  }
  // A query without a beginning of its own: not what another query answers.
  return !text.empty() && (takes_any_ || !begins_like_a_query(text));
}

}  // namespace orv_client::store
