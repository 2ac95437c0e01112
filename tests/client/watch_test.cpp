// A watch of the library's, beside what else one process does on the same main loop.

#include <gmock/gmock.h>
#include <orv/protocol.h>
#include <signal.h>
#include <sys/wait.h>

#include <map>
#include <optional>
#include <orv/client.hpp>
#include <set>
#include <string>
#include <vector>

#include "fed_host.h"
#include "keys.h"
#include "main_loop.h"

namespace {

using namespace std::chrono_literals;
using orv::client::camera;
using orv_test::run_until;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr uint32_t fast_ms = 5;

class ClientWatch : public testing::Test {
 protected:
  void SetUp() override {
    host_.number_threads();
    host_.start();
    camera_.emplace();
  }

  // Notes what it reports.
  orv::client::watch start(uint32_t monitors, uint32_t interval_ms = fast_ms,
                           uint32_t timeout_ms = 0) {
    return {*camera_, orv_watch_options{monitors, interval_ms, timeout_ms, 0},
            [this](const orv_watch_event& event) { note(event); }};
  }

  void note(const orv_watch_event& event) {
    if (event.kind == ORV_WATCH_ITEM) {
      tids_.push_back(event.item->tid);
      names_[event.item->tid] = event.item->name;
    } else if (event.kind == ORV_WATCH_ENDED) {
      ends_.emplace_back(event.reply->outcome, event.reply->why);
    }
    ++events_[event.kind];
    if (during_) {
      during_(event);
    }
  }

  bool see(orv_watch_event_kind kind, int times, int deadline_ms = 20000) {
    const int wanted = events_[kind] + times;
    return run_until([&] { return events_[kind] >= wanted; }, deadline_ms);
  }

  // The thread ids are 1, 2, 3 ... without a gap.
  void expect_each_thread_once() const {
    for (size_t i = 0; i < tids_.size(); ++i) {
      ASSERT_EQ(tids_[i], static_cast<int32_t>(i + 1));
    }
  }

  orv_test::fed_host host_;
  std::optional<camera> camera_;
  std::vector<int32_t> tids_;
  std::map<int32_t, std::string> names_;
  std::vector<std::pair<orv_outcome, orv_why>> ends_;
  std::map<orv_watch_event_kind, int> events_;
  std::function<void(const orv_watch_event&)> during_;
};

// Sends a request, and again as soon as it is answered.
class repeated {
 public:
  repeated(camera& to, const orv_request& request, std::set<orv_outcome> allowed)
      : to_{to}, request_{request}, allowed_{std::move(allowed)} {
    send();
  }
  void stop() { over_ = true; }
  [[nodiscard]] int answers() const { return answers_; }
  [[nodiscard]] bool under_way() const { return under_way_; }

 private:
  void send() {
    under_way_ = true;
    to_.send(request_, 30s, [this](const orv_reply& reply) {
      under_way_ = false;
      EXPECT_TRUE(allowed_.contains(reply.outcome)) << reply.message;
      ++answers_;
      if (!over_) {
        send();
      }
    });
  }

