// The application on a real X server, seen by another client of it.

#include <gtest/gtest.h>  // first: X.h has macros that break it

#include <filesystem>
#include <fstream>

#include "process.h"
#include "screen_reader.h"
#include "x_server.h"

namespace {

constexpr unsigned long amber_rgb = 0xffb828;

constexpr char told_file[] = "/tmp/application-told";

// What the application has written: that it is ready, and its errors.
std::string told() {
  std::ifstream file{told_file};
  return std::string{std::istreambuf_iterator{file}, {}};
}

// The words of a shell that becomes the application.
std::vector<std::string> words(const std::string& options, const std::string& environment = "") {
  return {"sh", "-c",
          "exec env " + environment + " lumen-ui-host --ready-fd 3 " + options + " 3>&2"};
}

// Ready when it is made.
class application : public orv_test::background {
 public:
  explicit application(const std::string& options = "", const std::string& environment = "")
      : background{words(options + " 2>" + told_file, environment)} {
    EXPECT_TRUE(comes_true([] { return told() == "ready\n"; }));
  }
  application(const application&) = delete;
  application& operator=(const application&) = delete;
  ~application() { std::filesystem::remove(told_file); }
};

class Application : public testing::Test {
 protected:
  screen_reader reader_;
  application started_;
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

TEST(ApplicationStart, ShowsKeysThatAreHeldAlready) {
  const screen_reader reader;
  reader.key(134, true);
  const application started;
  EXPECT_EQ(reader.input_text(), "events 0\nkey none\nheld KEY_SW2\ntouch none\n");
  reader.key(134, false);
}

// The second process that holds the thread in its wait must not pass for the application.
TEST(ApplicationThreads, HangingOneEndsWithTheApplicationAndIsNoSecondOne) {
  const auto processes_like = [](const std::string& text) {
    return std::stoi(orv_test::run({"pgrep", "-c", text}).out);
  };
  {
    const application started{"--hang-thread lumen-ui-host-n"};
    EXPECT_TRUE(comes_true([&] { return processes_like("hang-partner") == 1; }));
    EXPECT_EQ(processes_like("lumen-ui-host"), 1);
  }
  EXPECT_TRUE(comes_true([&] { return processes_like("hang-partner") == 0; }));
}

TEST(ApplicationEnd, IsOneLineWhenTheServerGoes) {
  orv_test::x_server server{7};
  application started{"", "DISPLAY=:7"};
  server.kill();
  EXPECT_EQ(started.wait(), 1);
  EXPECT_EQ(told(), "ready\nlumen-ui-host: lost the X server :7\n");
}

TEST(ApplicationEnd, ComesInTimeAndAtOnceForWrongUseAndForNoServer) {
  const struct {
    std::vector<std::string> command;
    int status;
    const char* told;
  } rows[] = {
      {words("--exit-after 0.2"), 0, "ready\n"},
      {words("--hang-thread AeMian"), 2,
       "lumen-ui-host: --hang-thread: no thread is called AeMian (see --help)\n"},
      {words("", "DISPLAY=:4711"), 1, "lumen-ui-host: no X server answers at the display :4711\n"},
  };
  for (const auto& row : rows) {
    const auto ended = orv_test::run(row.command);
    EXPECT_EQ(ended.status, row.status);
    EXPECT_EQ(ended.err, row.told);
  }
}

}  // namespace
