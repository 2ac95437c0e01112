#include "exchange.h"

#include <glib.h>
#include <orv/protocol.h>
#include <stdlib.h>
#include <vconf.h>

#include <memory>
#include <string_view>

#include "answer_filter.h"
#include "command_names.h"
#include "packet_right.h"

namespace orvctl {
namespace {

using std::chrono::milliseconds;

constexpr auto longest_half_tick = milliseconds{20};

std::optional<std::string> read_text(const char* key) {
  const std::unique_ptr<char, decltype(&free)> text{vconf_get_str(key), free};
  return text ? std::optional<std::string>{text.get()} : std::nullopt;
}

// Watches the keys of the answer while it lives.
class answer_watch {
 public:
  explicit answer_watch(const command& sent) : filter_{sent} {
    for (const char* key : keys) {
      watching_ = vconf_notify_key_changed(key, changed, this) == 0 && watching_;
    }
  }
  answer_watch(const answer_watch&) = delete;
  answer_watch& operator=(const answer_watch&) = delete;
  ~answer_watch() {
    for (const char* key : keys) {
      vconf_ignore_key_changed(key, changed);
    }
  }

  [[nodiscard]] bool watching() const { return watching_; }

  // The watch may have begun within a tick, whose result would then pass for an answer. That result
  // is microseconds away, unless the agent's process has to wait for a processor; any change shows
  // where the ticks are.
  void join_between_ticks(milliseconds timeout) {
    const auto text = read_text(VCONFKEY_ORV_RESULT_DATA);
    if (text && is_packet(*text)) {
      run_until([this] { return seen_change_; }, longest_half_tick);
      run_until([this] { return !half_tick_; }, timeout);
    }
  }

  // To be called right before the command is written: what is in the queue by now answers something
  // else. The command's own change would tell too late, since the kernel tells the watchers of a
  // change one by one: an agent told first, on another processor, can have answered before the tool
  // is told of what it wrote.
  void expect_answer() {
    take_changes();
    filter_.command_sent();
  }

  std::optional<answer> wait(milliseconds timeout) {
    run_until([this] { return answer_.has_value(); }, timeout);
    if (answer_) {
      take_changes();
    }
    return answer_;
  }

 private:
  // The result before the text, so that no text is seen without its result.
  static constexpr const char* keys[] = {VCONFKEY_ORV_RESULT, VCONFKEY_ORV_RESULT_DATA};

  static void take_changes() {
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
  }

  template <class Condition>
  static void run_until(Condition condition, milliseconds timeout) {
    bool expired = false;
    const guint timer = g_timeout_add(static_cast<guint>(timeout.count()), expire, &expired);
    while (!condition() && !expired) {
      g_main_context_iteration(nullptr, TRUE);
    }
    if (!expired) {
      g_source_remove(timer);
    }
  }

  static gboolean expire(gpointer expired) {
    *static_cast<bool*>(expired) = true;
    return G_SOURCE_REMOVE;
  }

  static void changed(keynode_t* node, void* self) {
    static_cast<answer_watch*>(self)->key_changed(vconf_keynode_get_name(node));
  }

  void key_changed(std::string_view key) {
    if (answer_) {
      answer_->overwritten = answer_->overwritten || key == VCONFKEY_ORV_RESULT;
      return;
    }
    seen_change_ = true;
    half_tick_ = key == VCONFKEY_ORV_RESULT_DATA;
    if (key == VCONFKEY_ORV_RESULT_DATA) {
      filter_.text_seen(read_text(VCONFKEY_ORV_RESULT_DATA));
    } else {
      int result = 0;
      if (vconf_get_int(VCONFKEY_ORV_RESULT, &result) == 0) {
        answer_ = filter_.result_seen(result);
      }
    }
  }

