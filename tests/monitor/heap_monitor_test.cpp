#include <gmock/gmock.h>
#include <stdlib.h>

#include <fstream>
#include <optional>

#include "monitor_probe.h"
#include "packet_check.h"
#include "private_mounts.h"

namespace {

using orv_test::mounted;
using orv_test::put;
using orv_test::take_messages;
using orv_test::take_writes;
using orv_test::text_at;
using orv_test::without_times;
using testing::ElementsAre;

constexpr char item[] = "28,2,T,1,1,1024000,0,$,";

class HeapMonitor : public orv_test::MonitorTest {
 protected:
  HeapMonitor() : MonitorTest{orv_heap_monitor_proc} {}

  void SetUp() override {
    ORV_SKIP_WITHOUT_PRIVATE_MOUNTS();
    MonitorTest::SetUp();
    show_free_kb("1000");
  }

  void show_free_kb(const std::string& free) {
    const std::string path = std::string{getenv("ORV_PLATFORM_ROOT")} + "/meminfo";
    std::ofstream{path} << "MemTotal: 503316 kB\nMemFree: " << free
                        << " kB\nBuffers: 1 kB\nCached: 2 kB\n";
    meminfo_.reset();
    meminfo_.emplace(path, "/proc/meminfo");
  }

  std::optional<mounted> meminfo_;
};

TEST_F(HeapMonitor, AppendsAnItemATick) {
  EXPECT_EQ(packet_after(""), std::string{"848,36,"} + item);
  const std::string first = text_at(VCONFKEY_ORV_RESULT_DATA);
  EXPECT_EQ(orv_heap_monitor_proc(nullptr), 1);
  const std::string second = text_at(VCONFKEY_ORV_RESULT_DATA);
  EXPECT_TRUE(second.starts_with("848,64," + first.substr(7))) << second;
  EXPECT_EQ(without_times(second), std::string{"848,64,"} + item + item);
  EXPECT_THAT(take_writes(),
              ElementsAre("memory/orv/result_data=" + first, "memory/orv/result=0",
                          "memory/orv/result_data=" + second, "memory/orv/result=0"));
  EXPECT_EQ(g_packet_data.packet_code, 848);
  EXPECT_EQ(g_packet_data.total_count, 64);
  // The totals' digits grow with them.
  EXPECT_EQ(packet_after("848,92,28,2,1,1,1,5,0,$,28,2,1,1,1,5,0,$,28,2,1,1,1,5,0,$,"),
            std::string{"848,120,"} + "28,2,T,1,1,5,0,$,28,2,T,1,1,5,0,$,28,2,T,1,1,5,0,$," + item);
}

TEST_F(HeapMonitor, BeginsAnewOnWhatIsNoPacket) {
  const std::string fresh = std::string{"848,36,"} + item;
  for (const char* text : {"CSC,Q7,MODEL,EVT2,1.0,240,RELEASE,0", "523,1,7,x,1,2,$,", "1,1,1024",
                           "848", "848,", "848,64", "849,64,", " 848,64,", ","}) {
    EXPECT_EQ(packet_after(text), fresh) << text;
  }
  EXPECT_EQ(packet_after(std::string(100000, 'x')), fresh);
  put(VCONFKEY_ORV_RESULT_DATA, 848);  // unreadable as a text
  EXPECT_EQ(orv_heap_monitor_proc(nullptr), 1);
  EXPECT_EQ(without_times(text_at(VCONFKEY_ORV_RESULT_DATA)), fresh);
}

TEST_F(HeapMonitor, LogsTheItemOfEachTick) {
  EXPECT_EQ(orv_heap_monitor_open(), 1);
  orv_heap_monitor_proc(nullptr);
  EXPECT_EQ(orv_heap_monitor_close(), 1);
  const std::string tick = std::to_string(orv_mon_heap_info.tick_count);
  EXPECT_THAT(text_at(VCONFKEY_ORV_RESULT_DATA), testing::HasSubstr(",2," + tick + ","));
  EXPECT_THAT(
      take_messages(),
      ElementsAre("I orv_heap_monitor_open() ", "I start+ ", "I > Total  count   ==   36",
                  "I > The item size  ==   28", "I > The item code  ==   2",
                  "I > The tick _count==   " + tick, "I > The item count ==   1",
                  "I > The item id    ==   1", "I > Heap Free  mem ==   1024000 B ",
                  "I > Heap Max Free  ==   0 B ", "I end- ", "I orv_heap_monitor_close() "));
}

TEST_F(HeapMonitor, ComputesFreeBytesIn32Bits) {
  show_free_kb("2097152");
  EXPECT_EQ(packet_after(""), "848,36,28,2,T,1,1,-2147483648,0,$,");
  show_free_kb("4194305");
  EXPECT_EQ(packet_after(""), "848,36,28,2,T,1,1,1024,0,$,");
}

// Each tick takes memory for a copy of the old packet and for the new one.
TEST_F(HeapMonitor, TakesTheProcessDownWithoutMemoryInAnyTick) {
  const std::string old = "848,24,16,1,5,100,$,";
  for (int granted = 0; granted < 4; ++granted) {
    SCOPED_TRACE(granted);
    put(VCONFKEY_ORV_RESULT_DATA, old.c_str());
    EXPECT_EXIT(
        {
          orv_test::refuse_memory(ORV_PACKET_MAX_TEXT, granted);
          orv_heap_monitor_proc(nullptr);
          orv_heap_monitor_proc(nullptr);
        },
        testing::ExitedWithCode(1), "\\[ORV       \\] .*Could not acllocate memory ");
    EXPECT_EQ(text_at(VCONFKEY_ORV_RESULT_DATA).substr(0, 7), granted < 2 ? "848,24," : "848,52,");
  }
}

}  // namespace
