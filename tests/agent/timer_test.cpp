#include <orv/timer.h>

#include <gmock/gmock.h>

#include <chrono>

#include "agent_probe.h"

namespace {

using orv_test::run_until;
using orv_test::take_messages;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr char registration[] = "I Register timer with callback pointer (";

struct ticks {
  int seen = 0;
  int last = -1;  // the tick that ends the timer
};

int tick(void* counter) {
  auto* ticks_so_far = static_cast<ticks*>(counter);
  return ++ticks_so_far->seen != ticks_so_far->last ? 1 : 0;
}

class Timer : public orv_test::AgentTest {
 protected:
  void TearDown() override { orv_stop_timer(&id_); }

  uint32_t id_ = 0;
  ticks ticks_;
};

TEST_F(Timer, CallsBackAtItsIntervalUntilItIsStopped) {
  const auto start = steady_clock::now();
  orv_start_timer(40, tick, &ticks_, &id_);
  EXPECT_NE(id_, 0U);
  EXPECT_TRUE(run_until([&] { return ticks_.seen == 3; }));
  EXPECT_GE(steady_clock::now() - start, milliseconds{115});
  EXPECT_THAT(take_messages(), ElementsAre(StartsWith(registration)));

  orv_stop_timer(&id_);
  EXPECT_EQ(id_, 0U);
  orv_stop_timer(&id_);
  EXPECT_FALSE(run_until([&] { return ticks_.seen > 3; }, 120));
  EXPECT_THAT(take_messages(), IsEmpty());
}

TEST_F(Timer, CountsSecondsWhenToldSo) {
  const auto start = steady_clock::now();
  orv_start_timer_seconds(1, tick, &ticks_, &id_);
  EXPECT_TRUE(run_until([&] { return ticks_.seen == 2; }));
  EXPECT_GE(steady_clock::now() - start, milliseconds{1000});
}

TEST_F(Timer, NamesWhyItRefuses) {
  id_ = 77;  // of a source that has long ended
  orv_start_timer(1, tick, &ticks_, &id_);
  orv_start_timer_seconds(1, tick, &ticks_, &id_);
  EXPECT_EQ(id_, 77U);
  id_ = 0;
  orv_start_timer(1, nullptr, &ticks_, &id_);
  orv_start_timer_seconds(1, nullptr, &ticks_, &id_);
  orv_stop_timer(nullptr);
  EXPECT_EQ(id_, 0U);

  const auto start = StartsWith("orv_start_timer|Register timer with callback pointer (0x");
  const auto start_seconds =
      StartsWith("orv_start_timer_seconds|Register timer with callback pointer (0x");
  EXPECT_THAT(
      orv_test::take_messages_of("orv_timer.cpp"),
      ElementsAre(
          start, "orv_start_timer|orv_start_timer():: timer already is registered ", start_seconds,
          "orv_start_timer_seconds|orv_start_timer_seconds():: timer already is registered ",
          "orv_start_timer|Register timer with callback pointer ((nil)) ",
          "orv_start_timer|orv_start_timer():: cb is NULL ",
          "orv_start_timer_seconds|Register timer with callback pointer ((nil)) ",
          "orv_start_timer_seconds|orv_start_timer_seconds():: cb is NULL ",
          "orv_stop_timer|orv_stop_timer():: timer_id is NULL "));
}

TEST_F(Timer, RunsWithoutAnIdUntilItsCallbackEndsIt) {
  ticks_.last = 2;
  orv_start_timer(1, tick, &ticks_, nullptr);
  EXPECT_TRUE(run_until([&] { return ticks_.seen == 2; }));
  EXPECT_FALSE(run_until([&] { return ticks_.seen > 2; }, 30));
}

}  // namespace
