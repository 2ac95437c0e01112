// What it means that the packet of a watched host does not change.
//
// The host may be gone, or only busy: after a while it is asked whether it lives. One that answers
// and stays silent has had its agent started anew, and its monitors are gone. An agent wipes the
// packet at its start, before it takes commands; others may do that as well, but when nothing
// follows soon, it was the agent's start.
//
// Times come in and a verdict goes out; nothing here waits, asks or starts.
#ifndef ORV_CLIENT_STORE_HOST_SILENCE_H
#define ORV_CLIENT_STORE_HOST_SILENCE_H

#include <chrono>

namespace orv_client::store {

class host_silence {
 public:
  using time = std::chrono::steady_clock::time_point;
  using milliseconds = std::chrono::milliseconds;

  enum class verdict { go_on, ask_whether_it_lives, start_monitors_anew };

  // The intervals of the fastest and the slowest watched monitor, and how long an answer may take.
  host_silence(milliseconds fastest, milliseconds slowest, milliseconds timeout);

  void monitors_started(time now);
  // `wiped`: the packet was begun anew by something else.
  void packet_changed(time now, bool wiped);

  [[nodiscard]] bool wiped() const { return heard_ == last::wipe; }
  // When the verdict is to be asked for, if nothing changes until then.
  [[nodiscard]] time due() const;
  // What it says is taken for done: the next verdict counts from now.
  verdict judge(time now);

 private:
  enum class last { tick, wipe, answer };

  milliseconds wiped_limit_;
  milliseconds quiet_limit_;
  milliseconds silent_limit_;
  last heard_ = last::tick;
  time since_{};
};

}  // namespace orv_client::store

#endif
