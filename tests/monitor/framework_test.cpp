#include <gmock/gmock.h>
#include <orv/agent.h>

#include "keys.h"
#include "monitor_probe.h"

namespace {

using orv_test::put;
using orv_test::take_intervals;
using orv_test::take_messages;
using orv_test::take_writes;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr char start_entered[] = "I ORV_MON_ACTION_START entered.";
constexpr char stop_entered[] = "I ORV_MON_ACTION_TERMINATE entered.";
constexpr char heap_opened[] = "I orv_heap_monitor_open() ";
constexpr char heap_closed[] = "I orv_heap_monitor_close() ";
const auto timer_registered = StartsWith("I Register timer with callback pointer (0x");

class Framework : public orv_test::MonitorTest {
 protected:
  // The store tells of every write, the agent's own included.
  static bool ticks(int times) {
    return orv_test::key_counter{VCONFKEY_ORV_RESULT_DATA}.reaches(times, 300 + 300 * times);
  }
};

TEST_F(Framework, RefusesUnknownActionsAndTypes) {
  orv_command heap{ORV_MON_TYPE_HEAP, 1, 1000, 0, 0};
  EXPECT_EQ(orv_monitor(&heap, 3), -1);
  EXPECT_EQ(orv_monitor(&heap, -1), -1);
  EXPECT_EQ(orv_monitor(&heap, ORV_MON_ACTION_CHANGE_PROPERTY), 0);
  EXPECT_THAT(take_messages(), ElementsAre("E orv_monitor():: Unknown action (3) ",
                                           "E orv_monitor():: Unknown action (-1) ",
                                           "I ORV_MON_ACTION_CHANGE_PROPERTY entered."));
  for (const int type : {0, 3, 8, -1}) {
    EXPECT_EQ(start(type, 1000), 0);
    EXPECT_EQ(stop(type), 0);
    EXPECT_THAT(take_messages(), ElementsAre(start_entered, stop_entered)) << type;
  }
  EXPECT_THAT(take_writes(), IsEmpty());
  EXPECT_THAT(take_intervals(), IsEmpty());
}

TEST_F(Framework, OpensEveryStartAndRunsOneTimer) {
  orv_command without_timer{ORV_MON_TYPE_HEAP, 0, 1000, 0, 0};
  EXPECT_EQ(orv_monitor(&without_timer, ORV_MON_ACTION_START), 0);
  EXPECT_THAT(take_messages(), ElementsAre(start_entered, heap_opened));
  EXPECT_EQ(start(ORV_MON_TYPE_HEAP, 1000), 0);
  EXPECT_EQ(start(ORV_MON_TYPE_HEAP, 20), 0);
  EXPECT_THAT(take_intervals(), ElementsAre(1000U));
  EXPECT_THAT(take_messages(),
              ElementsAre(start_entered, heap_opened, timer_registered, start_entered, heap_opened,
                          timer_registered, "E orv_start_timer():: timer already is registered "));
}

TEST_F(Framework, ClosesEveryStopAndEndsTheTimer) {
  EXPECT_EQ(stop(ORV_MON_TYPE_HEAP), 0);
  EXPECT_THAT(take_messages(), ElementsAre(stop_entered, heap_closed));
  EXPECT_THAT(take_writes(), ElementsAre("memory/orv/result=0"));

  start(ORV_MON_TYPE_HEAP, 5);
  EXPECT_TRUE(ticks(2));
  take_messages();
  EXPECT_EQ(stop(ORV_MON_TYPE_HEAP), 0);
  EXPECT_THAT(take_messages(), ElementsAre(stop_entered, heap_closed));
  EXPECT_FALSE(ticks(1));
  start(ORV_MON_TYPE_HEAP, 5);
  EXPECT_TRUE(ticks(2));

  take_writes();
  stop(ORV_MON_TYPE_CPU);
  EXPECT_THAT(take_writes(), ElementsAre("memory/orv/result=0"));
}

TEST_F(Framework, MixesItemsInTheOrderOfTheirTicks) {
  orv_heap_monitor_proc(nullptr);
  orv_cpu_monitor_proc(nullptr);
  orv_stack_monitor_proc(nullptr);
  orv_heap_monitor_proc(nullptr);
  // The probe has checked each packet; here is the order.
  const std::string packet = orv_test::text_at(VCONFKEY_ORV_RESULT_DATA);
  EXPECT_THAT(packet,
              testing::ContainsRegex("^848,[0-9]+,28,2,.*,\\$,[0-9]+,3,.*,28,2,[^$]*\\$,$"));
}

TEST_F(Framework, MonitorsOutliveTheAgentsStop) {
  ASSERT_EQ(orv_init_handler(), 0);
  put(VCONFKEY_ORV_COMMAND_PARAM1, ORV_MON_TYPE_CPU);
  put(VCONFKEY_ORV_COMMAND_PARAM2, ORV_MONITOR_START);
  put(VCONFKEY_ORV_COMMAND_PARAM3, 5);
  put(VCONFKEY_ORV_COMMAND, ORV_COMMAND_MONITOR);
  EXPECT_TRUE(ticks(1));
  orv_destroy_handler();
  EXPECT_TRUE(ticks(3));
}

}  // namespace
