// The parts of a watch that touch nothing: the packet's text, what is new in it, and the host's
// silence.

#include <gmock/gmock.h>

#include <chrono>
#include <string>

#include "host_silence.h"
#include "packet_follower.h"

namespace {

using orv_client::store::host_silence;
using orv_client::store::packet_follower;
using orv_client::store::packet_item;
using std::chrono::milliseconds;
using testing::ElementsAre;

std::vector<std::string> described(const std::vector<packet_item>& items) {
  std::vector<std::string> rows;
  for (const auto& [fields, stacks] : items) {
    std::string row;
    for (const int64_t number :
         {int64_t{fields.monitor}, int64_t{fields.tick_ms}, int64_t{fields.tid},
          int64_t{fields.free_bytes}, int64_t{fields.max_free_bytes}}) {
      row += std::to_string(number) + " ";
    }
    for (const orv_stack_sample& one : stacks) {
      row += "[" + std::to_string(one.tid) + " " + std::to_string(one.state) + " " +
             std::to_string(one.pointer) + " " + std::to_string(one.start) + " " +
             std::to_string(one.end) + "]";
    }
    rows.push_back(row);
  }
  return rows;
}

TEST(PacketItems, AreReadWithTheirSigns) {
  const auto items = orv_client::store::parse_items(
      "16,1,-5,77,$,28,2,2147483647,1,1,-1024,0,$,56,3,7,2,5,2,3202482176,3202486272,3202351104,$,"
      "6,9,1,0,0,$,16,3,8,0,");
  ASSERT_TRUE(items);
  EXPECT_THAT(
      described(*items),
      ElementsAre("1 4294967291 77 0 0 ", "2 2147483647 0 4294966272 0 ",
                  "4 7 0 0 0 [5 2 3202482176 3202351104 3202486272][6 9 1 0 0]", "4 8 0 0 0 "));
  EXPECT_TRUE(orv_client::store::parse_items("").has_value());
}

TEST(PacketItems, AreWholeOrNone) {
  for (const char* text : {"x",
                           "16",
                           "16,",
                           "16,1,",
                           "16,1,5,77,",
                           "16,1,5,77,$",
                           "16,1,5,77,x,",
                           "16,1,5,,$,",
                           "16,1,5,7 7,$,",
                           "20,1,5,77,$,",
                           "16,4,5,77,$,",
                           "28,2,5,1,2,3,0,$,",
                           "28,2,5,1,1,3,$,",
                           "28,2,5,1,1,4294967296,0,$,",
                           "36,3,7,2,5,2,1,2,3,$,",
                           "32,3,7,1,5,2,1,2,3,$,",
                           "36,3,7,1,5,2,-1,2,3,$,",
                           "-4,3,7,-1,",
                           "2147483647,3,7,2147483647,",
                           "16,1,5,77,$,,"}) {
    EXPECT_FALSE(orv_client::store::parse_items(text)) << text;
  }
}

TEST(PacketFollower, TakesEachItemOnce) {
  packet_follower follower;
  const auto news = [&follower](const char* text) {
    const auto found = follower.look(text);
    EXPECT_FALSE(found.begun_anew || found.garbled) << text;
    return found.items.size();
  };
  EXPECT_EQ(news(""), 0U);
  EXPECT_EQ(news("848,8,"), 0U);
  EXPECT_EQ(news("848,24,16,1,5,1,$,"), 1U);
  EXPECT_EQ(news("848,24,16,1,5,1,$,"), 0U);
  // The header grows with the total.
  EXPECT_EQ(news("848,104,16,1,5,1,$,16,1,6,1,$,16,1,6,2,$,16,1,7,1,$,16,1,8,1,$,16,1,9,1,$,"), 5U);
  follower.emptied();
  EXPECT_EQ(news("CSC,Q7,someone's answer"), 0U);
  EXPECT_EQ(news("848,24,16,1,5,1,$,"), 1U) << "the same text again, but a new packet";
}

TEST(PacketFollower, SaysOnceThatAPacketWasBegunAnew) {
  for (const char* text : {"", "CSC,Q7", "848,8,", "848,24,16,1,6,1,$,"}) {
    packet_follower follower;
    follower.look("848,24,16,1,5,1,$,");
    EXPECT_TRUE(follower.look(text).begun_anew) << text;
    EXPECT_FALSE(follower.look(text).begun_anew) << text;
  }
}

TEST(PacketFollower, PassesOverWhatIsNoItem) {
  packet_follower follower;
  EXPECT_TRUE(follower.look("848,24,nonsense,").garbled);
  const auto next = follower.look("848,40,nonsense,16,1,5,1,$,");
  EXPECT_FALSE(next.garbled);
  EXPECT_EQ(next.items.size(), 1U);
}

class HostSilence : public testing::Test {
 protected:
  using verdict = host_silence::verdict;

  static host_silence::time at(int ms) { return host_silence::time{milliseconds{ms}}; }

  // The verdict comes at this moment and not before.
  void expect(verdict wanted, int ms) {
    EXPECT_EQ(silence_.due(), at(ms));
    EXPECT_EQ(silence_.judge(at(ms - 1)), verdict::go_on) << ms;
    EXPECT_EQ(silence_.judge(at(ms)), wanted) << ms;
  }

  // Ticks of 250 ms and 2 s, answers within 5 s.
  host_silence silence_{milliseconds{250}, milliseconds{2000}, milliseconds{5000}};
};

TEST_F(HostSilence, IsNoneWhileThePacketChanges) {
  silence_.monitors_started(at(0));
  for (int ms = 2400; ms < 20000; ms += 2400) {
    EXPECT_EQ(silence_.judge(at(ms)), verdict::go_on);
    silence_.packet_changed(at(ms), false);
  }
}

TEST_F(HostSilence, LeadsToAQuestionAndThenToNewMonitors) {
  silence_.monitors_started(at(1000));
  expect(verdict::ask_whether_it_lives, 3500);
  expect(verdict::start_monitors_anew, 3500 + 9000);
  // They are started and still do not tick.
  silence_.monitors_started(at(13000));
  expect(verdict::ask_whether_it_lives, 15500);
  // It was only busy.
  silence_.packet_changed(at(16000), false);
  expect(verdict::ask_whether_it_lives, 18500);
}

TEST_F(HostSilence, AfterAWipeLeadsToNewMonitorsAtOnce) {
  silence_.monitors_started(at(0));
  silence_.packet_changed(at(500), true);
  EXPECT_TRUE(silence_.wiped());
  expect(verdict::start_monitors_anew, 1500);
  EXPECT_FALSE(silence_.wiped());
  // Somebody else's wipe: the monitors tick on.
  silence_.packet_changed(at(2000), true);
  silence_.packet_changed(at(2250), false);
  expect(verdict::ask_whether_it_lives, 4750);
}

}  // namespace
