#include <gmock/gmock.h>

#include "fed_programs.h"
#include "monitor_probe.h"
#include "packet_check.h"

namespace {

using orv_test::put;
using orv_test::take_messages;
using orv_test::take_writes;
using orv_test::text_at;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char stack_lines[] = "bee00000-bee21000 rw-p 00000000 00:00 0  [stack]\n";
constexpr size_t copy_size = 80696;
constexpr size_t list_size = 4096;

class StackMonitor : public orv_test::MonitorTest {
 protected:
  StackMonitor() : MonitorTest{orv_stack_monitor_proc} {}

  // Threads 101, 102 ... in these states.
  void feed(const std::vector<std::string>& states) const {
    std::string listing;
    int id = 100;
    for (const std::string& state : states) {
      const std::string text = std::to_string(++id);
      listing += text + " " + text + " 0.0 bee20000 worker " + state + "\n";
      fed_.feed_cat("/proc/" + text + "/task/" + text + "/maps", stack_lines);
    }
    fed_.feed_ps(listing);
  }

  orv_test::fed_programs fed_;
};

std::string group(int id, int state) {
  return std::to_string(id) + "," + std::to_string(state) + ",3202482176,3202486272,3202351104,$,";
}

TEST_F(StackMonitor, AppendsAGroupForEachThread) {
  feed({"S", "R", "Z"});
  const std::string groups = group(101, 2) + group(102, 9) + group(103, 17);
  EXPECT_EQ(packet_after(""), "848,84,76,3,T,3," + groups);
  EXPECT_EQ(g_packet_data.packet_code, 0) << "that of heap and CPU items alone";
  EXPECT_EQ(g_packet_data.total_count, 84);
  feed({"D"});
  EXPECT_EQ(packet_after(text_at(VCONFKEY_ORV_RESULT_DATA)),
            "848,120,76,3,T,3," + groups + "36,3,T,1," + group(101, 6));
  EXPECT_EQ(packet_after("848,24,16,1,5,100,$,"), "848,60,16,1,T,100,$,36,3,T,1," + group(101, 6));
  EXPECT_EQ(packet_after("523,1,7,x,1,2,$,"), "848,44,36,3,T,1," + group(101, 6));
}

TEST_F(StackMonitor, KnowsTheStatesByTheirFirstLetter) {
  feed({"S", "R", "D", "Z", "T", "W", "t", "I", "Sl"});
  std::string groups;
  int id = 100;
  for (const int code : {2, 9, 6, 17, 8, 16, 0, 0, 2}) {
    groups += group(++id, code);
  }
  EXPECT_EQ(packet_after(""), "848,204,196,3,T,9," + groups);
}

TEST_F(StackMonitor, WritesAnItemWithoutThreads) {
  fed_.feed_ps("");
  EXPECT_EQ(packet_after(""), "848,24,16,3,T,0,");
  EXPECT_EQ(packet_after("848,24,16,1,5,100,$,"), "848,40,16,1,T,100,$,16,3,T,0,");
}

TEST_F(StackMonitor, LogsABlockForEachThread) {
  feed({"Z"});
  orv_stack_monitor_open();
  orv_stack_monitor_proc(nullptr);
  orv_stack_monitor_close();
  EXPECT_THAT(
      take_messages(),
      ElementsAre("I orv_stack_monitor_open() ",
                  "I 101  101   0.0    3202482176         3202351104         3202486272     "
                  "    135168       Z   worker",
                  "I \n==================================================================",
                  "I TASK NAME        :   worker", "I TASK ID          :   101",
                  "I TASK STATE       :   11", "I STACK POINTER    :   BEE20000",
                  "I Base  POINTER    :   BEE00000", "I TOP   POINTER    :   BEE21000",
                  "I =====================================================================",
                  "I end- ", "I orv_stack_monitor_close() "));
  const std::string packet = text_at(VCONFKEY_ORV_RESULT_DATA);
  EXPECT_THAT(take_writes(), ElementsAre("memory/orv/result_data=" + packet, "memory/orv/result=0",
                                         "memory/orv/result=0"));
}

TEST_F(StackMonitor, ListsAsManyThreadsAsHaveRoom) {
  std::string listing;
  for (int id = 101; id < 301; ++id) {
    listing += "1 " + std::to_string(id) + " 0.0 bee20000 worker S\n";
  }
  fed_.feed_ps_alone(listing);
  const std::string unknown_stack = "101,2,3202482176,0,0,$,";
  const size_t count = (list_size - 1) / unknown_stack.size();
  testing::internal::CaptureStderr();  // the shell misses its programs
  const std::string packet = packet_after("");
  testing::internal::GetCapturedStderr();
  EXPECT_THAT(packet, testing::StartsWith("848," + std::to_string(24 + 20 * count) + "," +
                                          std::to_string(16 + 20 * count) + ",3,T," +
                                          std::to_string(count) + "," + unknown_stack));
}

TEST_F(StackMonitor, SkipsATickWithoutMemory) {
  feed({"S"});
  const std::string old = "848,24,16,1,5,100,$,";
  put(VCONFKEY_ORV_RESULT_DATA, old.c_str());
  constexpr char refused[] = "E  ERROR in Memory allocation";
  for (const size_t size : {copy_size, list_size, size_t{ORV_PACKET_MAX_TEXT}}) {
    SCOPED_TRACE(size);
    orv_test::refuse_memory(size);
    EXPECT_EQ(orv_stack_monitor_proc(nullptr), 1);
    const auto messages = take_messages();
    EXPECT_EQ(messages.back(), refused);
    EXPECT_EQ(messages.size() > 1, size == ORV_PACKET_MAX_TEXT) << "threads are sampled before";
    EXPECT_THAT(take_writes(), IsEmpty());
    EXPECT_EQ(g_packet_data.total_count, 0);
  }
  EXPECT_EQ(text_at(VCONFKEY_ORV_RESULT_DATA), old);
}

}  // namespace
