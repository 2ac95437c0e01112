// Watching the monitors, with the agent in its host and other tools beside.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <orv/protocol.h>
#include <signal.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "fed_host.h"
#include "keys.h"
#include "main_loop.h"
#include "packet_check.h"
#include "process.h"

namespace {

using orv_test::background;
using orv_test::eventually;
using orv_test::outcome;
using orv_test::run;
using orv_test::text_of;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;
namespace fs = std::filesystem;

std::vector<std::string> lines_of(const fs::path& path) {
  return orv_test::lines_of(std::ifstream{path});
}

// With numbered threads. The query for their names runs `ps` as well, and then `cat` for each line.
class Watch : public testing::Test {
 protected:
  void SetUp() override {
    host_.number_threads();
    host_.write_program("cat", "echo >>" + named());
    host_.start();
  }

  [[nodiscard]] std::string shown() const { return host_.file("shown"); }
  [[nodiscard]] std::string named() const { return host_.file("named"); }

  // The thread ids in the CSV file ascend, and all that are not there went into queries for names.
  void expect_each_thread_once() const {
    const outcome rows = run(
        {"awk", "-F,",
         "NR > 1 { if ($4 <= last) { print; exit 1 } last = $4 } END { print NR - 1 }", shown()});
    ASSERT_EQ(rows.status, 0) << rows.out;
    EXPECT_EQ(std::stoul(rows.out) + lines_of(named()).size(),
              std::stoul(lines_of(host_.file("serial")).at(0)));
  }

  orv_test::fed_host host_;
};

// Asks until it is killed; with a status that is none of these, ends.
int ask_forever(const std::vector<std::string>& words, const std::vector<int>& statuses,
                const std::string& counter) {
  for (int times = 1;; ++times) {
    const outcome told = run(words);
    if (std::find(statuses.begin(), statuses.end(), told.status) == statuses.end()) {
      fputs(told.err.c_str(), stderr);
      return 1;
    }
    std::ofstream{counter} << times;
  }
}

TEST_F(Watch, LosesNoItemAndShowsNoneTwiceWhileOthersCommandAndAsk) {
  background watch{{"orvctl", "monitor", "watch", "cpu", "--interval", "1", "--csv", shown()}};
  ASSERT_TRUE(eventually([this] { return fs::exists(shown()); }));
  const std::string queries = host_.file("queries");
  const std::string keys = host_.file("keys");
  background asking{[&] { return ask_forever({"orvctl", "target"}, {0}, queries); }};
  // The answer is -1. A tick may have written its 0 before the tool gets to read, which it tells.
  background tapping{[&] {
    return ask_forever({"orvctl", "send", "event", "0", "1", "--data", "no such key"}, {1, 3},
                       keys);
  }};
  // More than a packet can hold: 22 characters an item there, 56 here.
  EXPECT_TRUE(eventually([&] { return fs::file_size(shown()) > uintmax_t{4500} * 56; }, 120000));
  EXPECT_EQ(asking.wait(0), -1) << "a query was not answered";
  EXPECT_EQ(tapping.wait(0), -1) << "a key was not answered";
  EXPECT_TRUE(fs::exists(queries) && fs::exists(keys));
  asking.signal(SIGKILL);
  tapping.signal(SIGKILL);
  watch.signal(SIGINT);
  EXPECT_EQ(watch.wait(10000), 128 + SIGINT);
  expect_each_thread_once();
}

long resident_kib(pid_t process) {
  return std::stol(run({"ps", "-o", "rss=", "-p", std::to_string(process)}).out);
}

TEST_F(Watch, RunsAllMonitorsBesideKeysAndQueriesInSteadyMemory) {
#if defined(__SANITIZE_ADDRESS__) || defined(ORV_EMULATED)
  GTEST_SKIP() << "instrumented: processes start too slowly, and take memory of their own";
#endif
  background watch{
      {"sh", "-c", "exec orvctl monitor watch --interval 50 --for 12s --json >" + shown()}};
  const std::string queries = host_.file("queries");
  const std::string keys = host_.file("keys");
  background asking{[&] {
    return ask_forever({"orvctl", "--timeout", "30", "heap"}, {0}, queries);
  }};
  background tapping{[&] {  // there is no display
    return ask_forever({"orvctl", "--timeout", "30", "key", "tap", "KEY_MENU"}, {1, 3}, keys);
  }};
  ASSERT_TRUE(eventually([this] { return lines_of(shown()).size() > 1000; }, 60000));
  const long resident = resident_kib(host_.pid());
  EXPECT_EQ(watch.wait(60000), 0);
  EXPECT_EQ(asking.wait(0), -1) << "a query was not answered";
  EXPECT_EQ(tapping.wait(0), -1) << "a key was not answered";
  EXPECT_TRUE(fs::exists(queries) && fs::exists(keys));
  asking.signal(SIGKILL);
  tapping.signal(SIGKILL);
  run({"pkill", "-KILL", "-x", "orvctl"});  // the next test's would wait for theirs
  EXPECT_LT(resident_kib(host_.pid()), resident + 300);
  const auto shown_of = [this](const std::string& kind) {
    return std::stoi(run({"grep", "-c", "\"item\":\"" + kind + "\"", shown()}).out);
  };
  EXPECT_GT(shown_of("cpu"), 1000);
  EXPECT_GE(shown_of("heap"), 2);
  EXPECT_GE(shown_of("stack"), 2);
}

TEST_F(Watch, SumsUpAndLeavesNoMonitorRunning) {
  ASSERT_EQ(run({"orvctl", "monitor", "start", "cpu", "--interval", "5"}).status, 0);
  const outcome told = run({"orvctl", "monitor", "watch", "heap", "--for", "2500ms", "--json"});
  EXPECT_EQ(told.status, 0) << told.err;
  EXPECT_EQ(told.err, "");
  EXPECT_THAT(told.out, MatchesRegex("(\\{\"item\":\"heap\"[^\n]*\n){2}"
                                     "\\{\"summary\":\\{\"items\":2,[^\n]*\n"));
  const outcome rows = run({"orvctl", "monitor", "watch", "heap", "--for", "1500ms", "--csv", "-"});
  EXPECT_THAT(rows.out, MatchesRegex("tick_ms,time,item,[^\n]*\n[0-9]+,20[^\n]*Z,heap,[^\n]*\n"));
  EXPECT_THAT(rows.err, StartsWith("1 items\nfree memory: "));
  // The CPU monitor that ran before is gone as well.
  const std::string packet = text_of(VCONFKEY_ORV_RESULT_DATA);
  EXPECT_EQ(orv_test::packet_fault(packet), "");
  EXPECT_FALSE(
      orv_test::run_until([&] { return text_of(VCONFKEY_ORV_RESULT_DATA) != packet; }, 100));
}

TEST_F(Watch, HasTheMonitorsToItself) {
  background watch{{"orvctl", "monitor", "watch", "cpu", "--interval", "20", "--csv", shown()}};
  ASSERT_TRUE(eventually([this] { return lines_of(shown()).size() > 1; }));
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"orvctl", "monitor", "start", "heap"},
        {"orvctl", "send", "monitor", "1", "0"},
        {"orvctl", "--timeout", "0.1", "monitor", "watch", "heap"}}) {
    const outcome told = run(words);
    EXPECT_EQ(told.status, 4) << told.out;
    EXPECT_THAT(told.err, HasSubstr("another orvctl watches the monitors"));
  }
  EXPECT_EQ(run({"orvctl", "stack"}).status, 0);
  watch.signal(SIGKILL);
  watch.wait();
  // The next one takes over from the monitor that was left running.
  const outcome told = run({"orvctl", "monitor", "watch", "heap", "--for", "100ms", "--json"});
  EXPECT_EQ(told.status, 0) << told.err;
  EXPECT_THAT(told.out, StartsWith("{\"summary\":{\"items\":0,"));
}

