// The application on a real X server, seen by another client of it.

#include <gtest/gtest.h>  // first: X.h has macros that break it

#include <filesystem>
#include <fstream>
#include <set>

#include "child_program.h"
#include "emulation.h"
#include "screen_reader.h"

namespace {

constexpr unsigned long amber_rgb = 0xffb828;

std::vector<std::string> application(std::vector<std::string> options = {}) {
  options.insert(options.begin(), {"lumen-ui-host", "--ready-fd", "3"});
  return options;
}

class Application : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(started_.first_line(), "ready"); }

  screen_reader reader_;
  child_program started_{application()};
};

TEST_F(Application, TellsEachKeyByNameAsItGoesDownAndUp) {
  EXPECT_EQ(reader_.input_text(), "events 0\nkey none\nheld\ntouch none\n");
  reader_.key(135, true);
  EXPECT_EQ(awaited_input(reader_, "events 1\nkey KEY_MENU down\nheld KEY_MENU\ntouch none\n"),
            "events 1\nkey KEY_MENU down\nheld KEY_MENU\ntouch none\n");
  reader_.key(211, true);
  reader_.key(135, false);
  const std::string both = "events 3\nkey KEY_MENU up\nheld VK_CAPTURE_END\ntouch none\n";
  EXPECT_EQ(awaited_input(reader_, both), both);
  reader_.key(211, false);
}

TEST_F(Application, TakesInEveryKeyOfAFastBurst) {
  for (int tap = 0; tap < 500; tap++) {
    reader_.key(tap % 2 == 0 ? 80 : 88, true);
    reader_.key(tap % 2 == 0 ? 80 : 88, false);
  }
  const std::string all = "events 1000\nkey KEY_DOWN up\nheld\ntouch none\n";
  EXPECT_EQ(awaited_input(reader_, all), all);
}

TEST_F(Application, ReceivesKeysThatAnotherClientHasGrabbed) {
  const screen_reader rival;
  rival.grab_keyboard();
  reader_.key(104, true);
  reader_.key(104, false);
  const std::string seen = "events 2\nkey KEY_OK up\nheld\ntouch none\n";
  EXPECT_EQ(awaited_input(reader_, seen), seen);
}

// The rival sees the server repeat the key, the application must not take that for presses.
TEST_F(Application, CountsAKeyHeldDownOnce) {
  const screen_reader rival;
  rival.grab_keyboard();
  reader_.key(80, true);
  int presses = 0;
  EXPECT_TRUE(comes_true([&] { return (presses += rival.take_key_presses()) >= 3; }));
  reader_.key(80, false);
  const std::string once = "events 2\nkey KEY_UP up\nheld\ntouch none\n";
  EXPECT_EQ(awaited_input(reader_, once), once);
}

TEST_F(Application, FollowsATouchFromPressToRelease) {
  reader_.touch_at(300, 330, true);
  reader_.move_to(500, 330);
  const std::string dragging = "events 2\nkey none\nheld\ntouch down 300,330 500,330\n";
  EXPECT_EQ(awaited_input(reader_, dragging), dragging);
  reader_.touch_at(520, 330, false);
  const std::string done = "events 4\nkey none\nheld\ntouch up 300,330 520,330\n";
  EXPECT_EQ(awaited_input(reader_, done), done);
  EXPECT_TRUE(comes_true([&] { return reader_.pixel(400, 330) == amber_rgb; })) << "no trail";
}

TEST_F(Application, LightsAKeyWhileItIsHeld) {
  constexpr int x = 200, y = 77;  // in the list of keys, beside the newest one's name
  const unsigned long dark = reader_.pixel(x, y);
  reader_.key(133, true);
  EXPECT_TRUE(comes_true([&] { return reader_.pixel(x, y) == amber_rgb; }));
  reader_.key(133, false);
  EXPECT_TRUE(comes_true([&] { return reader_.pixel(x, y) != amber_rgb; }));
  EXPECT_NE(reader_.pixel(x, y), dark) << "the last key is no longer listed";
}

