#include <dlog.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "process.h"
#include "ring.h"

namespace {

using orv_test::background;
using orv_test::eventually;
using testing::HasSubstr;

std::vector<std::string> dump(const std::vector<std::string>& tags) {
  std::vector<std::string> words = {"dlogutil", "-d"};
  words.insert(words.end(), tags.begin(), tags.end());
  return orv_test::lines_of(std::istringstream{orv_test::run(words).out});
}

TEST(Log, PrintsTheWantedTagsOldestFirst) {
  __dlog_print(3, DLOG_INFO, "ONE", "%s and %d\n", "text", 1);
  __dlog_print(3, DLOG_ERROR, "TWO", "no newline");
  __dlog_print(3, DLOG_INFO, "OTHER", "not wanted");
  const auto lines = dump({"ONE", "TWO"});
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_THAT(lines[0], HasSubstr(" I/ONE: text and 1"));
  EXPECT_THAT(lines[1], HasSubstr(" E/TWO: no newline"));
  EXPECT_THAT(lines[0], HasSubstr(" " + std::to_string(getpid()) + " "));
}

TEST(Log, KeepsALongRecordToItsBound) {
  EXPECT_EQ(__dlog_print(3, DLOG_INFO, "LONG", "%s", std::string(9000, 'x').c_str()), 4000);
  const auto lines = dump({"LONG"});
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_TRUE(lines[0].ends_with(" I/LONG: " + std::string(4000, 'x')));
}

// Tells its own length and letter, so that a mixture of two records shows.
std::string numbered(int number) {
  return std::to_string(number) + ":" +
         std::string(static_cast<size_t>(number % 300), static_cast<char>('a' + number % 26)) + ".";
}

void print_numbered(const char* tag, int number) {
  __dlog_print(3, DLOG_INFO, tag, "%s", numbered(number).c_str());
}

bool is_whole(const std::string& line) {
  const size_t start = line.rfind(": ") + 2;
  const long number = strtol(line.c_str() + start, nullptr, 10);
  return line.substr(start) == numbered(static_cast<int>(number));
}

TEST(Log, LosesNothingOfSeveralWritersWhileItHasRoom) {
  constexpr int each = 500;
  const auto write_all = [] {
    std::thread other{[] {
      for (int i = 0; i < each; ++i) {
        print_numbered("MANY", i);
      }
    }};
    for (int i = each; i < 2 * each; ++i) {
      print_numbered("MANY", i);
    }
    other.join();
    return 0;
  };
  background one{write_all};
  background two{write_all};
  EXPECT_EQ(one.wait(), 0);
  EXPECT_EQ(two.wait(), 0);
  const auto lines = dump({"MANY"});
  EXPECT_EQ(lines.size(), 4U * each);
  for (const auto& line : lines) {
    EXPECT_TRUE(is_whole(line)) << line;
  }
}

TEST(Log, ShowsOnlyWholeRecordsOfKilledAndOvertakenWriters) {
  const auto write_for_ever = [] {
    for (int i = 0; true; ++i) {
      print_numbered("HAMMER", i % 100'000);
    }
    return 0;
  };
  background steady{write_for_ever};
  int shown = 0;
  for (int round = 0; round < 15; ++round) {
    const background killed{write_for_ever};
    for (const auto& line : dump({"HAMMER"})) {
      ASSERT_TRUE(is_whole(line)) << line;
      ++shown;
    }
  }
  EXPECT_GT(shown, 1000);
  struct stat status {};
  ASSERT_EQ(stat((std::string{getenv("ORV_PLATFORM_ROOT")} + "/dlog").c_str(), &status), 0);
  EXPECT_LE(status.st_blocks * 512, static_cast<blkcnt_t>(dlog::ring_size + 8192));
}

TEST(Log, IsFollowedUntilTheReaderIsStopped) {
  const std::string file = std::string{getenv("ORV_PLATFORM_ROOT")} + "/followed";
  background reader{{"sh", "-c", "exec dlogutil FOLLOWED > " + file}};
  const auto shown = [&] { return orv_test::run({"cat", file}).out; };
  for (const std::string& text : {std::string{"first"}, std::string{"second"}}) {
    __dlog_print(3, DLOG_INFO, "FOLLOWED", "%s", text.c_str());
    EXPECT_TRUE(eventually([&] { return shown().find(text) != std::string::npos; })) << text;
  }
  reader.signal(SIGTERM);
  EXPECT_EQ(reader.wait(), 128 + SIGTERM);
}

TEST(Log, IsNoLongerFollowedOnceItsHostsIdIsReused) {
  background reader{{"env", "ORV_HOST_PID=" + std::to_string(getpid()) + " 1", "dlogutil", "NONE"}};
  EXPECT_EQ(reader.wait(1000), 0);
}

}  // namespace
