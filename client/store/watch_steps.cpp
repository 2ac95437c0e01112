// The steps of which the phases of a watch consist. Each calls next() once it is done, or ends the
// watch.

#include <orv/protocol.h>
#include <vconf.h>

#include <algorithm>
#include <utility>

#include "watch.h"

namespace orv_client::store {
namespace {

// Programs that ask one query after the other would have the packet for ever.
constexpr milliseconds longest_loan{1000};
constexpr milliseconds loan_look_interval{5};
// How long other programs may keep a right: each of them waits for an answer until its own limit.
constexpr uint32_t patience_ms = 60000;

}  // namespace

void watch::next() {
  if (phase_ != phase::ended && !steps_.empty()) {
    const std::function<void()> one = std::move(steps_.front());
    steps_.pop_front();
    one();
  }
}

void watch::claim_monitors() {
  claim_right(right::monitors, answer_limit());
}

void watch::claim_packet() {
  claim_right(right::packet, answer_limit());
}

void watch::claim_right(right which, time_limit limit) {
  claim_.emplace(*locks_, which, limit.end, kept([this, which, limit](bool taken) {
    if (taken) {
      next();
    } else {
      end(which == right::monitors ? watched(directory_) : busy(directory_, limit));
    }
  }));
}

void watch::take_turn() {
  if (turn_->held()) {
    return next();
  }
  const auto limit = time_limit::of(patience_ms);
  turn_->take(limit,
              kept([this, limit](bool taken) { taken ? next() : end(busy(directory_, limit)); }));
}

void watch::settle() {
  if (turn_->settled()) {
    return next();
  }
  turn_->settle(answer_limit(),
                kept([this](const ending& how) { how.outcome == ORV_RAN ? next() : end(how); }));
}

// A late answer to somebody's command can have passed for that to a stop. The query, which came
// after the stops, then overwrote what had ticked meanwhile.
void watch::settle_after_stops() {
  if (turn_->settled()) {
    return next();
  }
  turn_->settle(answer_limit(), kept([this, before = text_changes_](const ending& how) {
                  if (how.outcome != ORV_RAN) {
                    return end(how);
                  }
                  if (text_changes_ > before + 1) {
                    reporter_.gap();
                  }
                  next();
                }));
}

// An answer that a tick overwrote was given all the same.
void watch::send(const command& one) {
  turn_->ask(one, answer_limit(), kept([this](ending how) {
               last_command_ = std::move(how);
               const bool answered =
                   last_command_.outcome == ORV_RAN || last_command_.why == ORV_WHY_OVERWRITTEN;
               answered ? next() : end(last_command_);
             }));
}

// The names are an addition: a watch goes on without them. But it has to await their answer, also
// where its other commands are given less time than a target with many threads takes.
void watch::ask_names() {
  const auto limit = time_limit::of(std::max(timeout_ms_, thread_timeout_ms));
  turn_->ask({ORV_COMMAND_STACK_INFO}, limit, kept([this](const ending& how) {
               if (how.outcome == ORV_RAN && how.text) {
                 reporter_.set_names(*how.text);
               }
               next();
             }));
}

void watch::take_the_rest() {
  take_news();
  if (phase_ == phase::halting) {
    phase_ = phase::emptying;
  }
  next();
}

// No other program writes the key now, so the next change that is heard of is this one, and all
// later ones are the monitors'.
void watch::empty_packet() {
  if (vconf_set_str(VCONFKEY_ORV_RESULT_DATA, "") != 0) {
    return end(store_failed(directory_));
  }
  own_write_ = source::at(answer_limit().end, kept([this] { end(store_failed(directory_)); }));
}

void watch::packet_emptied() {
  own_write_.cancel();
  follower_.emptied();
  packet_size_ = 0;
  looked_at_ = text_changes_;
  next();
}

void watch::lend_or_resume() {
  if (stop_wanted_) {
    end_here();
  } else if (locks_->taken_by_others(right::wanting)) {
    lend();
  } else {
    resume();
  }
}

void watch::follow() {
  if (stop_wanted_) {
    return finish();
  }
  turn_->release();
  if (phase_ == phase::resuming) {
    resumed_at_ = steady_clock::now();
    silence_->monitors_started(resumed_at_);
  }
  phase_ = phase::following;
  silence_timer_ = source::at(silence_->due(), kept([this] { judge_silence(); }));
  look_soon();
  if (!std::exchange(started_, true)) {
    reporter_.started();
  }
}

void watch::end_here() {
  end(phase_ == phase::claiming
          ? not_run(ORV_WHY_NONE, "the watch was stopped before it started a monitor")
          : last_command_);
}

void watch::lend() {
  phase_ = phase::lending;
  turn_->release();
  locks_->release(right::packet);
  lent_at_ = steady_clock::now();
  step_timer_ = source::every(loan_look_interval, kept([this] { look_after_loan(); }));
}

void watch::look_after_loan() {
  last_loan_ = steady_clock::now() - lent_at_;
  if (!locks_->taken_by_others(right::wanting) || last_loan_ >= longest_loan) {
    step_timer_.cancel();
    then(&watch::resume);
    claim_right(right::packet, time_limit::of(patience_ms));
  }
}

}  // namespace orv_client::store
