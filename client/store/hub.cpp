#include "hub.h"

#include <orv/protocol.h>
#include <stdlib.h>
#include <vconf.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string_view>
#include <utility>

#include "../loop.h"
#include "../roster.h"
#include "answer_filter.h"

namespace orv_client::store {
namespace {

// The result before the text, so that no text is seen without its result.
constexpr const char* keys[] = {VCONFKEY_ORV_RESULT, VCONFKEY_ORV_RESULT_DATA};

// A tick writes its result microseconds after its text, unless the agent's process has to wait for
// a processor.
constexpr auto longest_half_tick = milliseconds{20};
// A text whose result has not come for so long was the last one of an agent that was killed. Or it
// is older than its result: when the queue of changes ran over, both keys are reported once.
constexpr auto given_up_half_tick = milliseconds{1000};

roster<listener> listeners;
bool registered = false;
bool seen_change = false;
bool text_was_last = false;
steady_clock::time_point registered_at;
steady_clock::time_point text_seen_at;

milliseconds left_of(steady_clock::time_point begun, milliseconds lasting) {
  const auto left = std::chrono::ceil<milliseconds>(begun + lasting - steady_clock::now());
  return std::max(left, milliseconds::zero());
}

void note(change what) {
  seen_change = true;
  text_was_last = what == change::text;
  if (text_was_last) {
    text_seen_at = steady_clock::now();
  }
}

void changed(keynode_t* node, void* /*none*/) noexcept {
  const loop_section in_loop;
  const std::string_view key = vconf_keynode_get_name(node);
  const change what = key == VCONFKEY_ORV_RESULT ? change::result : change::text;
  note(what);
  listeners.for_each([what](const listener& one) {
    try {
      one.hear(what);
    } catch (...) {  // it ends at its time limit
    }
  });
}

void unregister() {
  for (const char* key : keys) {
    vconf_ignore_key_changed(key, changed);
  }
  registered = false;
}

bool register_keys() {
  registered = true;
  seen_change = text_was_last = false;
  for (const char* key : keys) {
    registered = vconf_notify_key_changed(key, changed, nullptr) == 0 && registered;
  }
  registered_at = steady_clock::now();
  if (!registered) {
    unregister();
  }
  return registered;
}

// None follows the empty text that a watch writes when it empties the packet.
bool result_is_to_come() {
  return text_was_last && read_text(VCONFKEY_ORV_RESULT_DATA) != "";
}

}  // namespace

listener::listener(function on_change)
    : on_change_{std::move(on_change)}, listening_{registered || register_keys()} {
  if (listening_) {
    listeners.add(*this);
  }
}

listener::~listener() {
  if (!listening_) {
    return;
  }
  listeners.remove(*this);
  if (listeners.empty()) {
    unregister();
  }
}

// The keys may have been registered within a tick, whose text was then not seen. Any change shows
// where the ticks are.
milliseconds until_between_ticks() {
  if (seen_change) {
    return result_is_to_come() ? left_of(text_seen_at, given_up_half_tick) : milliseconds::zero();
  }
  const milliseconds left = left_of(registered_at, longest_half_tick);
  if (left == milliseconds::zero()) {
    return left;
  }
  const auto text = read_text(VCONFKEY_ORV_RESULT_DATA);
  return text && is_packet(*text) ? left : milliseconds::zero();
}

std::optional<std::string> read_text(const char* key) {
  const std::unique_ptr<char, decltype(&free)> text{vconf_get_str(key), free};
  return text ? std::optional<std::string>{text.get()} : std::nullopt;
}

}  // namespace orv_client::store
