#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "shell.h"

using namespace std::string_literals;

TEST(PassThrough, IsTheOrdinaryPsForOtherArguments) {
  EXPECT_EQ(run_in_camera("ps -p $$ -o comm=").out, "sh\n");
}

TEST(PassThrough, IsTheOrdinaryCatForOtherFilesByteForByte) {
  const auto result =
      run_in_camera("printf 'a\\0\\377\\n' | cat /proc/sys/kernel/ostype - /dev/null");
  EXPECT_EQ(result.out, "Linux\na\0\xff\n"s);
  // This process waits meanwhile, its maps stay.
  const char* mixed = "[ \"$(cat /proc/$PPID/maps /dev/null)\" = \"$(dd if=/proc/$PPID/maps)\" ]";
  EXPECT_EQ(run_in_camera(std::string{mixed} + " 2>/dev/null").status, 0);
}

TEST(PassThrough, FindsTheOrdinaryProgramBehindAnyNumberOfCopies) {
  std::string directory = testing::TempDir() + "copyXXXXXX";
  ASSERT_NE(mkdtemp(directory.data()), nullptr);
  std::filesystem::copy(ORV_CAMERA_TOOLS "/cat", directory);
  setenv("COPY", directory.c_str(), 1);
  for (const char* path : {"$COPY:$PATH", "${PATH%%:*}:$COPY:$PATH"}) {
    SCOPED_TRACE(path);
    const auto result = run_in_camera(std::string{"PATH="} + path + " timeout 10 cat /dev/null");
    EXPECT_EQ(result.status, 0);
  }
  std::filesystem::remove_all(directory);
}

TEST(PassThrough, SaysThatThereIsNoOtherProgram) {
  const auto result = run_in_camera("PATH='" ORV_CAMERA_TOOLS "' ps -A 2>&1");
  EXPECT_EQ(result.out, "ps: no other ps in PATH\n");
  EXPECT_EQ(result.status, 127);
}

TEST(Output, IsNotLostSilently) {
  EXPECT_EQ(run_in_camera("ps -eLo pid,tid,pcpu,esp,comm,state 2>&1 >/dev/full").out,
            "ps: write error: No space left on device\n");
  const auto maps = run_in_camera("cat /proc/$$/maps /proc/0/maps 2>&1 >/dev/full");
  EXPECT_EQ(maps.out,
            "cat: /proc/0/maps: No such file or directory\n"
            "cat: write error: No space left on device\n");
  EXPECT_EQ(maps.status, 1);
}
