#include "watch_session.h"

#include <glib-unix.h>
#include <glib.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <vconf.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "ask.h"
#include "printable.h"

#include <orv/protocol.h>

namespace orvctl {
namespace {

using std::chrono::milliseconds;

// A quarter of the packet and three quarters. Between them lies what the monitors write while the
// tool waits for a tick of the slowest.
constexpr size_t roomy_size = size_t{ORV_PACKET_MAX_TEXT} / 4;
constexpr size_t full_size = roomy_size * 3;

constexpr auto quiet_margin = milliseconds{2000};
constexpr auto start_margin = milliseconds{500};
constexpr auto longest_loan = milliseconds{1000};
// The result key too: each answer is waited for from where this watch, not the store, has got to.
constexpr const char* watched_keys[] = {VCONFKEY_ORV_RESULT, VCONFKEY_ORV_RESULT_DATA};

// With other tools, each of which waits for an answer as long as it was told to.
constexpr auto patience = milliseconds{60000};

// A source of the main loop, removed when this goes.
class source {
 public:
  explicit source(guint id) : id_{id} {}
  source(const source&) = delete;
  source& operator=(const source&) = delete;
  ~source() { g_source_remove(id_); }

 private:
  guint id_;
};

std::string read_packet() {
  const std::unique_ptr<char, decltype(&free)> text{vconf_get_str(VCONFKEY_ORV_RESULT_DATA), free};
  return text ? text.get() : "";
}

gboolean raise_flag(gpointer flag) {
  *static_cast<bool*>(flag) = true;
  return G_SOURCE_CONTINUE;
}

// A tick of the CPU monitor that sees no thread running writes the packet as it was.
bool ticked(const std::vector<packet_item>& news, const monitor_kind& kind) {
  return (news.empty() && kind.fixed_interval_ms == 0) ||
         std::any_of(news.begin(), news.end(),
                     [&kind](const packet_item& item) { return code_of(item) == kind.item_code; });
}

}  // namespace

watch_session::watch_session(context& shared, watch_settings settings)
    : shared_{shared}, settings_{std::move(settings)}, right_{shared.store} {
  const auto interval = [this](const monitor_kind* kind) {
    return interval_of(*kind, settings_.cpu_interval_ms);
  };
  const auto [fastest, slowest] = std::minmax_element(
      settings_.monitors.begin(), settings_.monitors.end(),
      [&](const auto* one, const auto* other) { return interval(one) < interval(other); });
  slowest_ = *slowest;
  quiet_limit_ = 2 * milliseconds{interval(*fastest)} + quiet_margin;
  silent_limit_ = 2 * milliseconds{interval(*slowest)} + shared.timeout();
  wiped_limit_ = 2 * milliseconds{interval(*fastest)} + start_margin;
}

watch_session::~watch_session() {
  for (const char* key : watched_keys) {
    vconf_ignore_key_changed(key, key_changed);
  }
}

bool watch_session::run() {
  const source interrupted{g_unix_signal_add(SIGINT, raise_flag, &over_)};
  const source terminated{g_unix_signal_add(SIGTERM, raise_flag, &over_)};
  const source hung_up{g_unix_signal_add(SIGHUP, raise_flag, &over_)};
  return claim() && in_turn(&watch_session::take_over) && follow() &&
         in_turn(&watch_session::finish);
}

std::optional<answer> watch_session::ask_afterwards(const command& sent,
                                                    milliseconds timeout) const {
  const turn now{shared_.store, timeout, timeout};
  exchange_outcome outcome =
      now.held() ? now.ask(sent) : exchange_outcome{exchange_error::busy, {}};
  return outcome.error == exchange_error::none ? std::optional{std::move(outcome.answered)}
                                               : std::nullopt;
}

bool watch_session::claim() {
  const bool watching = std::all_of(
      std::begin(watched_keys), std::end(watched_keys),
      [this](const char* key) { return vconf_notify_key_changed(key, key_changed, this) == 0; });
  if (!right_.usable() || !watching) {
    return fail({}, exchange_error::store_failed);
  }
  if (!right_.take_monitors(shared_.timeout())) {
    return fail({}, exchange_error::watched);
  }
  return right_.take_packet(shared_.timeout()) || fail({}, exchange_error::busy);
}

void watch_session::key_changed(keynode_t* node, void* self) {
  auto* session = static_cast<watch_session*>(self);
  session->half_tick_ = std::string_view{vconf_keynode_get_name(node)} == VCONFKEY_ORV_RESULT_DATA;
  session->changes_ += session->half_tick_ ? 1 : 0;
}

int watch_session::call_every_second(void* self) {
  auto* session = static_cast<watch_session*>(self);
  session->settings_.every_second(session->packet_size_);
  return G_SOURCE_CONTINUE;
}

bool watch_session::follow() {
  std::optional<source> end;
  if (settings_.duration) {
    end.emplace(g_timeout_add(static_cast<guint>(settings_.duration->count()), raise_flag, &over_));
  }
  const source second{g_timeout_add_seconds(1, call_every_second, this)};
  while (!over_) {
    g_main_context_iteration(nullptr, TRUE);
    const bool slowest_ticked = look();
    if (!over_ && !(pause_is_due(slowest_ticked) ? pause() : look_after_host())) {
      return false;
    }
  }
  return true;
}

// Tells whether a tick of the slowest monitor was among the changes.
bool watch_session::look() {
  return std::exchange(looked_at_, changes_) != changes_ && take_news();
}

bool watch_session::take_news() {
  last_change_ = clock::now();
  host_answered_ = false;
  const std::string packet = read_packet();
  packet_size_ = packet.size();
  const packet_follower::news news = follower_.look(packet);
  wiped_ = news.begun_anew;
  if (news.begun_anew) {
    tell_missing();
  }
  if (news.garbled) {
    fprintf(stderr, "orvctl: the packet holds something that is no item: %.200s\n",
            printable(packet).c_str());
    shared_.status = status_failure;
  }
  if (!news.items.empty() && !settings_.show(news.items)) {
    over_ = true;
  }
  return ticked(news.items, *slowest_);
}

// A monitor that is started again begins its interval anew, which costs one that has just ticked
// nothing: so at best the pause follows a tick of the slowest. An agent that is being started wipes
// the packet before it takes commands.
bool watch_session::pause_is_due(bool slowest_ticked) const {
  return packet_size_ >= full_size ||
         (slowest_ticked && !wiped_ && (packet_size_ >= roomy_size || right_.packet_wanted()));
}

// Whether it goes on. A host that is silent may be gone, or only busy; when it answers and stays
// silent, its agent was started anew, without monitors. So it was when it wiped the packet, which
// others may have done as well, and is silent then.
bool watch_session::look_after_host() {
  if (wiped_ && clock::now() - last_change_ >= wiped_limit_) {
    wiped_ = false;
    return pause();
  }
  if (clock::now() - last_change_ < (host_answered_ ? silent_limit_ : quiet_limit_)) {
    return true;
  }
  last_change_ = clock::now();
  return std::exchange(host_answered_, true) ? pause() : in_turn(&watch_session::probe);
}

bool watch_session::probe(const turn& now) {
  return ask(now, health_command(*slowest_));
}

bool watch_session::pause() {
  if (!in_turn(&watch_session::halt)) {
    return false;
  }
  if (right_.packet_wanted() && !right_.lend_packet(longest_loan, patience)) {
    return fail({}, exchange_error::busy);
  }
  return in_turn(&watch_session::resume);
}

bool watch_session::in_turn(step one) {
  const turn now{shared_.store, patience, shared_.timeout()};
  return now.held() ? (this->*one)(now) : fail({}, exchange_error::busy);
}

// Only so is it known which monitors run, and at which interval.
bool watch_session::take_over(const turn& now) {
  if (!settle(now)) {
    return false;
  }
  const bool stopped = std::all_of(std::begin(monitor_kinds), std::end(monitor_kinds),
                                   [&](const monitor_kind& kind) { return stop(now, kind); });
  return stopped && empty() && resume(now);
}

bool watch_session::halt(const turn& now) {
  const bool settled = now.settled();
  if (!finish(now)) {
    return false;
  }
  const int changes = changes_;
  if (!settle(now)) {
    return false;
  }
  // A late answer to somebody's command can have passed for that to a stop. The query, which came
  // after the stops, then overwrote what had ticked meanwhile.
  if (!settled && changes_ > changes + 1) {
    tell_missing();
  }
  return empty();
}

bool watch_session::settle(const turn& now) {
  const exchange_error error = now.settled() ? exchange_error::none : now.settle();
  return error == exchange_error::none || fail({ORV_COMMAND_TARGET_INFO, {}, {}}, error);
}

// Nobody else writes the key now, and no result follows.
bool watch_session::empty() {
  const int changes = changes_;
  if (vconf_set_str(VCONFKEY_ORV_RESULT_DATA, "") != 0) {
    return fail({}, exchange_error::store_failed);
  }
  bool expired = false;
  const source deadline{
      g_timeout_add(static_cast<guint>(shared_.timeout().count()), raise_flag, &expired)};
  while (changes_ == changes && !expired) {
    g_main_context_iteration(nullptr, TRUE);
  }
  follower_.emptied();
  packet_size_ = 0;
  looked_at_ = changes_;
  half_tick_ = false;
  return changes_ != changes || fail({}, exchange_error::store_failed);
}

bool watch_session::resume(const turn& now) {
  if (!settle(now)) {
    return false;
  }
  last_change_ = clock::now();
  return std::all_of(settings_.monitors.begin(), settings_.monitors.end(), [&](const auto* kind) {
    return ask(now, start_command(*kind, interval_of(*kind, settings_.cpu_interval_ms)));
  });
}

bool watch_session::finish(const turn& now) {
  const bool stopped = std::all_of(settings_.monitors.begin(), settings_.monitors.end(),
                                   [&](const auto* kind) { return stop(now, *kind); });
  take_news();
  return stopped;
}

bool watch_session::stop(const turn& now, const monitor_kind& kind) {
  return ask(now, stop_command(kind));
}

// Changes that others made meanwhile are taken off the queue, up to the end of a tick or a query.
// Otherwise the text of one whose result has passed would take the next result, the answer, for its
// own, or the result of one whose text has passed would be taken for the answer.
void watch_session::await_whole_tick() {
  bool expired = false;
  const source deadline{
      g_timeout_add(static_cast<guint>(shared_.timeout().count()), raise_flag, &expired)};
  while ((half_tick_ || g_main_context_pending(nullptr) != FALSE) && !expired) {
    g_main_context_iteration(nullptr, TRUE);
  }
  half_tick_ = false;
}

bool watch_session::ask(const turn& now, const command& sent) {
  await_whole_tick();
  const exchange_error error = now.ask(sent, true).error;
  return error == exchange_error::none || fail(sent, error);
}

bool watch_session::fail(const command& sent, exchange_error error) {
  shared_.status = tell(shared_, sent, error);
  return false;
}

void watch_session::tell_missing() {
  fputs("orvctl: something else overwrote the packet; items may be missing\n", stderr);
  shared_.status = status_failure;
}

}  // namespace orvctl
