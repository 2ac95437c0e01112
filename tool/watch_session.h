// One watch of the monitors, from their start to their stop.
//
// The packet is bounded, so the key has to be emptied now and then, and the store has no
// compare-and-swap: a bare write can wipe what a tick wrote since the tool's last look, and a tick
// that read the key before it brings back what the tool has taken. Therefore the key is emptied
// only while nothing ticks. A stop is a command, which the agent runs on its main loop and never
// within a tick: once it is answered, the monitor's last tick stands in the key. So the monitors
// are stopped, the rest of the packet is taken, the key is emptied and the monitors are started
// again. No other tool starts one meanwhile, and none asks a query, which would wipe the packet as
// well, but when the watch, in such a pause, lends it the packet (packet_right.h).
//
// Items are known by their place in the packet (packet_follower.h), so how often it is looked at,
// and whether several changes are seen as one, makes no difference.
#ifndef ORV_TOOL_WATCH_SESSION_H
#define ORV_TOOL_WATCH_SESSION_H

#include <vconf.h>

#include <chrono>
#include <functional>
#include <optional>
#include <vector>

#include "context.h"
#include "exchange.h"
#include "monitor_kind.h"
#include "packet_follower.h"
#include "packet_right.h"

namespace orvctl {

struct watch_settings {
  std::vector<const monitor_kind*> monitors;
  int cpu_interval_ms;
  std::optional<std::chrono::milliseconds> duration;  // none: until interrupted
  // The new items, oldest first; false ends the watch.
  std::function<bool(const std::vector<packet_item>&)> show;
  std::function<void(size_t packet_bytes)> every_second;
};

class watch_session {
 public:
  watch_session(context& shared, watch_settings settings);
  watch_session(const watch_session&) = delete;
  watch_session& operator=(const watch_session&) = delete;
  ~watch_session();

  // Until the time is over, `show` has enough or SIGINT, SIGTERM or SIGHUP comes. False when
  // something failed before, which is told on standard error and is in the exit status.
  bool run();

  // A command afterwards, while the packet is still the watch's; empty when nobody answers.
  [[nodiscard]] std::optional<answer> ask_afterwards(const command& sent,
                                                     std::chrono::milliseconds timeout) const;

 private:
  using clock = std::chrono::steady_clock;
  using step = bool (watch_session::*)(const turn&);

  static void key_changed(keynode_t* node, void* self);
  static int call_every_second(void* self);

  bool claim();
  bool follow();
  bool look();
  bool take_news();
  [[nodiscard]] bool pause_is_due(bool slowest_ticked) const;
  bool pause();
  bool look_after_host();

  bool in_turn(step one);
  bool take_over(const turn& now);
  bool halt(const turn& now);
  bool probe(const turn& now);
  bool finish(const turn& now);
  bool resume(const turn& now);
  bool settle(const turn& now);
  bool empty();
  bool stop(const turn& now, const monitor_kind& kind);
  bool ask(const turn& now, const command& sent);
  void await_whole_tick();
  bool fail(const command& sent, exchange_error error);
  void tell_missing();

  context& shared_;
  watch_settings settings_;
  const monitor_kind* slowest_;
  std::chrono::milliseconds quiet_limit_;   // of a host whose monitors tick
  std::chrono::milliseconds silent_limit_;  // of one that answers
  std::chrono::milliseconds wiped_limit_;   // of one whose packet was wiped
  packet_right right_;
  packet_follower follower_;
  size_t packet_size_ = 0;
  int changes_ = 0;         // of the result data key, ever
  int looked_at_ = 0;       // changes_ at the last look
  bool half_tick_ = false;  // the packet has changed, the result that follows has not
  clock::time_point last_change_ = clock::now();
  bool host_answered_ = false;  // in its silence
  bool wiped_ = false;          // the packet, and nothing has ticked since
  bool over_ = false;
};

}  // namespace orvctl

#endif