  camera& to_;
  orv_request request_;
  std::set<orv_outcome> allowed_;
  int answers_ = 0;
  bool over_ = false;
  bool under_way_ = false;
};

TEST_F(ClientWatch, LosesNoItemBesideCommandsAndQueriesOnTheSameLoop) {
  camera other;
  repeated queries{*camera_, orv_memory_request(), {ORV_RAN}};
  // The answer is -1: there is no such key. A tick may overwrite it.
  repeated keys{
      other, {ORV_COMMAND_EVENT, {0, 1, 0, 0}, "no such key"}, {ORV_RAN, ORV_MAY_HAVE_RUN}};
  const auto watch = start(ORV_MONITOR_CPU, 1);
  // More than a packet can hold: 22 characters an item.
  EXPECT_TRUE(run_until([this] { return tids_.size() > 4500; }, 60000));
  watch.stop();
  queries.stop();
  keys.stop();
  EXPECT_TRUE(run_until(
      [&] { return !watch.running() && !queries.under_way() && !keys.under_way(); }, 10000));
  EXPECT_THAT(ends_, ElementsAre(std::pair{ORV_RAN, ORV_WHY_NONE}));
  EXPECT_EQ(events_[ORV_WATCH_GAP] + events_[ORV_WATCH_GARBLED], 0);
  expect_each_thread_once();
  EXPECT_GE(queries.answers(), 10);
  EXPECT_GE(keys.answers(), 10);
  EXPECT_FALSE(run_until([this] { return events_[ORV_WATCH_ENDED] > 1; }, 50));
}

TEST_F(ClientWatch, IsStoppedWithinItsCallback) {
  for (const orv_watch_event_kind when : {ORV_WATCH_STARTED, ORV_WATCH_ITEM, ORV_WATCH_TICKED}) {
    SCOPED_TRACE(when);
    const auto reply = camera_->watch_for({ORV_MONITOR_CPU, fast_ms, 0, 0}, 0ms,
                                          [&](orv_watch* watch, const orv_watch_event& event) {
                                            note(event);
                                            if (event.kind == when) {
                                              orv_watch_stop(watch);
                                              orv_watch_stop(watch);
                                            }
                                          });
    EXPECT_EQ(reply->outcome, ORV_RAN) << reply->message;
    const std::string packet = orv_test::text_of(VCONFKEY_ORV_RESULT_DATA);
    EXPECT_FALSE(
        run_until([&] { return orv_test::text_of(VCONFKEY_ORV_RESULT_DATA) != packet; }, 50));
  }
  EXPECT_EQ(ends_.size(), 3U);
  expect_each_thread_once();
}

TEST_F(ClientWatch, EndsInTimeOfItsOwn) {
  const auto begun = std::chrono::steady_clock::now();
  const auto ignore = [](orv_watch*, const orv_watch_event&) {};
  const auto reply = camera_->watch_for({ORV_MONITOR_CPU, fast_ms, 0, 0}, 300ms, ignore);
  EXPECT_EQ(reply->outcome, ORV_RAN) << reply->message;
  EXPECT_GE(std::chrono::steady_clock::now() - begun, 300ms);
  const auto refused = camera_->watch_for({8, 0, 0, 0}, 300ms, ignore);
  EXPECT_EQ(refused->why, ORV_WHY_BAD_REQUEST);
}

TEST_F(ClientWatch, EndsOnceWhenItsCameraIsClosed) {
  const auto first = start(ORV_MONITOR_CPU);
  ASSERT_TRUE(see(ORV_WATCH_ITEM, 1));
  camera_.reset();
  EXPECT_THAT(ends_, ElementsAre(std::pair{ORV_MAY_HAVE_RUN, ORV_WHY_CLOSED}));
  EXPECT_FALSE(first.running());
  // Within a callback, in the middle of a tick's items.
  camera_.emplace();
  int items_after = 0;
  during_ = [&](const orv_watch_event& event) {
    items_after += !camera_ && event.kind == ORV_WATCH_ITEM ? 1 : 0;
    if (event.kind == ORV_WATCH_ITEM) {
      camera_.reset();
    }
  };
  const auto second = start(ORV_MONITOR_CPU);
  EXPECT_TRUE(see(ORV_WATCH_ENDED, 1));
  EXPECT_EQ(items_after, 0);
  EXPECT_EQ(ends_.size(), 2U);
  EXPECT_FALSE(run_until([this] { return events_[ORV_WATCH_ENDED] > 2; }, 50));
}

TEST_F(ClientWatch, HasTheMonitorsToItselfWithinItsProcessToo) {
  const auto watch = start(ORV_MONITOR_CPU);
  ASSERT_TRUE(see(ORV_WATCH_ITEM, 1));
  const camera other;
  const auto told = other.watch_for({ORV_MONITOR_HEAP, 0, 100, 0}, 0ms,
                                    [](orv_watch*, const orv_watch_event&) {});
  EXPECT_EQ(told->outcome, ORV_NOT_RUN);
  EXPECT_EQ(told->why, ORV_WHY_WATCHED);
  EXPECT_THAT(told->message, HasSubstr("watches the monitors of"));
  const auto start_heap = other.ask(orv_monitor_start_request(ORV_MONITOR_HEAP, 1), 5s);
  EXPECT_EQ(start_heap->why, ORV_WHY_WATCHED);
  // One that waits for the monitors can be stopped.
  const auto waiting = start(ORV_MONITOR_HEAP);
  ASSERT_FALSE(run_until([&] { return !waiting.running(); }, 50));
  waiting.stop();
  EXPECT_TRUE(run_until([&] { return !waiting.running(); }));
  EXPECT_THAT(ends_, ElementsAre(std::pair{ORV_NOT_RUN, ORV_WHY_NONE}));
  watch.stop();
  EXPECT_TRUE(run_until([&] { return !watch.running(); }));
}

TEST_F(ClientWatch, GoesOnWhenTheHostIsKilledAndStartedAnew) {
  const auto watch = start(ORV_MONITOR_CPU);
  ASSERT_TRUE(see(ORV_WATCH_ITEM, 1));
  host_.kill();
  ASSERT_FALSE(see(ORV_WATCH_GAP, 1, 100));
  host_.launch();
  EXPECT_TRUE(see(ORV_WATCH_GAP, 1));
  EXPECT_TRUE(see(ORV_WATCH_ITEM, 100)) << "the monitors were not started anew";
  watch.stop();
  EXPECT_TRUE(see(ORV_WATCH_ENDED, 1));
  EXPECT_THAT(ends_, ElementsAre(std::pair{ORV_RAN, ORV_WHY_NONE}));
}

TEST_F(ClientWatch, EndsWhenTheHostStaysAway) {
  const auto watch = start(ORV_MONITOR_CPU, fast_ms, 200);
  ASSERT_TRUE(see(ORV_WATCH_ITEM, 1));
  host_.kill();
  EXPECT_TRUE(see(ORV_WATCH_ENDED, 1));
  EXPECT_THAT(ends_, ElementsAre(std::pair{ORV_MAY_HAVE_RUN, ORV_WHY_NO_ANSWER}));
  EXPECT_FALSE(watch.running());
}

TEST_F(ClientWatch, NamesThreadsAndLearnsNewNamesInAPause) {
  host_.list_threads("1 7 0.0 bef01234 early R\n");
  const orv::client::watch watch{*camera_, orv_watch_options{ORV_MONITOR_CPU, fast_ms, 0, 1},
                                 [this](const orv_watch_event& event) { note(event); }};
  ASSERT_TRUE(see(ORV_WATCH_ITEM, 1));
  EXPECT_THAT(names_, ElementsAre(std::pair{7, "early"}));
  host_.list_threads("1 7 0.0 bef01234 early R\n1 8 0.0 bef01234 late R\n");
  ASSERT_TRUE(run_until([this] { return names_.contains(8); }));
  EXPECT_EQ(names_[8], "");
  camera_->send(orv_memory_request(), 5s, {});  // the watch pauses for it
  EXPECT_TRUE(run_until([this] { return names_[8] == "late"; }));
  watch.stop();
  EXPECT_TRUE(see(ORV_WATCH_ENDED, 1));
}

}  // namespace
