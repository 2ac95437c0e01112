// The agent in its host, driven from outside as a test tool does it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <orv/protocol.h>
#include <signal.h>
#include <stdlib.h>
#include <vconf.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <string>
#include <thread>

#include "emulation.h"
#include "keys.h"
#include "process.h"

namespace {

using orv_test::background;
using orv_test::eventually;
using orv_test::number_at;
using orv_test::outcome;
using orv_test::run;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

constexpr char identity[] = "CSC,Q7,LUMEN-ONE,EVT2,LUMEN-ONE_1.04.2_20260830,240,RELEASE,0";

// orv-host on the test's root.
class Camera : public testing::Test {
 protected:
  void SetUp() override {
    host_ = std::make_unique<background>(std::vector<std::string>{"orv-host"});
    // The agent's start resets the keys, so a command that comes too early is lost.
    ASSERT_TRUE(eventually([] {
      return run({"orvctl", "--timeout", "0.1", "target"}).status == 0;
    }));
  }

  void TearDown() override {
    if (host_) {
      end_host();
    }
  }

  void end_host() {
    host_->signal(SIGTERM);
    EXPECT_EQ(host_->wait(), 0);
    host_.reset();
  }

  std::unique_ptr<background> host_;
};

int one_line(const outcome& told) {
  return static_cast<int>(std::count(told.err.begin(), told.err.end(), '\n'));
}

TEST_F(Camera, AnswersEachOfManyCommandsOnce) {
  const orv_test::key_counter answers{VCONFKEY_ORV_RESULT};
  for (int i = 1; i <= 1000; ++i) {
    vconf_set_int(VCONFKEY_ORV_COMMAND, ORV_COMMAND_TARGET_INFO);
    ASSERT_TRUE(answers.reaches(i) && answers.seen() == i) << i;
  }
}

TEST_F(Camera, TellsItsIdentity) {
  const outcome table = run({"orvctl", "target"});
  EXPECT_THAT(table.out, HasSubstr("firmware    LUMEN-ONE_1.04.2_20260830\n"));
  EXPECT_THAT(run({"orvctl", "target", "--json"}).out, HasSubstr("\"byte_order\": 240"));
  EXPECT_EQ(run({"orvctl", "send", "0x208", "1", "-2", "0x3", "4", "--data", "x"}).out,
            std::string{"result 0\ndata   "} + identity + "\n");
}

TEST_F(Camera, IsSilentOnCodesWithoutAHandler) {
  for (const char* code : {"heartbeat", "0x999", "0"}) {
    SCOPED_TRACE(code);
    vconf_set_int(VCONFKEY_ORV_RESULT, 7);
    const outcome told = run({"orvctl", "--timeout", "0.1", "send", code});
    EXPECT_EQ(told.status, 3);
    EXPECT_EQ(one_line(told), 1) << told.err;
    EXPECT_THAT(told.err, HasSubstr("waited for memory/orv/result"));
    EXPECT_EQ(number_at(VCONFKEY_ORV_RESULT), 7);
    EXPECT_EQ(run({"orvctl", "target"}).status, 0) << "not well afterwards";
  }
}

TEST_F(Camera, LateAnswersAreNotTakenForNewOnes) {
  host_->signal(SIGSTOP);
  EXPECT_EQ(run({"orvctl", "--timeout", "0.1", "send", "0x208"}).status, 3);
  EXPECT_EQ(run({"orvctl", "--timeout", "0.1", "send", "0x208"}).status, 4);
  host_->signal(SIGCONT);
  // Nothing answers this code: whatever comes now is late.
  const outcome told = run({"orvctl", "--timeout", "0.3", "send", "0x999"});
  EXPECT_EQ(told.status, 3) << told.out;
}

TEST_F(Camera, TakesItsLogReaderWithIt) {
  ORV_SKIP_WHEN_EMULATED("a process cannot become the reaper of its descendants");
  const auto log_readers = [] { return run({"pgrep", "-x", "dlogutil"}).out; };
  EXPECT_TRUE(eventually([&] { return !log_readers().empty(); }));
  end_host();
  EXPECT_EQ(log_readers(), "");
}

TEST_F(Camera, LeavesNoLogReaderWhenItIsKilled) {
  end_host();
  background pipeline{{"sh", "-c", "orv-host | tail -n 1 >/dev/null"}};
  const auto pids_of = [](const char* name) { return run({"pgrep", "-x", name}).out; };
  ASSERT_TRUE(eventually([&] { return !pids_of("dlogutil").empty(); }));
  run({"pkill", "-KILL", "-x", "orv-host"});
  EXPECT_EQ(pipeline.wait(2000), 0) << "its output is still open";
  EXPECT_TRUE(eventually([&] { return pids_of("dlogutil").empty(); }));
}

// This camera has no display.
TEST_F(Camera, TellsWhatAFailedInjectionMayMean) {
  const std::pair<std::vector<std::string>, std::vector<std::string>> rows[] = {
      {{"orvctl", "key", "tap", "KEY_MENU"}, {"tap KEY_MENU"}},
      {{"orvctl", "touch", "tap", "400", "240"}, {"press 400,240", "release 400,240"}},
      {{"orvctl", "swipe", "100", "240", "700", "250"}, {"press 100,240", "release 700,250"}},
  };
  for (const auto& [words, injections] : rows) {
    SCOPED_TRACE(injections.front());
    const outcome told = run(words);
    EXPECT_EQ(told.status, 1);
    EXPECT_EQ(told.out, "");
    EXPECT_EQ(one_line(told), static_cast<int>(injections.size())) << told.err;
    for (const std::string& injection : injections) {
      EXPECT_THAT(told.err, HasSubstr("orvctl: " + injection + ": the agent answered -1: "));
    }
    EXPECT_THAT(told.err,
                AllOf(HasSubstr("application is gone"), HasSubstr("/sdcard has more"),
                      HasSubstr("display is out of reach"), HasSubstr("earlier failure")));
  }
  EXPECT_EQ(number_at(VCONFKEY_ORV_COMMAND_PARAM3), 700);
  EXPECT_EQ(number_at(VCONFKEY_ORV_COMMAND_PARAM4), 250);
}

// What the store carried last is what the agent was told last.
TEST_F(Camera, LiftsTheFingerWheneverTheToolIsInterrupted) {
  const std::vector<std::string> touches[] = {
      {"sh", "-c", "exec orvctl swipe 1 2 3 4 2>/dev/null"},
      {"sh", "-c", "exec orvctl touch tap 1 2 2>/dev/null"}};
  const auto start = std::chrono::steady_clock::now();
  ASSERT_EQ(run(touches[0]).status, 1) << "there is no display";
  const std::chrono::duration<double> usual = std::chrono::steady_clock::now() - start;
  const auto seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random{seed};
  std::uniform_real_distribution<double> moment{0, 1.2};
  int interrupted = 0;
  for (int round = 0; round < 100; ++round) {
    background touch{touches[round % 2]};
    std::this_thread::sleep_for(usual * moment(random));
    const int number = round % 4 < 2 ? SIGINT : SIGTERM;
    touch.signal(number);
    const int status = touch.wait();
    EXPECT_THAT(status, testing::AnyOf(1, 128 + number));
    interrupted += status == 128 + number ? 1 : 0;
    ASSERT_EQ(number_at(VCONFKEY_ORV_COMMAND_PARAM2), ORV_RELEASE) << "round " << round;
  }
  EXPECT_GT(interrupted, 10);
}

TEST_F(Camera, IsReachedByAnyOfItsNames) {
  const std::string root = getenv("ORV_PLATFORM_ROOT");
  const std::string address = "ORV_CAMERA=store:" + root;
  const std::vector<std::string> rows[] = {
      {"orvctl", "target", "--store", root},
      {"orvctl", "target", "-c", "store:" + root},
      {"env", "ORV_PLATFORM_ROOT=/nonexistent", address, "orvctl", "target"},
      {"env", "ORV_CAMERA=store:/nonexistent", "orvctl", "--store", root, "target"},
  };
  for (const std::vector<std::string>& words : rows) {
    SCOPED_TRACE(words[2]);
    EXPECT_EQ(run(words).status, 0);
  }
  const outcome lost = run({"env", "ORV_CAMERA=store:/nonexistent", "orvctl", "target"});
  EXPECT_EQ(lost.status, 4);
  EXPECT_THAT(lost.err, HasSubstr("store /nonexistent: No such file or directory; is a host"));
}

TEST_F(Camera, ShowsItsLogUntilItIsStopped) {
  run({"orvctl", "--timeout", "0.1", "send", "0x999"});
  EXPECT_TRUE(eventually([] {
    return run({"orvctl", "log", "--dump"}).out.find("command(0x999) not found!") !=
           std::string::npos;
  }));
  background log{{"orvctl", "log"}};
  const auto log_readers = [&log] {
    return run({"pgrep", "-x", "-P", std::to_string(log.pid()), "dlogutil"}).out;
  };
  ASSERT_TRUE(eventually([&] { return !log_readers().empty(); }));
  const std::string reader = log_readers();
  log.signal(SIGTERM);
  EXPECT_EQ(log.wait(), 128 + SIGTERM);
  EXPECT_EQ(kill(std::stoi(reader), 0), -1) << "its reader goes on";
  EXPECT_EQ(run({"sh", "-c", "orvctl log | head -n 1 >/dev/null"}).status, 0);
}

TEST_F(Camera, TellsThatItsOutputIsLost) {
  const char* const rows[] = {"target",
                              "stack --json",
                              "touch press 1 1; orvctl heap",
                              "send target_info",
                              "log --dump",
                              "key --list",
                              "monitor start heap",
                              "monitor watch --for 100ms",
                              "monitor watch heap --for 1100ms --csv /dev/full",
                              "--help",
                              "key tap --help"};
  for (const char* const words : rows) {
    SCOPED_TRACE(words);
    const outcome told = run({"sh", "-c", std::string{"exec >/dev/full; orvctl "} + words});
    EXPECT_EQ(told.status, 5);
    EXPECT_THAT(told.err, HasSubstr(": No space left on device; output is lost\n"));
  }
  EXPECT_EQ(run({"sh", "-c", "orvctl target >&-"}).status, 5);
  // A pipe whose reader has gone.
  const outcome told =
      run({"sh", "-c",
           "mkfifo /tmp/gone; exec 3<>/tmp/gone >/tmp/gone; exec 3>&-; rm /tmp/gone;"
           "orvctl target"});
  EXPECT_EQ(told.status, 128 + SIGPIPE) << told.err;
}

TEST(Tool, Helps) {
  EXPECT_EQ(run({"orvctl", "help"}).out, run({"orvctl", "--help"}).out);
  const outcome told = run({"orvctl", "help", "monitor", "watch"});
  EXPECT_EQ(told.status, 0) << told.err;
  EXPECT_THAT(told.out, AllOf(HasSubstr("orvctl monitor watch [OPTIONS]"), HasSubstr("--csv")));
  EXPECT_THAT(run({"orvctl", "--version"}).out,
              testing::MatchesRegex("orvctl [0-9.]+ \\(liborv-client [0-9.]+\\)\n"));
}

TEST(Tool, ListsTheCamerasKeys) {
  EXPECT_THAT(run({"orvctl", "key", "--list"}).out, testing::ContainsRegex("\nKEY_MENU +135\n"));
}

TEST_F(Camera, TellsWhatHasCertainlyNotRun) {
  const std::pair<std::vector<std::string>, const char*> rows[] = {
      {{"orvctl", "target", "--store", "/nonexistent"}, "/nonexistent: No such file"},
      {{"orvctl", "target", "--store", "/etc/passwd"}, "is not a directory"},
      {{"orvctl", "monitor", "watch", "--csv", "/nonexistent/items"}, "/items: No such file"},
      {{"sh", "-c", "PATH=/nonexistent exec $(command -v orvctl) log --dump"}, "log's reader"},
  };
  for (const auto& [words, message] : rows) {
    SCOPED_TRACE(message);
    const outcome told = run(words);
    EXPECT_EQ(told.status, 4);
    EXPECT_THAT(told.err, HasSubstr(message));
    EXPECT_EQ(one_line(told), 1) << told.err;
  }
  EXPECT_FALSE(std::filesystem::exists("/nonexistent"));
}

TEST(Tool, TellsWrongUsageInOneLine) {
  const std::pair<std::vector<std::string>, const char*> rows[] = {
      {{"orvctl"}, "subcommand"},
      {{"orvctl", "nonsense"}, "nonsense"},
      {{"orvctl", "send"}, "CODE is required"},
      {{"orvctl", "send", "heartbaet"}, "no command \"heartbaet\""},
      {{"orvctl", "send", "0x1ffffffff"}, "no command"},
      {{"orvctl", "send", "1", "2", "3", "4", "5", "6"}, "At Most 4"},
      {{"orvctl", "send", "1", "x"}, "no 32-bit number"},
      {{"orvctl", "key", "tap", "KEY_MNEU"}, "no key \"KEY_MNEU\"; the nearest is KEY_MENU"},
      {{"orvctl", "key", "press", "sw"}, "\"sw\" may be KEY_SW1, KEY_SW2"},
      {{"orvctl", "key", "release", "zzzz"}, "orvctl key --list names them all"},
      {{"orvctl", "key", "hold", "MENU"}, "no \"hold\"; did you mean \"press\"?"},
      {{"orvctl", "touch", "tap", "400"}, "Y is required"},
      {{"orvctl", "touch", "tap", "400", "32768"}, "Y: "},
      {{"orvctl", "target", "--timeout", "-1"}, "--timeout: "},
      {{"orvctl", "target", "--timeout", "nan"}, "--timeout: "},
      {{"orvctl", "target", "--timeout", "inf"}, "--timeout: "},
      {{"orvctl", "target", "--store", ""}, "--store: the text is empty"},
      {{"orvctl", "--camera", "", "target"}, "--camera: the text is empty"},
      {{"orvctl", "monitor", "watch", "--csv", ""}, "--csv: the text is empty"},
      {{"orvctl", "help", "nonsense"}, "nonsense"},
      {{"orvctl", "target", "--camera", "/nonexistent"}, "/nonexistent"},
      {{"orvctl", "target", "-c", "nowhere:x"}, "nowhere"},
      {{"orvctl", "target", "-c", "store:x", "--store", "x"}, "excludes"},
  };
  vconf_set_int(VCONFKEY_ORV_COMMAND, 7);
  for (const auto& [words, message] : rows) {
    SCOPED_TRACE(message);
    const outcome told = run(words);
    EXPECT_EQ(told.status, 2);
    EXPECT_THAT(told.err, StartsWith("orvctl: "));
    EXPECT_THAT(told.err, HasSubstr(message));
    EXPECT_EQ(one_line(told), 1) << told.err;
  }
  EXPECT_EQ(number_at(VCONFKEY_ORV_COMMAND), 7) << "a command was written";
}

TEST(Host, TellsWhyItCannotStart) {
  const outcome homeless = run({"env", "ORV_PLATFORM_ROOT=/nonexistent/root", "orv-host"});
  EXPECT_EQ(homeless.status, 1);
  EXPECT_THAT(homeless.err, HasSubstr("/nonexistent/root: No such file or directory; is the"));
  const outcome missing = run({"orv-host", "--library", "/nonexistent.so"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_THAT(missing.err, HasSubstr("/nonexistent.so: cannot open"));
  EXPECT_EQ(one_line(missing), 1);
  const outcome foreign = run({"orv-host", "--library", "libc.so.6"});
  EXPECT_EQ(foreign.status, 1);
  EXPECT_THAT(foreign.err, HasSubstr("undefined symbol: orv_init_handler"));
  EXPECT_EQ(run({"orv-host", "surplus"}).status, 2);
}

}  // namespace