TEST_F(Watch, KeepsWhatItHadWhenTheHostIsKilled) {
  background watch{{"sh", "-c",
                    "orvctl --timeout 0.2 monitor watch cpu --interval 20 >" + shown() + " 2>" +
                        shown() + ".err"}};
  ASSERT_TRUE(eventually([this] { return lines_of(shown()).size() > 1; }));
  host_.kill();
  EXPECT_EQ(watch.wait(10000), 3);
  const auto errors = lines_of(shown() + ".err");
  ASSERT_EQ(errors.size(), 1U);
  EXPECT_THAT(errors[0], StartsWith("orvctl: no answer in 0.2 s"));
  EXPECT_THAT(errors[0], testing::EndsWith("; is a host running?"));
  const auto lines = lines_of(shown());
  EXPECT_THAT(lines[0], HasSubstr("Z  cpu    thread 31 "));
  EXPECT_THAT(lines, testing::Contains("seen running, times by thread:"));
}

TEST_F(Watch, GoesOnWhenTheAgentIsStartedAnew) {
  background watch{
      {"sh", "-c",
       "exec orvctl monitor watch cpu --interval 20 --csv " + shown() + " 2>" + shown() + ".err"}};
  ASSERT_TRUE(eventually([this] { return lines_of(shown()).size() > 1; }));
  host_.kill();
  host_.start();
  const size_t before = lines_of(shown()).size();
  EXPECT_TRUE(eventually([&] { return lines_of(shown()).size() > before; }, 10000));
  watch.signal(SIGTERM);
  EXPECT_EQ(watch.wait(10000), 128 + SIGTERM);
  EXPECT_EQ(lines_of(shown() + ".err").size(), 1U)
      << "what the agent's start wiped may have held more";
}

TEST_F(Watch, EndsByTheSignalThatCutsItShort) {
  const auto started = [this](const char* duration) {
    fs::remove(shown());
    return std::vector<std::string>{
        "sh", "-c",
        std::string{"exec orvctl monitor watch cpu --interval 20 "} + duration + " >" + shown()};
  };
  for (const char* const duration : {"--for 30s", ""}) {
    SCOPED_TRACE(duration);
    background watch{started(duration)};
    ASSERT_TRUE(eventually([this] { return !lines_of(shown()).empty(); }));
    watch.signal(SIGINT);
    EXPECT_EQ(watch.wait(10000), 128 + SIGINT);
    EXPECT_THAT(lines_of(shown()), testing::Contains("seen running, times by thread:"));
  }
  background watch{started("--for 30s")};
  ASSERT_TRUE(eventually([this] { return !lines_of(shown()).empty(); }));
  kill(host_.pid(), SIGSTOP);
  watch.signal(SIGTERM);
  EXPECT_EQ(watch.wait(300), -1) << "the monitors were not stopped";
  watch.signal(SIGTERM);
  EXPECT_EQ(watch.wait(500), 128 + SIGTERM);
  kill(host_.pid(), SIGCONT);
}

TEST_F(Watch, EndsWithItsReader) {
  background watch{{"sh", "-c", "orvctl monitor watch cpu --interval 20 | head -n 1 >/dev/null"}};
  EXPECT_EQ(watch.wait(10000), 0);
  EXPECT_TRUE(eventually([] { return run({"pgrep", "-x", "orvctl"}).status == 1; }));
  EXPECT_EQ(run({"orvctl", "monitor", "stop", "cpu"}).status, 1) << "the application is not there";
}

}  // namespace
