#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <string>

#include "maps_line.h"
#include "task_row.h"
#include "task_stat.h"
#include "thread_stack.h"

using namespace orv::camera;

namespace {

std::string printed(const std::function<void(FILE*)>& print) {
  char* text = nullptr;
  std::size_t size = 0;
  FILE* out = open_memstream(&text, &size);
  print(out);
  fclose(out);
  std::string result{text, size};
  free(text);
  return result;
}

std::string reprinted(std::string_view line, std::optional<std::uint64_t> stack_address) {
  auto mapping = parse_mapping(line);
  if (!mapping) return "malformed";
  mapping->name = name_for_thread(*mapping, stack_address);
  return printed([&](FILE* out) { print_mapping(out, *mapping); });
}

}  // namespace

TEST(SyscallLine, GivesTheStackPointerInEachOfItsForms) {
  const struct {
    const char* line;
    std::optional<std::uint64_t> stack_pointer;
  } rows[] = {
      {"0 0x3 0x7fc7a13e0000 0x20000 0x1 0xffffffff 0x0 0x7fff060dd2c8 0x7fc7a155a2ad\n",
       0x7fff060dd2c8},
      {"-1 0xbefff8d0 0xb6e41c2c\n", 0xbefff8d0},
      {"-1 0x0 0x0\n", 0},
      {"0 0x0 0x0 0x0 0x0 0x0 0x0 0x0 0x0", 0},
      {"running\n", std::nullopt},
      {"7 0x1 0x2 0xbefff8d0\n", std::nullopt},
      {"-1 befff8d0 0xb6e41c2c\n", std::nullopt},
      {"-1 0xbefff8dg 0xb6e41c2c\n", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    EXPECT_EQ(parse_stack_pointer(row.line), row.stack_pointer);
  }
}

TEST(TaskStat, TakesTheNameBetweenTheOutermostParentheses) {
  const std::string fields =
      " R 1 1 1 0 -1 4194304 98 0 0 0 250 50 0 0 20 0 1 0 91611 3133440 416 4294967295 9 10 "
      "140725180782224 0 0";
  const std::string line = "42 (a) S 1 (b c)" + fields;
  const auto stat = parse_task_stat(line);
  ASSERT_TRUE(stat);
  EXPECT_EQ(stat->comm, "a) S 1 (b c");
  EXPECT_EQ(stat->state, 'R');
  EXPECT_EQ(stat->cpu_ticks, 300);
  EXPECT_EQ(stat->start_ticks, 91611);
  EXPECT_EQ(stat->start_stack, 140725180782224);

  for (const char* malformed : {"", "42 (a S 1", "42 a) R(", "42 (a) R 1 1 1 0 -1 4194304"}) {
    SCOPED_TRACE(malformed);
    EXPECT_FALSE(parse_task_stat(malformed));
  }
}

TEST(MapsLine, ComesOutAsOnA32BitCameraWithOnlyItsOwnThreadsStackMarked) {
  const std::uint64_t inside = 0x7f820d48a010;
  const struct {
    const char* line;
    const char* shown;
  } rows[] = {
      {"7f820d488000-7f820dc88000 rw-p 00000000 00:00 0 \n",
       "0d488000-0dc88000 rw-p 00000000 00:00 0          [stack]\n"},
      {"7f820d480000-7f820d48a010 ---p 00000000 00:00 0 \n",
       "0d480000-0d48a010 ---p 00000000 00:00 0 \n"},
      {"7f820d48a010-7f820e488000 rw-p 00000000 00:00 0      [anon: pool]\n",
       "0d48a010-0e488000 rw-p 00000000 00:00 0          [stack]\n"},
      {"7fffd11dd000-7fffd11fe000 rw-p 00000000 00:00 0                          [stack]\n",
       "d11dd000-d11fe000 rw-p 00000000 00:00 0 \n"},
      {"7fffd11d0000-7fffd11dd000 rw-p 00000000 00:00 0    [anon: glibc: pthread stack: 7]\n",
       "d11d0000-d11dd000 rw-p 00000000 00:00 0 \n"},
      {"fffffe000-100002000 r-xp 1c000000000 fe:00 332835            /opt/my stack (deleted)\n",
       "ffffe000-00002000 r-xp 1c000000000 fe:00 332835  /opt/my stack (deleted)\n"},
      {"00010000-00012000 r-xp 00000000 b3:02 1547       /bin/cat",
       "00010000-00012000 r-xp 00000000 b3:02 1547       /bin/cat\n"},
      {"7f820d488000 rw-p 00000000 00:00 0\n", "malformed"},
      {"7f820d488000-7f820dc88000 rw-p 00000000\n", "malformed"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    EXPECT_EQ(reprinted(row.line, inside), row.shown);
  }
  EXPECT_EQ(reprinted(rows[3].line, std::nullopt), rows[3].shown);
}

TEST(MapsPath, IsOneOfAProcessOrOfAThreadAndNothingElse) {
  EXPECT_FALSE(parse_maps_path("/proc/12/maps")->tid);
  EXPECT_EQ(parse_maps_path("/proc/12/task/34/maps")->tid, "34");
  for (const char* other : {"/proc//maps", "/proc/12/maps2", "/proc/12/task//maps", "maps", "-",
                            "/proc/12/task/34/../../maps", "/proc/uptime", "proc/12/maps"}) {
    SCOPED_TRACE(other);
    EXPECT_FALSE(parse_maps_path(other));
  }
}

TEST(Row, StandsInTheOrdinaryColumns) {
  const clock_reading clock{10'000, 100};
  const auto row = [&](const task_stat& stat) {
    return printed([&](FILE* out) { print_row(out, 5, 42, 4343, 0xbeff01, stat, clock); });
  };
  EXPECT_EQ(printed([](FILE* out) { print_header(out, 5); }),
            "  PID   TID %CPU      ESP COMMAND         S\n");
  EXPECT_EQ(row({"lumen-ui-host", 'S', 0, 9'000, 0}),
            "   42  4343  0.0 00beff01 lumen-ui-host   S\n");
  EXPECT_EQ(row({"a\nb c", 'R', 999, 9'000, 0}), "   42  4343 99.9 00beff01 a?b c           R\n");
  EXPECT_EQ(row({"sh", 'Z', 1'500, 9'000, 0}), "   42  4343  150 00beff01 sh <defunct>    Z\n");
  EXPECT_EQ(row({"kworker/R-events_power", 'I', 5, 10'000, 0}),
            "   42  4343  0.0 00beff01 kworker/R-event I\n");
}

TEST(StackPointerColumn, IsZeroOnlyForAThreadWithoutAStack) {
  EXPECT_EQ(esp_column(0x7fff060dd2c8, 0), 0x060dd2c8U);
  EXPECT_EQ(esp_column(0x7fff00000000, 0), 1U);
  EXPECT_EQ(esp_column(std::nullopt, 0x7ffd5928b010), 0x5928b010U);
  EXPECT_EQ(esp_column(0, 0x7ffd5928b010), 0U);
  EXPECT_EQ(esp_column(std::nullopt, 0), 0U);
}
