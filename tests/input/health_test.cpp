// The watch over the application and the memory card.

#include <gmock/gmock.h>
#include <orv/health.h>
#include <sched.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "agent_probe.h"
#include "camera_application.h"

namespace {

namespace fs = std::filesystem;
using orv_test::camera_application;
using orv_test::take_messages;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char exists[] = "I lumen-ui-host exist ";
constexpr char cannot_list[] = "E opendir error :";

std::string first_found(pid_t pid) {
  const std::string number = std::to_string(pid);
  return "I lumen-ui-host PID = " + number + "[/proc/" + number + "/task]";
}

void write_file(const fs::path& path, const std::string& content = "") {
  fs::create_directories(path.parent_path());
  std::ofstream{path} << content;
}

// For what the agent remembers as long as its process lives: in a child of this one, whose failures
// fail the test here as well.
void in_a_new_process(const std::function<void()>& scenario) {
  orv_test::background child{[&] {
    scenario();
    fflush(nullptr);
    return testing::Test::HasFailure() ? 1 : 0;
  }};
  EXPECT_EQ(child.wait(60000), 0) << "in the child process";
}

class Health : public orv_test::AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    ASSERT_TRUE(fs::is_empty("/sdcard")) << "not in a simulated camera";
  }
  void TearDown() override {
    for (const auto& entry : fs::directory_iterator{"/sdcard"}) {
      fs::remove_all(entry);
    }
  }
};

TEST_F(Health, FollowsTheApplicationThroughItsLives) {
  in_a_new_process([] {
    EXPECT_EQ(check_failed(), -1);
    EXPECT_THAT(take_messages(), IsEmpty());
    auto application = std::make_unique<camera_application>();
    EXPECT_EQ(check_failed(), 1);
    EXPECT_THAT(take_messages(), ElementsAre(exists, first_found(application->pid())));
    EXPECT_EQ(check_failed(), 1);
    EXPECT_THAT(take_messages(), ElementsAre(exists));
    application.reset();
    EXPECT_EQ(check_failed(), -1);
    EXPECT_THAT(take_messages(), IsEmpty());
    application = std::make_unique<camera_application>();
    EXPECT_EQ(check_failed(), 1);
    EXPECT_THAT(take_messages(), ElementsAre(exists));
  });
}

TEST_F(Health, NamesEveryProcessOfTheNameAndRemembersTheFirst) {
  in_a_new_process([] {
    const camera_application first{"lumen-ui-host-2"};
    const camera_application second;
    const camera_application other{"lumen-ui-hos"};
    EXPECT_EQ(check_failed(), 1);
    EXPECT_THAT(take_messages(), ElementsAre(exists, first_found(first.pid()), exists));
  });
}

TEST_F(Health, ComparesTheCardWithItsFirstCount) {
  in_a_new_process([] {
    write_file("/sdcard/DCIM/100/SAM_0001.JPG");
    write_file("/sdcard/.hidden");
    EXPECT_EQ(check_failed(), -1) << "no application yet, but the card is counted";
    const camera_application application;
    EXPECT_EQ(check_failed(), 1);
    write_file("/sdcard/DCIM/100/SAM_0002.JPG");
    EXPECT_EQ(check_failed(), 1) << "nothing new at the top";
    write_file("/sdcard/core");
    EXPECT_EQ(check_failed(), -1);
    EXPECT_EQ(check_failed(), -1);
    fs::remove("/sdcard/core");
    EXPECT_EQ(check_failed(), 1);
    fs::remove("/sdcard/.hidden");
    EXPECT_EQ(check_failed(), 1);
    write_file("/sdcard/core");
    EXPECT_EQ(check_failed(), 1) << "as many as at first";
  });
}

TEST_F(Health, FailsWithoutACardAndCountsTheFirstThatComes) {
  in_a_new_process([] {
    const camera_application application;
    fs::rename("/sdcard", "/sdcard-away");
    EXPECT_EQ(check_failed(), -1);
    EXPECT_THAT(take_messages(), ElementsAre(exists, first_found(application.pid()), cannot_list));
    fs::rename("/sdcard-away", "/sdcard");
    write_file("/sdcard/file");
    EXPECT_EQ(check_failed(), 1);
    fs::rename("/sdcard", "/sdcard-away");
    EXPECT_EQ(check_failed(), -1);
    fs::rename("/sdcard-away", "/sdcard");
    EXPECT_EQ(check_failed(), 1);
    write_file("/sdcard/another");
    EXPECT_EQ(check_failed(), -1);
  });
}

bool enter_root(const char* root) {
  return (chroot(root) == 0 || (unshare(CLONE_NEWUSER) == 0 && chroot(root) == 0)) &&
         chdir("/") == 0;
}

// In a process whose root directory is another, so that /proc holds what the test puts there.
void with_own_root(const std::function<void()>& scenario) {
  char root[] = "/tmp/orv-root-XXXXXX";
  ASSERT_NE(mkdtemp(root), nullptr);
  in_a_new_process([&] {
    ASSERT_TRUE(enter_root(root));
    scenario();
  });
  fs::remove_all(root);
}

TEST_F(Health, TakesDigitsForProcessesAndReadsTheirFirst512Bytes) {
  const struct {
    const char* entry;
    std::string stat;
    int result;
  } rows[] = {
      {"7", "7 (lumen-ui-host) S 1 7", 1},
      {"7", "7 (LUMEN-UI-HOST) S 1 7", -1},
      {"7", "", -1},
      {"self", "7 (lumen-ui-host) S 1 7", -1},
      {"7a", "7 (lumen-ui-host) S 1 7", -1},
      {"7:", "7 (lumen-ui-host) S 1 7", -1},
      {"-7", "7 (lumen-ui-host) S 1 7", -1},
      {"0000000000000000000000000007", "7 (lumen-ui-host) S 1 7", 1},
      {"00000000000000000000000000007", "7 (lumen-ui-host) S 1 7", -1},
      {"7", std::string(499, ' ') + "lumen-ui-host", 1},
      {"7", std::string(500, ' ') + "lumen-ui-host", -1},
  };
  with_own_root([&] {
    fs::create_directory("/sdcard");
    fs::create_directories("/proc/8");       // has no stat
    fs::create_directories("/proc/9/stat");  // cannot be read
    for (const auto& row : rows) {
      SCOPED_TRACE(std::string{row.entry} + ": " + row.stat);
      write_file(fs::path{"/proc"} / row.entry / "stat", row.stat);
      EXPECT_EQ(check_failed(), row.result);
      fs::remove_all(fs::path{"/proc"} / row.entry);
    }
  });
}

TEST_F(Health, LeavesTheCardAloneWhenProcessesCannotBeListed) {
  with_own_root([] {
    write_file("/sdcard/file");
    EXPECT_EQ(check_failed(), -1);
    EXPECT_THAT(take_messages(), ElementsAre(cannot_list));
    write_file("/proc/7/stat", "7 (lumen-ui-host) S 1 7");
    write_file("/sdcard/another");
    EXPECT_EQ(check_failed(), 1) << "the card was not counted before";
  });
}

TEST(Digits, AreAllThatADigitTextHas) {
  EXPECT_EQ(IsDigit(""), 0);
  EXPECT_EQ(IsDigit("0123456789"), 0);
  for (const char* text : {"12a", "self", "-1", "1:", "\xb2"}) {
    EXPECT_EQ(IsDigit(text), -1) << text;
  }
}

}  // namespace