TEST_F(Application, MovesItsClockBySeconds) {
  const auto clock_row = [&] {
    std::set<std::pair<int, unsigned long>> row;
    for (int x = 350; x < 450; x++) row.emplace(x, reader_.pixel(x, 24));
    return row;
  };
  const auto first = clock_row();
  EXPECT_TRUE(comes_true([&] { return clock_row() != first; }));
}

TEST(ApplicationStart, ShowsKeysThatAreHeldAlready) {
  const screen_reader reader;
  reader.key(134, true);
  const child_program started{application()};
  EXPECT_EQ(reader.input_text(), "events 0\nkey none\nheld KEY_SW2\ntouch none\n");
  reader.key(134, false);
}

struct seen_thread {
  std::string name;
  char state;
};

std::vector<seen_thread> threads_of(int pid) {
  std::vector<seen_thread> threads;
  for (const auto& task :
       std::filesystem::directory_iterator("/proc/" + std::to_string(pid) + "/task")) {
    std::string line;
    std::getline(std::ifstream{task.path() / "stat"}, line);
    const auto open = line.find('('), close = line.rfind(')');
    threads.push_back({line.substr(open + 1, close - open - 1), line[close + 2]});
  }
  return threads;
}

TEST(ApplicationThreads, WaitOrRunExceptTheOneToldToHang) {
  ORV_SKIP_WHEN_EMULATED("no wait is uninterruptible, and the emulator has a thread of its own");
  const child_program started{application({"--hang-thread", "Shutter Assert "})};
  const auto hanging = [&] {
    std::string names;
    for (const auto& [name, state] : threads_of(started.pid()))
      if (state != 'R' && state != 'S') names += name + ":" + state + ";";
    return names;
  };
  EXPECT_TRUE(comes_true([&] { return hanging() == "Shutter Assert :D;"; })) << hanging();
  EXPECT_EQ(threads_of(started.pid()).size(), 55U);
}

// The second process that holds the thread in its wait must not pass for the application.
TEST(ApplicationThreads, HangingOneEndsWithTheApplicationAndIsNoSecondOne) {
  const auto processes_like = [](const std::string& text) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
      std::string name;
      std::getline(std::ifstream{entry.path() / "comm"}, name);
      if (name.find(text) != std::string::npos) count++;
    }
    return count;
  };
  {
    const child_program started{application({"--hang-thread", "lumen-ui-host-n"})};
    EXPECT_TRUE(comes_true([&] { return processes_like("hang-partner") == 1; }));
    EXPECT_EQ(processes_like("lumen-ui-host"), 1);
  }
  EXPECT_TRUE(comes_true([&] { return processes_like("hang-partner") == 0; }));
}

TEST(ApplicationEnd, ComesAfterTheGivenTime) {
  child_program started{application({"--exit-after", "0.2"})};
  EXPECT_EQ(started.first_line(), "ready");
  EXPECT_EQ(started.exit_status(), 0);
}

TEST(ApplicationEnd, IsOneLineWhenTheServerGoes) {
  auto server = std::make_unique<child_program>(
      std::vector<std::string>{"Xvfb", "-displayfd", "3", "-noreset", "-nolisten", "unix"});
  const std::string display = ":" + server->first_line();
  child_program started{{"env", "DISPLAY=" + display, "lumen-ui-host", "--ready-fd", "3"}};
  ASSERT_EQ(started.first_line(), "ready");
  server.reset();
  EXPECT_EQ(started.exit_status(), 1);
  EXPECT_EQ(started.errors(), "lumen-ui-host: lost the X server " + display + "\n");
}

TEST(ApplicationEnd, IsOneLineForWrongUseAndForNoServer) {
  child_program misnamed{application({"--hang-thread", "AeMian"})};
  EXPECT_EQ(misnamed.exit_status(), 2);
  EXPECT_EQ(misnamed.errors(),
            "lumen-ui-host: --hang-thread: no thread is called AeMian (see --help)\n");
  child_program blind{{"env", "DISPLAY=:4711", "lumen-ui-host"}};
  EXPECT_EQ(blind.exit_status(), 1);
  EXPECT_EQ(blind.errors(), "lumen-ui-host: no X server answers at the display :4711\n");
}

}  // namespace
