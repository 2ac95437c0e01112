#include "watch.h"

#include <orv/protocol.h>
#include <vconf.h>

#include <algorithm>
#include <utility>

namespace orv_client::store {
namespace {

// A quarter of the packet and three quarters. Between them is what the monitors write while the
// watch waits for a tick of the slowest.
constexpr size_t roomy_size = size_t{ORV_PACKET_MAX_TEXT} / 4;
constexpr size_t full_size = roomy_size * 3;

constexpr uint32_t default_cpu_interval_ms = 250;
constexpr uint32_t default_timeout_ms = 5000;

// Where the interval is fixed, the agent only looks whether it is 0.
command start_command(const monitor_row& row, uint32_t interval_ms) {
  return {ORV_COMMAND_MONITOR, {row.monitor, ORV_MONITOR_START, static_cast<int32_t>(interval_ms)}};
}

command stop_command(const monitor_row& row) {
  return {ORV_COMMAND_MONITOR, {row.monitor, ORV_MONITOR_STOP}};
}

// Neither starts nor stops anything.
command health_command(const monitor_row& row) {
  return {ORV_COMMAND_MONITOR, {row.monitor, -1}};
}

uint32_t timeout_of(const orv_watch_options& options) {
  if (options.timeout_ms != 0) {
    return options.timeout_ms;
  }
  const bool lists_threads = options.monitors == 0 || options.name_threads != 0 ||
                             (options.monitors & ORV_MONITOR_STACK) != 0;
  return lists_threads ? thread_timeout_ms : default_timeout_ms;
}

std::vector<const monitor_row*> rows_of(uint32_t monitors) {
  std::vector<const monitor_row*> rows;
  for (const monitor_row& row : monitor_rows()) {
    if (monitors == 0 || (monitors & static_cast<uint32_t>(row.monitor)) != 0) {
      rows.push_back(&row);
    }
  }
  return rows;
}

}  // namespace

watch* watch::start(const std::string& directory, const orv_watch_options& options,
                    carried_event_fn on_event, void* user_data) {
  const std::shared_ptr<watch> made{new watch{directory, options, on_event, user_data}};
  made->step_timer_ =
      source::after(milliseconds{0}, made->kept([one = made.get()] { one->claim_all(); }));
  made->self_ = made;
  return made.get();
}

watch::watch(const std::string& directory, const orv_watch_options& options,
             carried_event_fn on_event, void* user_data)
    : directory_{directory},
      timeout_ms_{timeout_of(options)},
      cpu_interval_ms_{options.cpu_interval_ms != 0 ? options.cpu_interval_ms
                                                    : default_cpu_interval_ms},
      names_threads_{options.name_threads != 0},
      watched_{rows_of(options.monitors)},
      reporter_{on_event, user_data} {
  const auto interval = [this](const monitor_row* row) {
    return interval_of(*row, cpu_interval_ms_);
  };
  const auto [fastest, slowest] = std::minmax_element(
      watched_.begin(), watched_.end(),
      [&](const auto* one, const auto* other) { return interval(one) < interval(other); });
  slowest_ = *slowest;
  silence_.emplace(milliseconds{interval(*fastest)}, milliseconds{interval(slowest_)},
                   milliseconds{timeout_ms_});
}

void watch::stop() {
  if (std::exchange(stop_wanted_, true)) {
    return;
  }
  switch (phase_) {
    case phase::claiming:
    case phase::lending:  // nothing of this watch ticks
      claim_.reset();
      step_timer_ = source::after(milliseconds{0}, kept([this] { end_here(); }));
      break;
    case phase::following:
      step_timer_ = source::after(milliseconds{0}, kept([this] { finish(); }));
      break;
    default:  // what is under way sees it at its end
      break;
  }
}

void watch::cancel() {
  phase_ = phase::ended;
  reporter_.be_silent();
  let_go();
  self_.reset();
}

// ---- Phases ----

void watch::claim_all() {
  std::string why;
  locks_.emplace(directory_, why);
  if (!locks_->usable()) {
    return end(not_run(ORV_WHY_STORE_REFUSED, "store " + why));
  }
  turn_.emplace(directory_, *locks_);
  listener_.emplace(kept([this](change what) { heard(what); }));
  if (!listener_->listening()) {
    return end(store_failed(directory_));
  }
  then(&watch::claim_monitors);
  then(&watch::claim_packet);
  then(&watch::take_over);
  next();
}

// Only so is it known which monitors run, and at which interval.
void watch::take_over() {
  phase_ = phase::taking_over;
  then(&watch::take_turn);
  then(&watch::settle);
  for (const monitor_row& row : monitor_rows()) {
    then_send(stop_command(row));
  }
  if (names_threads_) {
    then(&watch::ask_names);
  }
  then(&watch::settle);
  then(&watch::empty_packet);
  then(&watch::lend_or_resume);
  next();
}

void watch::resume() {
  phase_ = phase::resuming;
  then(&watch::take_turn);
  then(&watch::settle);
  for (const monitor_row* row : watched_) {
    then_send(start_command(*row, interval_of(*row, cpu_interval_ms_)));
  }
  then(&watch::follow);
  next();
}

void watch::probe() {
  phase_ = phase::probing;
  then(&watch::take_turn);
  then_send(health_command(*slowest_));
  then(&watch::follow);
  next();
}

void watch::pause() {
  phase_ = phase::halting;
  then(&watch::take_turn);
  then_stop_the_watched();
  then(&watch::settle_after_stops);
  if (names_threads_ && reporter_.lacks_names()) {
    then(&watch::ask_names);
    then(&watch::settle);
  }
  then(&watch::empty_packet);
  then(&watch::lend_or_resume);
  next();
}

void watch::finish() {
  phase_ = phase::finishing;
  then(&watch::take_turn);
  then_stop_the_watched();
  then(&watch::settle_after_stops);
  then(&watch::end_here);
  next();
}

void watch::then(step one) {
  steps_.emplace_back([this, one] { (this->*one)(); });
}

void watch::then_send(const command& one) {
  steps_.emplace_back([this, one] { send(one); });
}

void watch::then_stop_the_watched() {
  for (const monitor_row* row : watched_) {
    then_send(stop_command(*row));
  }
  then(&watch::take_the_rest);
}

// ---- While the monitors tick ----

void watch::heard(change what) {
  if (what != change::text) {
    return;
  }
  ++text_changes_;
  if (own_write_.pending()) {
    packet_emptied();
  } else {
    look_soon();
  }
}

bool watch::reads_changes() const {
  return phase_ == phase::following || phase_ == phase::probing || phase_ == phase::halting ||
         phase_ == phase::finishing;
}

// All changes that are in the queue by now are seen in one look.
void watch::look_soon() {
  if (reads_changes() && looked_at_ != text_changes_ && !look_timer_.pending()) {
    look_timer_ = source::after(milliseconds{0}, kept([this] { look(); }));
  }
}

void watch::look() {
  if (!reads_changes() || looked_at_ == text_changes_) {
    return;
  }
  const bool slowest_ticked = take_news();
  if (phase_ == phase::following && !stop_wanted_ && pause_is_due(slowest_ticked)) {
    pause();
  }
}

// Returns whether a tick of the slowest monitor was among the changes.
bool watch::take_news() {
  looked_at_ = text_changes_;
  const std::string packet = read_text(VCONFKEY_ORV_RESULT_DATA).value_or("");
  packet_size_ = packet.size();
  packet_follower::news news = follower_.look(packet);
  silence_->packet_changed(steady_clock::now(), news.begun_anew);
  if (news.begun_anew) {
    reporter_.gap();
  }
  if (news.garbled) {
    reporter_.garbled(packet);
  }
  const bool slowest_ticked = slowest_is_among(news.items);
  reporter_.items(std::move(news.items), packet_size_);
  reporter_.ticked();
  return slowest_ticked;
}

// A tick of the CPU monitor that sees no thread running writes the packet as it was.
bool watch::slowest_is_among(const std::vector<packet_item>& news) const {
  return (news.empty() && slowest_->fixed_interval_ms == 0) ||
         std::any_of(news.begin(), news.end(), [this](const packet_item& item) {
           return item.fields.monitor == slowest_->monitor;
         });
}

// A monitor that is started again begins its interval anew, which costs one that has just ticked
// nothing: so at best the pause follows a tick of the slowest. An agent that is being started wipes
// the packet before it takes commands.
bool watch::pause_is_due(bool slowest_ticked) const {
  return packet_size_ >= full_size ||
         (slowest_ticked && !silence_->wiped() && (packet_size_ >= roomy_size || loan_is_due()));
}

// The monitors run at least half of the time.
bool watch::loan_is_due() const {
  return steady_clock::now() - resumed_at_ >= last_loan_ && locks_->taken_by_others(right::wanting);
}

void watch::judge_silence() {
  if (phase_ != phase::following || stop_wanted_) {
    return;
  }
  switch (silence_->judge(steady_clock::now())) {
    case host_silence::verdict::go_on:
      silence_timer_ = source::at(silence_->due(), kept([this] { judge_silence(); }));
      break;
    case host_silence::verdict::ask_whether_it_lives:
      probe();
      break;
    case host_silence::verdict::start_monitors_anew:
      pause();
      break;
  }
}

// ---- The end ----

void watch::let_go() {
  steps_.clear();
  for (source* one : {&step_timer_, &own_write_, &look_timer_, &silence_timer_}) {
    one->cancel();
  }
  claim_.reset();
  turn_.reset();
  listener_.reset();
  locks_.reset();
}

void watch::end(ending how) {
  const ending last = std::move(how);
  phase_ = phase::ended;
  let_go();
  reporter_.ended(last.view());
  self_.reset();
}

void watch::end_without_memory() noexcept {
  phase_ = phase::ended;
  let_go();
  reporter_.ended(may_have_run(ORV_WHY_NO_MEMORY, "").view());
  self_.reset();
}

}  // namespace orv_client::store
