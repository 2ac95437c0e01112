#include "store/answer_filter.h"

#include <gtest/gtest.h>
#include <orv/protocol.h>

#include <string>
#include <vector>

namespace {

using orv_client::command;
using orv_client::store::answer_filter;

// A script of changes in their order: "cmd", "result N", or "data TEXT". What the filter takes for
// the answer, as "N" or "N TEXT", or "none".
std::string taken(const command& sent, const std::vector<std::string>& changes) {
  answer_filter filter{sent};
  for (const std::string& change : changes) {
    if (change == "cmd") {
      filter.command_sent();
    } else if (change.starts_with("data ")) {
      filter.text_seen(change.substr(5));
    } else if (const auto answered = filter.result_seen(std::stoi(change.substr(7)))) {
      return std::to_string(answered->result) + (answered->text ? " " + *answered->text : "");
    }
  }
  return "none";
}

const command key{ORV_COMMAND_EVENT, {ORV_EVENT_KEY, ORV_PRESS}, "KEY_OK"};
const command target{ORV_COMMAND_TARGET_INFO, {}, ""};
const command heap{ORV_COMMAND_HEAP_INFO, {}, ""};
const command unknown{0x777, {}, ""};
const command stop{ORV_COMMAND_MONITOR, {ORV_MON_TYPE_HEAP, ORV_MONITOR_STOP}, ""};
const std::string tick = "data 848,36,28,2,10,1,1,1024,0,$,";

TEST(AnswerFilter, TakesTheAnswerAfterTheCommand) {
  EXPECT_EQ(taken(key, {"cmd", "result -1"}), "-1");
  EXPECT_EQ(taken(target, {"cmd", "data CSC,Q7", "result 0"}), "0 CSC,Q7");
  EXPECT_EQ(taken(heap, {"cmd", "data 1,1,1024", "result 0"}), "0 1,1,1024");
  EXPECT_EQ(taken(unknown, {"cmd", "result 4"}), "4");
  EXPECT_EQ(taken(unknown, {"cmd", "data any", "result 4"}), "4 any");
}

TEST(AnswerFilter, LeavesWhatCameBeforeTheCommand) {
  EXPECT_EQ(taken(key, {"result 0"}), "none");
  EXPECT_EQ(taken(key, {"result 0", "cmd", "result -1"}), "-1");
  EXPECT_EQ(taken(key, {tick, "cmd", "result -1"}), "-1") << "the tick's agent was killed";
  EXPECT_EQ(taken(target, {"data CSC,old", "cmd", "result 0"}), "none");
  EXPECT_EQ(taken(target, {"data CSC,old", "cmd", "result 0", "data CSC,new", "result 0"}),
            "0 CSC,new");
}

TEST(AnswerFilter, LeavesTicksOfMonitorsAndAnswersToOthers) {
  EXPECT_EQ(taken(key, {"cmd", tick, "result 0", "result -1"}), "-1");
  EXPECT_EQ(taken(key, {"cmd", "data 1,1,1024", "result 0"}), "none");
  EXPECT_EQ(taken(target, {"cmd", tick, "result 0", "data CSC,Q7", "result 0"}), "0 CSC,Q7");
  EXPECT_EQ(taken(target, {"cmd", "data 523,0,", "result 0"}), "none");
  EXPECT_EQ(taken(heap, {"cmd", "data CSC,Q7", "result 0", "result -1"}), "none");
  EXPECT_EQ(taken(unknown, {"cmd", tick, "result 0"}), "none");
}

TEST(AnswerFilter, TakesTheHealthCheckAsTheVerdictOfAStop) {
  EXPECT_EQ(taken(stop, {"cmd", "result 0", "result 0"}), "none");
  EXPECT_EQ(taken(stop, {"cmd", "result 0", tick, "result 0", "result 0", "result -1"}), "-1");
}

}  // namespace
