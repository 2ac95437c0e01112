// Functions that a test program or a host puts in place of the C library's and of the agent's own:
// the agent calls them by their plain names, with the whole path, in the order of its steps.

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <orv/command.h>
#include <orv/config_mode.h>
#include <orv/health.h>
#include <orv/meminfo.h>
#include <orv/stack.h>
#include <stdarg.h>
#include <string.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "agent_probe.h"

namespace {

// Off, the replacements only hand their calls on.
bool replaced = false;
std::vector<std::string> calls;

std::vector<std::string> listing;  // of every directory
size_t listed = 0;
bool everything_exists = true;
int shell_error = 0;
std::vector<thread_stack_info> sampled;

void note(const std::string& call) {
  if (replaced) {
    calls.push_back(call);
  }
}

std::string inherited(FILE* file) {
  return (fcntl(fileno(file), F_GETFD) & FD_CLOEXEC) != 0 ? "" : " inherited";
}

}  // namespace

// The linker gives these their names, and looks for them from shared libraries as well.
#pragma GCC visibility push(default)
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

int __real_access(const char* path, int mode);
int __wrap_access(const char* path, int mode) {
  note("access " + std::string{path} + " " + std::to_string(mode));
  return !replaced ? __real_access(path, mode) : everything_exists ? 0 : -1;
}

int __real_open(const char* path, int flags, ...);
int __wrap_open(const char* path, int flags, ...) {
  note("open " + std::string{path} + ((flags & O_CLOEXEC) != 0 ? "" : " inherited"));
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return __real_open(path, flags, mode);
}

FILE* __real_fopen(const char* path, const char* mode);
FILE* __wrap_fopen(const char* path, const char* mode) {
  note("fopen " + std::string{path} + " " + mode);
  return __real_fopen(path, mode);
}

int __real_fclose(FILE* file);
int __wrap_fclose(FILE* file) {
  note("fclose" + inherited(file));
  return __real_fclose(file);
}

DIR* __real_opendir(const char* path);
DIR* __wrap_opendir(const char* path) {
  note("opendir " + std::string{path});
  listed = 0;
  return replaced ? reinterpret_cast<DIR*>(&listed) : __real_opendir(path);
}

dirent* __real_readdir(DIR* directory);
dirent* __wrap_readdir(DIR* directory) {
  static dirent entry;
  if (!replaced) {
    return __real_readdir(directory);
  }
  if (listed == listing.size()) {
    return nullptr;
  }
  const std::string& name = listing[listed++];
  entry.d_name[name.copy(entry.d_name, sizeof entry.d_name - 1)] = '\0';
  return &entry;
}

int __real_closedir(DIR* directory);
int __wrap_closedir(DIR* directory) {
  note("closedir");
  return replaced ? 0 : __real_closedir(directory);
}

int __real_system(const char* command);
int __wrap_system(const char* command) {
  note("system " + std::string{command});
  errno = shell_error;
  return replaced ? 0 : __real_system(command);
}

FILE* __real_popen(const char* command, const char* mode);
FILE* __wrap_popen(const char* command, const char* mode) {
  note("popen " + std::string{command} + " " + mode);
  return __real_popen(replaced ? "echo bee00000-bee21000" : command, mode);
}

int __real_pclose(FILE* pipe);
int __wrap_pclose(FILE* pipe) {
  note("pclose" + inherited(pipe));
  return __real_pclose(pipe);
}

