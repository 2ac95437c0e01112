#include <gmock/gmock.h>

#include "camera_application.h"
#include "monitor_probe.h"

namespace {

using orv_test::take_intervals;
using orv_test::take_writes;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr char answered_0[] = "memory/orv/result=0";
constexpr char answered_failure[] = "memory/orv/result=-1";

class MonitorCommand : public orv_test::MonitorTest {
 protected:
  static std::vector<std::string> writes_of(int param1, int param2, int param3) {
    orv_command record{param1, param2, param3, 4, ORV_COMMAND_MONITOR};
    orv_monitor_handler(&record, "text");
    return take_writes();
  }

  // What the command itself logs, with the functions that do.
  static std::vector<std::string> log_of(int param1, int param2, int param3) {
    orv_test::take_log();
    writes_of(param1, param2, param3);
    return orv_test::take_messages_of("orv_monitor_handler.cpp");
  }
};

constexpr int types[] = {ORV_MON_TYPE_CPU, ORV_MON_TYPE_HEAP, ORV_MON_TYPE_STACK};

TEST_F(MonitorCommand, AnswersHealthUnlessItStartsAtTheMonitorsInterval) {
  EXPECT_THAT(writes_of(3, 1, 1), IsEmpty()) << "there is no such monitor";
  for (const int type : types) {
    SCOPED_TRACE(type);
    EXPECT_THAT(writes_of(type, 1, 500), ElementsAre(answered_0));
    EXPECT_THAT(writes_of(type, 1, 0), ElementsAre(answered_failure));
    EXPECT_THAT(writes_of(type, 2, 500), ElementsAre(answered_failure));
    EXPECT_THAT(writes_of(type, -1, 0), ElementsAre(answered_failure));
    EXPECT_THAT(writes_of(type, 0, 500), ElementsAre(answered_0, answered_0, answered_failure));
  }
  EXPECT_THAT(take_intervals(), ElementsAre(500U, 1000U, 2000U));
  const orv_test::camera_application application;
  for (const int type : types) {
    SCOPED_TRACE(type);
    EXPECT_THAT(writes_of(type, 1, 0), ElementsAre(answered_0));
    EXPECT_THAT(writes_of(type, 0, 0), ElementsAre(answered_0, answered_0, answered_0));
  }
}

TEST_F(MonitorCommand, LogsWhatItWasGiven) {
  const std::pair<int, std::vector<std::string>> rows[] = {
      {ORV_MON_TYPE_CPU,
       {"orv_cpu_monitor|orv_cpu_monitor_handler+ ", "orv_cpu_monitor|  param1=1 ",
        "orv_cpu_monitor|  param2=7 ", "orv_cpu_monitor|  param3=-3 ",
        "orv_cpu_monitor|  param4=4 ", "orv_cpu_monitor|  data=text ",
        "orv_cpu_monitor|orv_event_cpu_monitor- "}},
      {ORV_MON_TYPE_HEAP,
       {"orv_heap_monitor|orv_heap_monitor_handler+ ", "orv_heap_monitor|param1=2 ",
        "orv_heap_monitor|param2=7 ", "orv_heap_monitor|param3=-3 ",
        "orv_heap_monitor|  data=text ", "orv_heap_monitor|orv_heap_monitor_handler- "}},
      {ORV_MON_TYPE_STACK,
       {"orv_stack_monitor|orv_stack_monitor+ ", "orv_stack_monitor|  param1=4 ",
        "orv_stack_monitor|  param2=7 ", "orv_stack_monitor|  param3=-3 ",
        "orv_stack_monitor|  param4=4 ", "orv_stack_monitor|  data=text "}},
      {3, {"orv_monitor_handler|orv_monitor_handler():: unknown type = 3 "}},
  };
  for (const auto& [type, lines] : rows) {
    std::vector<std::string> expected = {
        "orv_monitor_handler|orv_monitor_handler+ ",
        "orv_monitor_handler| - param1=" + std::to_string(type) + " "};
    expected.insert(expected.end(), lines.begin(), lines.end());
    expected.emplace_back("orv_monitor_handler|orv_monitor_handler- ");
    EXPECT_THAT(log_of(type, 7, -3), ElementsAreArray(expected));
  }
}

}  // namespace
