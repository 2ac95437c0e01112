#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <string>

#include "item_text.h"
#include "numbers.h"
#include "packet_follower.h"
#include "watch_summary.h"

namespace {

using orvctl::packet_follower;
using orvctl::packet_item;
using testing::ElementsAre;

// As they are told, so that a case can be read.
std::vector<std::string> told(const std::vector<packet_item>& items) {
  std::vector<std::string> rows;
  for (const packet_item& item : items) {
    rows.push_back(to_csv(item));
  }
  return rows;
}

TEST(PacketItems, AreTakenWithTheirSigns) {
  const auto items = orvctl::parse_items(
      "16,1,-5,77,$,28,2,2147483647,1,1,-1024,0,$,56,3,7,2,5,2,3202482176,3202486272,3202351104,$,"
      "6,9,1,0,0,$,16,3,8,0,");
  ASSERT_TRUE(items);
  EXPECT_THAT(
      told(*items),
      ElementsAre("4294967291,cpu,77,running,,,,,,\n", "2147483647,heap,,,,,,,4294966272,0\n",
                  "7,stack,5,sleeping,3202482176,3202486272,3202351104,4096,,\n"
                  "7,stack,6,running,1,0,0,,,\n",
                  ""));
  EXPECT_TRUE(orvctl::parse_items("").has_value());
}

TEST(PacketItems, AreWholeOrNone) {
  for (const char* text :
       {"x", "16", "16,", "16,1,", "16,1,5,77,", "16,1,5,77,$", "16,1,5,77,x,", "16,1,5,,$,",
        "16,1,5,7 7,$,", "20,1,5,77,$,", "16,4,5,77,$,", "28,2,5,1,2,3,0,$,", "28,2,5,1,1,3,$,",
        "28,2,5,1,1,4294967296,0,$,", "36,3,7,2,5,2,1,2,3,$,", "36,3,7,1,5,2,-1,2,3,$,",
        "-4,3,7,-1,", "2147483647,3,7,2147483647,", "16,1,5,77,$,,"}) {
    EXPECT_FALSE(orvctl::parse_items(text)) << text;
  }
}

TEST(PacketFollower, TakesEachItemOnce) {
  packet_follower follower;
  const auto news = [&follower](const char* text) {
    const auto found = follower.look(text);
    EXPECT_FALSE(found.begun_anew || found.garbled) << text;
    return told(found.items).size();
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

TEST(PacketFollower, TellsWhenAPacketWasBegunAnew) {
  for (const char* text : {"", "CSC,Q7", "848,8,", "848,24,16,1,6,1,$,"}) {
    packet_follower follower;
    follower.look("848,24,16,1,5,1,$,");
    EXPECT_TRUE(follower.look(text).begun_anew) << text;
    EXPECT_FALSE(follower.look(text).begun_anew) << "told twice: " << text;
  }
}

TEST(PacketFollower, PassesOverWhatIsNoItem) {
  packet_follower follower;
  EXPECT_TRUE(follower.look("848,24,nonsense,").garbled);
  const auto next = follower.look("848,40,nonsense,16,1,5,1,$,");
  EXPECT_FALSE(next.garbled);
  EXPECT_EQ(next.items.size(), 1U);
}

TEST(Summary, CountsAndRanks) {
  orvctl::watch_summary summary;
  const auto items = orvctl::parse_items(
      "16,1,1,7,$,16,1,1,8,$,16,1,2,8,$,28,2,1,1,1,1024,0,$,28,2,2,1,1,-1024,0,$,"
      "56,3,1,2,7,2,3000,4000,1000,$,9,2,5000,4000,1000,$,"
      "56,3,2,2,7,2,2000,4000,1000,$,8,2,3999,4000,1000,$,");
  ASSERT_TRUE(items);
  for (const packet_item& item : *items) {
    summary.add(item);
  }
  summary.set_names({{7, "worker\033"}});
  EXPECT_EQ(summary.to_lines(),
            "7 items\n"
            "seen running, times by thread:\n"
            "        8                   2\n"
            "        7  worker?          1\n"
            "free memory: least 1.0 KiB, mean 2.0 GiB\n"
            "largest stack use by thread:\n"
            "        7  worker?          2.0 KiB of 2.9 KiB\n"
            "        8                   1 B of 2.9 KiB\n");
  const auto object = nlohmann::json::parse(summary.to_json())["summary"];
  EXPECT_EQ(object["running"][0]["times"], 2);
  EXPECT_EQ(object["free_bytes"]["mean"], 2147483648U);
  EXPECT_EQ(object["stack_use"][0]["used_bytes"], 2000);
  EXPECT_EQ(object["stack_use"].size(), 2U) << "a stack pointer outside its stack tells nothing";
  EXPECT_EQ(orvctl::watch_summary{}.to_lines(), "0 items\n");
}

TEST(ItemText, IsReadable) {
  const auto items = orvctl::parse_items(
      "16,1,12345,77,$,28,2,0,1,1,2097152,0,$,36,3,7,1,5,2,3202482176,3202486272,3202351104,$,");
  ASSERT_TRUE(items);
  EXPECT_EQ(orvctl::to_line(items->at(0)), "    12.345 s  cpu    thread 77 runs\n");
  EXPECT_EQ(orvctl::to_line(items->at(1)), "     0.000 s  heap   2.0 MiB free\n");
  EXPECT_EQ(orvctl::to_line(items->at(2)),
            "     0.007 s  stack  1 threads, most stack in use by 5: 4.0 KiB of 132.0 KiB\n");
  EXPECT_EQ(orvctl::to_json(items->at(2)),
            "{\"item\":\"stack\",\"tick_ms\":7,\"threads\":[{\"tid\":5,\"state\":\"sleeping\","
            "\"pointer\":3202482176,\"end\":3202486272,\"start\":3202351104,\"used_bytes\":4096}]}"
            "\n");
}

TEST(Duration, TakesUnitsAndNothingElse) {
  const std::pair<const char*, int64_t> rows[] = {
      {"30s", 30000}, {"500ms", 500}, {"2m", 120000}, {"24h", 86400000}, {"7", 7000}};
  for (const auto& [text, ms] : rows) {
    const auto duration = orvctl::parse_duration(text);
    ASSERT_TRUE(duration) << text;
    EXPECT_EQ(duration->count(), ms) << text;
  }
  for (const char* text : {"", "s", "0s", "-1s", "1.5s", "1 s", "25h", "99999999999999999999ms",
                           "9223372036854775807h", "30S"}) {
    EXPECT_FALSE(orvctl::parse_duration(text)) << text;
  }
}

}  // namespace