int32_t __real_orv_get_stack_info(thread_stack_info* records);
int32_t __wrap_orv_get_stack_info(thread_stack_info* records) {
  std::copy(sampled.begin(), sampled.end(), records);
  return static_cast<int32_t>(sampled.size());
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
#pragma GCC visibility pop

namespace {

using testing::ElementsAre;
namespace fs = std::filesystem;

constexpr char lister_file[] = "/tmp/stackmon";
constexpr char lister[] = "system ps -eLo pid,tid,pcpu,esp,comm,state > /tmp/stackmon";
constexpr char stack_command[] = "popen cat /proc/1/task/7/maps | grep stack | awk '{print $ 1}' r";

class ReplacedCalls : public orv_test::AgentTest {
 protected:
  void SetUp() override {
    if (sizeof(void*) == 4) {
      GTEST_SKIP() << "functions that take or give file sizes have other names";
    }
    AgentTest::SetUp();
    fs::remove_all(lister_file);
  }
  void TearDown() override { fs::remove_all(lister_file); }

  template <class Work>
  static std::vector<std::string> calls_of(Work work) {
    replaced = true;
    work();
    replaced = false;
    return std::exchange(calls, {});
  }
};

TEST_F(ReplacedCalls, OfTheLivenessCheckSeeEveryNameThatFits) {
  const std::string longest(28, 'p');
  listing = {".", "..", "self", longest, longest + "p", "7"};
  EXPECT_THAT(calls_of(check_failed),
              ElementsAre("opendir /proc", "access /proc/self/stat 0",
                          "access /proc/" + longest + "/stat 0", "access /proc/7/stat 0",
                          "open /proc/7/stat", "closedir", "opendir /sdcard", "closedir"));
  everything_exists = false;
  listing = {"7"};
  EXPECT_THAT(calls_of(check_failed), ElementsAre("opendir /proc", "access /proc/7/stat 0",
                                                  "closedir", "opendir /sdcard", "closedir"));
  everything_exists = true;
}

TEST_F(ReplacedCalls, OfTheReadersOpenForReadingAlone) {
  std::ofstream{"/sdcard/orv.conf"} << "normal\n";
  EXPECT_THAT(calls_of([] { EXPECT_EQ(orv_check_config_mode(nullptr), 1); }),
              ElementsAre("access /sdcard/orv.conf 4", "fopen /sdcard/orv.conf r", "fclose"));
  fs::remove("/sdcard/orv.conf");
  EXPECT_THAT(calls_of([] { orv_meminfo(nullptr, 0); }), ElementsAre("open /proc/meminfo"));
}

std::vector<std::string> sample(int32_t expected) {
  replaced = true;
  EXPECT_EQ(__real_orv_get_stack_info(result_stack_info), expected);
  replaced = false;
  return std::exchange(calls, {});
}

TEST_F(ReplacedCalls, OfTheSamplerTakeAListingThatAFormerWriterLeft) {
  std::ofstream{lister_file} << "1 7 0.0 bef01234 worker S\n";
  for (int i = 0; i < 2; ++i) {
    EXPECT_THAT(sample(1),
                ElementsAre(lister, "open /tmp/stackmon", stack_command, "pclose", "fclose"));
    EXPECT_EQ(result_stack_info[0].stack_size, 0x21000U);
  }
  shell_error = EAGAIN;
  EXPECT_THAT(sample(0), ElementsAre(lister)) << "no shell, so no listing of now";
  shell_error = 0;
}

TEST_F(ReplacedCalls, OfTheSamplerRunTheListerWithoutAFile) {
  fs::create_directory(lister_file);
  EXPECT_THAT(sample(0), ElementsAre("open /tmp/stackmon", lister));
  EXPECT_TRUE(fs::is_directory(lister_file));
}

TEST_F(ReplacedCalls, OfTheStackQueryMayNotKnowAStackPointer) {
  sampled = {{1, 7, 16, 48, 32, 0, "", "none", "S"}, {1, 8, 16, 48, 32, 40, "", "some", "S"}};
  EXPECT_EQ(orv_test::answer_of(orv_stack_handler), "523,2,8,some,32,16,$,");
  const auto messages = orv_test::take_messages();
  EXPECT_THAT(messages, testing::IsSupersetOf({"I TASK NAME:    none", "I TASK NAME:    some"}));
}

}  // namespace