  answer_filter filter_;
  bool watching_ = true;
  bool seen_change_ = false;
  bool half_tick_ = false;  // a text was written last, the result that follows was not
  std::optional<answer> answer_;
};

// What a key holds already is left alone: most parameters are what they were, and a look takes a
// fifth of a write.
bool put(const char* key, int number) {
  int found = 0;
  return (vconf_get_int(key, &found) == 0 && found == number) || vconf_set_int(key, number) == 0;
}

bool put(const char* key, const std::string& text) {
  return read_text(key) == text || vconf_set_str(key, text.c_str()) == 0;
}

bool write_parameters(const command& sent) {
  constexpr const char* parameter_keys[] = {
      VCONFKEY_ORV_COMMAND_PARAM1, VCONFKEY_ORV_COMMAND_PARAM2, VCONFKEY_ORV_COMMAND_PARAM3,
      VCONFKEY_ORV_COMMAND_PARAM4};
  for (size_t i = 0; i < sent.parameters.size(); ++i) {
    if (!put(parameter_keys[i], sent.parameters[i])) {
      return false;
    }
  }
  return put(VCONFKEY_ORV_COMMAND_DATA, sent.data);
}

exchange_outcome send_and_wait(const command& sent, milliseconds timeout, bool between_ticks) {
  answer_watch watch{sent};
  if (watch.watching() && !between_ticks) {
    watch.join_between_ticks(timeout);
  }
  if (!watch.watching() || !write_parameters(sent)) {
    return {exchange_error::store_failed, {}};
  }
  watch.expect_answer();
  if (vconf_set_int(VCONFKEY_ORV_COMMAND, sent.code) != 0) {
    return {exchange_error::store_failed, {}};
  }
  std::optional<answer> answered = watch.wait(timeout);
  if (!answered) {
    return {exchange_error::no_answer, {}};
  }
  return {exchange_error::none, *std::move(answered)};
}

bool overwrites_packet(const command& sent) {
  const reply answers = describe(sent.code).answers_with;
  return answers == reply::text || answers == reply::unknown;
}

exchange_outcome failure(exchange_error error) {
  return {error, {}};
}

}  // namespace

turn::turn(const std::string& store, milliseconds patience, milliseconds timeout)
    : timeout_{timeout}, lock_{store, patience} {}

// The agent runs commands in order, so once it answers a query, the answers of all earlier commands
// are out.
exchange_error turn::settle() const {
  // Known by its text, whatever stands before it.
  const exchange_error error =
      send_and_wait({ORV_COMMAND_TARGET_INFO, {}, {}}, timeout_, true).error;
  if (error == exchange_error::none) {
    lock_.set_answer_outstanding(false);
  }
  return error;
}

exchange_outcome turn::ask(const command& sent, bool between_ticks) const {
  const bool was_settled = settled();
  lock_.set_answer_outstanding(!was_settled || describe(sent.code).answers_with != reply::none);
  exchange_outcome outcome = send_and_wait(sent, timeout_, between_ticks);
  if (was_settled && outcome.error == exchange_error::none) {
    lock_.set_answer_outstanding(false);
  }
  return outcome;
}

exchange_outcome exchange(const std::string& store, const command& sent, milliseconds timeout) {
  const packet_right right{store};
  if (!right.usable()) {
    return failure(exchange_error::store_failed);
  }
  if (sent.code == ORV_COMMAND_MONITOR && !right.share_monitors()) {
    return failure(exchange_error::watched);
  }
  for (bool needs_packet = overwrites_packet(sent);; needs_packet = true) {
    if (needs_packet && !right.take_packet(timeout)) {
      return failure(exchange_error::busy);
    }
    const turn now{store, timeout, timeout};
    if (!now.held()) {
      return failure(exchange_error::busy);
    }
    if (now.settled()) {
      return now.ask(sent);
    }
    // Settling overwrites the packet. Whoever has that may need the turn to give it away.
    if (needs_packet) {
      const exchange_error error = now.settle();
      return error == exchange_error::none ? now.ask(sent) : failure(error);
    }
  }
}

}  // namespace orvctl
