#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "monitor_kinds.h"
#include "stacks.h"
#include "watch.h"
#include "watch_summary.h"

namespace {

using testing::ElementsAre;
using stack_samples = std::vector<orv_stack_sample>;

orv_item item_of(int32_t monitor, uint32_t tick_ms) {
  orv_item item{};
  item.monitor = monitor;
  item.tick_ms = tick_ms;
  item.wall_ms = 1788080707042;
  item.name = "";
  return item;
}

orv_item cpu(uint32_t tick_ms, int32_t tid) {
  orv_item item = item_of(ORV_MONITOR_CPU, tick_ms);
  item.tid = tid;
  return item;
}

orv_item heap(uint32_t tick_ms, uint32_t free_bytes) {
  orv_item item = item_of(ORV_MONITOR_HEAP, tick_ms);
  item.free_bytes = free_bytes;
  return item;
}

orv_item stack(uint32_t tick_ms, const stack_samples& stacks) {
  orv_item item = item_of(ORV_MONITOR_STACK, tick_ms);
  item.stacks = stacks.data();
  item.stack_count = stacks.size();
  return item;
}

TEST(ItemText, IsALineOrAnObjectOrRows) {
  const stack_samples stacks = {
      {5, "main", ORV_THREAD_SLEEPING, 3202482176, 3202351104, 3202486272},
      {6, "", ORV_THREAD_RUNNING, 1, 0, 0},
  };
  const std::string time = "2026-08-30T09:05:07.042Z";
  orv_item runs = cpu(12345, 77);
  runs.name = "a,\"b\n";
  const orv_item frees = heap(0, 2097152);
  const orv_item uses = stack(7, stacks);
  EXPECT_EQ(orvctl::to_line(runs), "    12.345 s  " + time + "  cpu    thread 77 (a,\"b?) runs\n");
  EXPECT_EQ(orvctl::to_line(frees), "     0.000 s  " + time + "  heap   2.0 MiB free\n");
  EXPECT_EQ(orvctl::to_line(uses),
            "     0.007 s  " + time +
                "  stack  2 threads, most stack in use by 5 (main): 4.0 KiB of 132.0 KiB\n");
  EXPECT_EQ(orvctl::to_csv(cpu(4294967291, 77)), "4294967291," + time + ",cpu,77,,running,,,,,,\n");
  EXPECT_EQ(orvctl::to_csv(runs), "12345," + time + ",cpu,77,\"a,\"\"b?\",running,,,,,,\n");
  EXPECT_EQ(orvctl::to_csv(frees), "0," + time + ",heap,,,,,,,,2097152,0\n");
  EXPECT_EQ(orvctl::to_csv(uses),
            "7," + time +
                ",stack,5,main,sleeping,3202482176,3202486272,3202351104,4096,,\n"
                "7," +
                time + ",stack,6,,running,1,0,0,,,\n");
  EXPECT_EQ(
      orvctl::to_json(uses),
      "{\"item\":\"stack\",\"tick_ms\":7,\"time\":\"" + time +
          "\",\"threads\":[{\"tid\":5,\"name\":\"main\",\"state\":\"sleeping\","
          "\"pointer\":3202482176,\"end\":3202486272,\"start\":3202351104,\"used_bytes\":4096},"
          "{\"tid\":6,\"name\":\"\",\"state\":\"running\",\"pointer\":1,\"end\":0,\"start\":0,"
          "\"used_bytes\":null}]}\n");
}

TEST(Summary, CountsAndRanks) {
  const stack_samples first = {{7, "worker\033", 2, 3000, 1000, 4000},
                               {9, "", 2, 5000, 1000, 4000}};
  const stack_samples second = {{7, "", 2, 2000, 1000, 4000}, {8, "", 2, 3999, 1000, 4000}};
  orvctl::watch_summary summary;
  for (const orv_item& item :
       {cpu(1, 7), cpu(1, 8), cpu(2, 8), heap(1, 1024), heap(2, static_cast<uint32_t>(-1024)),
        stack(1, first), stack(2, second)}) {
    summary.add(item);
  }
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

TEST(Progress, FitsTheTerminal) {
  const auto text = [](size_t columns) {
    return orvctl::progress_text(std::chrono::seconds{12}, std::chrono::seconds{30}, 345, 6789,
                                 columns);
  };
  EXPECT_EQ(text(79), "watching: 12 s of 30 s, 345 items, packet 6.6 KiB");
  EXPECT_EQ(text(48), "watching: 12 s of 30 s, 345 items");
  EXPECT_EQ(text(29), "12 s of 30 s, 345 items");
  EXPECT_EQ(text(10), "12 s of 30");
}

TEST(Threads, AreSortedAsAsked) {
  const std::vector<orv_thread> threads = {{3, "b", 10, 50}, {1, "c", 20, 100}, {2, "b", 20, 200}};
  const auto tids_by = [&threads](orvctl::sort_key key) {
    const auto list = sorted({threads.data(), threads.size(), 3}, key);
    return std::vector{list[0].tid, list[1].tid, list[2].tid};
  };
  EXPECT_THAT(tids_by(orvctl::sort_key::name), ElementsAre(2, 3, 1));
  EXPECT_THAT(tids_by(orvctl::sort_key::size), ElementsAre(1, 2, 3));
  EXPECT_THAT(tids_by(orvctl::sort_key::base), ElementsAre(3, 1, 2));
  EXPECT_THAT(tids_by(orvctl::sort_key::tid), ElementsAre(1, 2, 3));
}

}  // namespace
