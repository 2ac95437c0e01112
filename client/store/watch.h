// One watch of the monitors, from their start to their stop.
//
// The packet is bounded, so the key has to be emptied now and then, and the store has no
// compare-and-swap: a bare write can wipe what a tick wrote since the last look, and a tick that
// read the key before it brings back what has been taken. Therefore the key is emptied only while
// nothing ticks. A stop is a command, which the agent runs on its main loop and never within a
// tick: once it is answered, the monitor's last tick is in the key. So the monitors are stopped,
// the rest of the packet is taken, the key is emptied and the monitors are started again. No other
// program starts one meanwhile, and none asks a query, which would wipe the packet as well, except
// when the watch, in such a pause, lends it the packet (lock_file.h).
//
// Items are known by their place in the packet (packet_follower.h), so how often it is looked at,
// and whether several changes are seen as one, makes no difference.
#ifndef ORV_CLIENT_STORE_WATCH_H
#define ORV_CLIENT_STORE_WATCH_H

#include <orv/client.h>

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "../carrier.h"
#include "../loop.h"
#include "host_silence.h"
#include "hub.h"
#include "lock_file.h"
#include "packet_follower.h"
#include "turn.h"
#include "watch_reporter.h"

namespace orv_client::store {

// What a target with many threads may take to list them.
constexpr uint32_t thread_timeout_ms = 30000;

// Keeps itself until it has reported its end or is cancelled, which may be within a report.
class watch {
 public:
  static watch* start(const std::string& directory, const orv_watch_options& options,
                      carried_event_fn on_event, void* user_data);
  watch(const watch&) = delete;
  watch& operator=(const watch&) = delete;

  void stop();
  void cancel();

 private:
  enum class phase {
    claiming,     // waits for the monitors, the packet and the first turn
    taking_over,  // stops all monitors and empties the packet
    following,    // the monitors tick
    probing,      // asks a silent host whether it lives
    halting,      // stops the monitors
    emptying,     // nothing ticks; the packet is emptied
    lending,      // others have the packet
    resuming,     // starts the monitors
    finishing,    // stops the monitors for good
    ended
  };
  using step = void (watch::*)();

  watch(const std::string& directory, const orv_watch_options& options, carried_event_fn on_event,
        void* user_data);

  // The phases that consist of steps, each of which calls next() once it is done.
  void claim_all();
  void take_over();
  void probe();
  void pause();
  void lend();
  void look_after_loan();
  void resume();
  void finish();

  void then(step one);
  void then_send(const command& one);
  void then_stop_the_watched();
  void next();

  void claim_monitors();
  void claim_packet();
  void claim_right(right which, time_limit limit);
  void take_turn();
  void settle();
  void settle_after_stops();
  void send(const command& one);
  void ask_names();
  void take_the_rest();
  void empty_packet();
  void packet_emptied();
  void lend_or_resume();
  void follow();
  void end_here();

  void heard(change what);
  void look_soon();
  void look();
  bool take_news();
  void judge_silence();
  [[nodiscard]] bool pause_is_due(bool slowest_ticked) const;
  [[nodiscard]] bool loan_is_due() const;
  [[nodiscard]] bool reads_changes() const;
  [[nodiscard]] bool slowest_is_among(const std::vector<packet_item>& news) const;
  [[nodiscard]] time_limit answer_limit() const { return time_limit::of(timeout_ms_); }
  void let_go();
  void end(ending how);
  void end_without_memory() noexcept;

  // What the main context and the store's operations call, and which may end this watch.
  template <class Function>
  auto kept(Function function) {
    return [this, function](auto&&... given) {
      const std::shared_ptr<watch> alive = self_;
      try {
        function(std::forward<decltype(given)>(given)...);
      } catch (...) {  // memory ran out
        end_without_memory();
      }
    };
  }

  const std::string directory_;
  const uint32_t timeout_ms_;  // of each command
  const uint32_t cpu_interval_ms_;
  const bool names_threads_;
  std::vector<const monitor_row*> watched_;
  const monitor_row* slowest_;
  watch_reporter reporter_;
  packet_follower follower_;
  std::optional<host_silence> silence_;

  std::shared_ptr<watch> self_;
  std::optional<lock_file> locks_;
  std::optional<turn> turn_;
  std::optional<claim> claim_;
  std::optional<listener> listener_;

  phase phase_ = phase::claiming;
  bool stop_wanted_ = false;
  bool started_ = false;
  std::deque<std::function<void()>> steps_;
  ending last_command_;
  size_t packet_size_ = 0;
  int text_changes_ = 0;  // ever
  int looked_at_ = 0;     // text_changes_ at the last look
  steady_clock::time_point resumed_at_;
  steady_clock::time_point lent_at_;
  steady_clock::duration last_loan_{};
  source step_timer_;  // of the step under way
  source own_write_;   // while the emptying is not heard of yet: the deadline for that
  source look_timer_;
  source silence_timer_;
};

}  // namespace orv_client::store

#endif
