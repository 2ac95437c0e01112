#include "exchange.h"

#include <glib.h>
#include <orv/protocol.h>
#include <stdlib.h>
#include <vconf.h>

#include <memory>
#include <string_view>

#include "answer_filter.h"
#include "command_names.h"
#include "tool_lock.h"

namespace orvctl {
namespace {

using std::chrono::milliseconds;

std::optional<std::string> read_text(const char* key) {
  const std::unique_ptr<char, decltype(&free)> text{vconf_get_str(key), free};
  return text ? std::optional<std::string>{text.get()} : std::nullopt;
}

// Watches the three keys while it lives.
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

  std::optional<answer> wait(milliseconds timeout) {
    bool expired = false;
    const guint timer = g_timeout_add(static_cast<guint>(timeout.count()), expire, &expired);
    while (!answer_ && !expired) {
      g_main_context_iteration(nullptr, TRUE);
    }
    if (!expired) {
      g_source_remove(timer);
    }
    return answer_;
  }

 private:
  static constexpr const char* keys[] = {VCONFKEY_ORV_COMMAND, VCONFKEY_ORV_RESULT_DATA,
                                         VCONFKEY_ORV_RESULT};

  static gboolean expire(gpointer expired) {
    *static_cast<bool*>(expired) = true;
    return G_SOURCE_REMOVE;
  }

  static void changed(keynode_t* node, void* self) {
    static_cast<answer_watch*>(self)->key_changed(vconf_keynode_get_name(node));
  }

  void key_changed(std::string_view key) {
    if (answer_) {
      return;
    }
    if (key == VCONFKEY_ORV_COMMAND) {
      filter_.command_seen();
    } else if (key == VCONFKEY_ORV_RESULT_DATA) {
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
  std::optional<answer> answer_;
};

bool write_command(const command& sent) {
  constexpr const char* parameter_keys[] = {
      VCONFKEY_ORV_COMMAND_PARAM1, VCONFKEY_ORV_COMMAND_PARAM2, VCONFKEY_ORV_COMMAND_PARAM3,
      VCONFKEY_ORV_COMMAND_PARAM4};
  for (size_t i = 0; i < sent.parameters.size(); ++i) {
    if (vconf_set_int(parameter_keys[i], sent.parameters[i]) != 0) {
      return false;
    }
  }
  return vconf_set_str(VCONFKEY_ORV_COMMAND_DATA, sent.data.c_str()) == 0 &&
         vconf_set_int(VCONFKEY_ORV_COMMAND, sent.code) == 0;
}

exchange_outcome send_and_wait(const command& sent, milliseconds timeout) {
  answer_watch watch{sent};
  if (!watch.watching() || !write_command(sent)) {
    return {exchange_error::store_failed, {}};
  }
  std::optional<answer> answered = watch.wait(timeout);
  if (!answered) {
    return {exchange_error::no_answer, {}};
  }
  return {exchange_error::none, *std::move(answered)};
}

// The agent runs commands in order, so once it answers a query, the answers of all earlier commands
// are out.
exchange_outcome settle(milliseconds timeout) {
  return send_and_wait({ORV_COMMAND_TARGET_INFO, {}, {}}, timeout);
}

}  // namespace

exchange_outcome exchange(const std::string& store, const command& sent, milliseconds timeout) {
  const tool_lock lock{store, timeout};
  if (!lock.held()) {
    return {exchange_error::busy, {}};
  }
  if (lock.answer_outstanding()) {
    exchange_outcome settled = settle(timeout);
    if (settled.error != exchange_error::none) {
      return settled;
    }
  }
  lock.set_answer_outstanding(describe(sent.code).answers_with != reply::none);
  exchange_outcome outcome = send_and_wait(sent, timeout);
  if (outcome.error == exchange_error::none) {
    lock.set_answer_outstanding(false);
  }
  return outcome;
}

}  // namespace orvctl
