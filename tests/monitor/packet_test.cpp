#include "monitor/packet.h"

#include <gmock/gmock.h>
#include <orv/agent.h>

#include "common/clock.h"
#include "fed_programs.h"
#include "monitor_probe.h"
#include "packet_check.h"

namespace {

using orv_test::packet_fault;
using orv_test::put;
using orv_test::take_messages;
using orv_test::take_writes;
using orv_test::text_at;
using testing::Contains;
using testing::ElementsAre;
using testing::StartsWith;

constexpr size_t most_characters = ORV_PACKET_MAX_TEXT - 1;

TEST(PacketText, HasATotalOfLeadingDigits) {
  const std::pair<const char*, int> rows[] = {
      {"848,36,x", 36}, {"848,36x,", 36}, {"848,,x", 0},     {"848,x36,", 0},
      {"848,-36,", 0},  {"848, 36,", 0},  {"848,0036,", 36}, {"848,99999999999999,", 0}};
  for (const auto& [text, total] : rows) {
    EXPECT_EQ(orv::parse_packet(std::string_view{text}).total_count, total) << text;
  }
}

// A true packet of heap items with so many characters in all.
std::string packet_of_size(size_t characters) {
  const std::string item = "28,2,1,1,1,1,0,$,";
  const size_t count = (characters - sizeof "848,130000") / item.size();
  std::string text = "848," + std::to_string(8 + 28 * count) + ",";
  for (size_t i = 0; i < count; ++i) {
    text += item;
  }
  // The last item's time and free bytes take up what is missing.
  const size_t missing = characters - text.size();
  text.insert(text.rfind(",0,$"), missing / 2, '1');
  text.insert(text.rfind(",1,1,1"), missing - missing / 2, '1');
  EXPECT_EQ(packet_fault(text), "");
  return text;
}

class FullPacket : public orv_test::MonitorTest {
 protected:
  void SetUp() override {
    MonitorTest::SetUp();
    fed_.feed_ps("7 7 0.0 bef01234 worker R\n");
  }

  orv_test::fed_programs fed_;
};

TEST_F(FullPacket, IsKeptAndNextTicksGoOn) {
  const std::pair<int (*)(void*), int> rows[] = {
      {orv_heap_monitor_proc, 28}, {orv_cpu_monitor_proc, 16}, {orv_stack_monitor_proc, 36}};
  const std::string full = packet_of_size(most_characters);
  const std::string total = full.substr(4, full.find(',', 4) - 4);
  for (const auto& [proc, size] : rows) {
    put(VCONFKEY_ORV_RESULT_DATA, full.c_str());
    for (int tick = 0; tick < 2; ++tick) {
      take_messages();
      take_writes();
      EXPECT_EQ(proc(nullptr), 1);
      EXPECT_EQ(text_at(VCONFKEY_ORV_RESULT_DATA), full);
      EXPECT_THAT(take_writes(),
                  ElementsAre("memory/orv/result_data=" + full, "memory/orv/result=0"));
      const auto messages = take_messages();
      EXPECT_THAT(messages, Contains(StartsWith("E ")).Times(1));
      EXPECT_THAT(messages, Contains("E grow_packet():: packet is full, item of " +
                                     std::to_string(size) + " bytes dropped "));
      EXPECT_EQ(std::to_string(g_packet_data.total_count), total);
    }
    take_writes();
    orv_test::empty_after_read(VCONFKEY_ORV_RESULT_DATA);
    EXPECT_EQ(proc(nullptr), 1);
    EXPECT_THAT(take_writes(), ElementsAre("memory/orv/result_data=", "memory/orv/result=0"));
    EXPECT_EQ(g_packet_data.total_count, ORV_PACKET_HEADER_SIZE);
    EXPECT_EQ(proc(nullptr), 1);
    EXPECT_EQ(packet_fault(text_at(VCONFKEY_ORV_RESULT_DATA)), "");
  }
}

TEST_F(FullPacket, TakesItemsUpToItsLastByte) {
  const std::string item = "16,1,5000,7,$,";
  for (const size_t over : {0U, 1U}) {
    const std::string old = packet_of_size(most_characters - item.size() + over);
    put(VCONFKEY_ORV_RESULT_DATA, old.c_str());
    orv_start_time = orv::to_ms(orv::wall_clock()) - 5000;  // four digits for what follows
    orv_cpu_monitor_proc(nullptr);
    const std::string packet = text_at(VCONFKEY_ORV_RESULT_DATA);
    EXPECT_EQ(packet.size(), over == 0 ? most_characters : old.size());
    EXPECT_EQ(packet_fault(packet), "");
    EXPECT_EQ(wr_vconf_data, packet);
  }
}

}  // namespace
