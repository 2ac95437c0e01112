#include "host_silence.h"

namespace orv_client::store {
namespace {

constexpr std::chrono::milliseconds quiet_margin{2000};
constexpr std::chrono::milliseconds start_margin{500};

}  // namespace

host_silence::host_silence(milliseconds fastest, milliseconds slowest, milliseconds timeout)
    : wiped_limit_{2 * fastest + start_margin},
      quiet_limit_{2 * fastest + quiet_margin},
      silent_limit_{2 * slowest + timeout} {}

void host_silence::monitors_started(time now) {
  packet_changed(now, false);
}

void host_silence::packet_changed(time now, bool wiped) {
  since_ = now;
  heard_ = wiped ? last::wipe : last::tick;
}

host_silence::time host_silence::due() const {
  switch (heard_) {
    case last::wipe:
      return since_ + wiped_limit_;
    case last::answer:
      return since_ + silent_limit_;
    case last::tick:
      break;
  }
  return since_ + quiet_limit_;
}

host_silence::verdict host_silence::judge(time now) {
  if (now < due()) {
    return verdict::go_on;
  }
  const bool asks = heard_ == last::tick;
  since_ = now;
  heard_ = asks ? last::answer : last::tick;
  return asks ? verdict::ask_whether_it_lives : verdict::start_monitors_anew;
}

}  // namespace orv_client::store
