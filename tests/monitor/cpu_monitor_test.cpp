#include <gmock/gmock.h>
#include <orv/agent.h>
#include <orv/cpu.h>

#include "fed_programs.h"
#include "main_loop.h"
#include "monitor_probe.h"
#include "packet_check.h"

namespace {

using orv_test::take_messages;
using orv_test::take_writes;
using orv_test::text_at;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr size_t list_size = 1024;

std::string thread_line(int id, const std::string& state) {
  const std::string text = std::to_string(id);
  return text + " " + text + " 0.0 bef01234 worker " + state + "\n";
}

class CpuMonitor : public orv_test::MonitorTest {
 protected:
  CpuMonitor() : MonitorTest{orv_cpu_monitor_proc} {}

  orv_test::fed_programs fed_;
};

TEST_F(CpuMonitor, AppendsAnItemForEachRunningThread) {
  fed_.feed_ps(thread_line(300, "S"));
  EXPECT_EQ(packet_after(""), "848,8,");
  EXPECT_EQ(packet_after("848,8,"), "848,8,");
  fed_.feed_ps(thread_line(100, "R") + thread_line(300, "S") + thread_line(200, "R+") +
               thread_line(301, "D"));
  EXPECT_EQ(packet_after(""), "848,40,16,1,T,100,$,16,1,T,200,$,");
  EXPECT_EQ(packet_after("848,36,28,2,5,1,1,9,0,$,"),
            "848,68,28,2,T,1,1,9,0,$,16,1,T,100,$,16,1,T,200,$,");
  EXPECT_EQ(g_packet_data.packet_code, 848);
  EXPECT_EQ(g_packet_data.total_count, 68);
  EXPECT_STREQ(vconf_cpu_data, "848,36,28,2,5,1,1,9,0,$,");
  EXPECT_EQ(wr_vconf_data, text_at(VCONFKEY_ORV_RESULT_DATA));
}

TEST_F(CpuMonitor, LogsEveryThread) {
  fed_.feed_ps(thread_line(100, "R") + thread_line(200, "S"));
  orv_start_time = 0;
  EXPECT_EQ(orv_cpu_monitor_open(), 1);
  EXPECT_EQ(orv_cpu_monitor_proc(nullptr), 1);
  EXPECT_EQ(orv_cpu_monitor_close(), 1);
  const std::string tick = std::to_string(orv_mon_cpu_info.tick_count);
  const std::string packet = "848,24,16,1," + tick + ",100,$,";
  EXPECT_THAT(
      take_messages(),
      ElementsAre("I 100      R\n     worker", "I 200      S\n     worker", "I ",
                  "I  THE ITEM SIZE : 16", "I  THE ITEM code : 1", "I  THE TICK count: " + tick,
                  "I  THE Task ID   : 100", "I  THE Task STATE: R\n", "I ", "I  THE ITEM SIZE : 16",
                  "I  THE ITEM code : 1", "I  THE TICK count: " + tick, "I  THE Task ID   : 200",
                  "I  THE Task STATE: S\n", "I end- "));
  EXPECT_THAT(take_writes(), ElementsAre("memory/orv/result_data=" + packet, "memory/orv/result=0",
                                         "memory/orv/result=0"));
  EXPECT_EQ(orv_mon_cpu_info.task_id, 200);
}

TEST_F(CpuMonitor, ListsAsManyRunningThreadsAsHaveRoom) {
  std::string listing;
  for (int id = 1000000; id < 1000100; ++id) {
    listing += thread_line(id, "R");
  }
  fed_.feed_ps(listing);
  packet_after("");
  const std::string packet = text_at(VCONFKEY_ORV_RESULT_DATA);
  const size_t list = packet.size() - std::string{"848,696,"}.size();
  const size_t items = static_cast<size_t>(std::count(packet.begin(), packet.end(), '$'));
  EXPECT_EQ(packet.substr(4, packet.find(',', 4) - 4), std::to_string(8 + 16 * items));
  EXPECT_LT(list, list_size);
  EXPECT_GE(list + list / items, list_size) << "one more would have fitted";
}

TEST_F(CpuMonitor, EndsItsTimerWithoutMemoryUntilItIsStoppedAndStarted) {
  fed_.feed_ps(thread_line(100, "R"));
  const auto has_packet = [] { return text_at(VCONFKEY_ORV_RESULT_DATA) != "(none)"; };
  start(ORV_MON_TYPE_CPU, 5);
  orv_test::refuse_memory(list_size);
  take_messages();
  EXPECT_FALSE(orv_test::run_until(has_packet, 60));
  orv_test::refuse_memory(0);
  EXPECT_THAT(take_messages(), ElementsAre("E  ERROR in Memory allocation"));
  EXPECT_THAT(take_writes(), IsEmpty());
  start(ORV_MON_TYPE_CPU, 5);
  EXPECT_FALSE(orv_test::run_until(has_packet, 60));
  stop(ORV_MON_TYPE_CPU);
  start(ORV_MON_TYPE_CPU, 5);
  EXPECT_TRUE(orv_test::run_until(has_packet));
}

}  // namespace
