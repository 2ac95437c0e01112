#include <gmock/gmock.h>
#include <orv/command.h>
#include <orv/meminfo.h>
#include <orv/protocol.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <string>
#include <vector>

#include "agent_probe.h"
#include "common/meminfo_text.h"
#include "emulation.h"
#include "private_mounts.h"

namespace {

using orv_test::mounted;
using testing::ElementsAre;

// Buffers, Cached, MemFree, MemTotal, Fifteen_letters, Sixteen__letters.
using figures = std::array<uint32_t, 6>;

figures parse(std::string text) {
  figures all{1, 2, 3, 4, 5, 6};
  const meminfo_row table[] = {{"Buffers", &all[0]},         {"Cached", &all[1]},
                               {"Fifteen_letters", &all[4]}, {"MemFree", &all[2]},
                               {"MemTotal", &all[3]},        {"Sixteen__letters", &all[5]}};
  orv::take_meminfo(text.data(), table, std::size(table));
  const figures once = all;
  orv::take_meminfo(text.data(), table, std::size(table));
  EXPECT_EQ(all, once) << "a text was taken twice";
  return once;
}

TEST(MeminfoText, YieldsTheWantedFieldsAndLeavesTheOthers) {
  const std::pair<const char*, figures> rows[] = {
      {"MemTotal:         503316 kB\nMemFree:  1000 kB\nBuffers:  20 kB\nCached:\t30 kB\n",
       {20, 30, 1000, 503316, 5, 6}},
      {"MemTotal:7\nSwapCached: 9 kB\nCached: 0 kB", {1, 0, 3, 7, 5, 6}},
      {"", {1, 2, 3, 4, 5, 6}},
      {"no colon in here\n\n", {1, 2, 3, 4, 5, 6}},
      {"MemFree 10 kB\nMemTotal: 11 kB\nCached: 12 kB\n", {1, 12, 3, 4, 5, 6}},  // a colon was lost
      {"MemFree:\n 5\nCached: 6\nBuffers: 7: 8\nBuffers: 9\n", {9, 2, 5, 4, 5, 6}},
      {"Mem:\nMemTotal: 4294967295 kB\n", {1, 2, 3, 4294967295, 5, 6}},
      {"Fifteen_letters: 15\nSixteen__letters: 16\nMemFree: 5 kB\n", {1, 2, 5, 4, 15, 6}},
      {"memfree: 5 kB\nMemFreeX: 6 kB\nMemFre: 7 kB\n MemFree: 8 kB\n", {1, 2, 3, 4, 5, 6}},
  };
  for (const auto& [text, expected] : rows) {
    EXPECT_EQ(parse(text), expected) << text;
  }
}

class Heap : public orv_test::AgentTest {
 protected:
  void SetUp() override {
    ORV_SKIP_WITHOUT_PRIVATE_MOUNTS();
    AgentTest::SetUp();
  }

  static std::string ask() { return orv_test::answer_of(orv_heap_handler); }

  std::string ask_with(const std::string& summary) const {
    std::ofstream{path_} << summary;
    const mounted shown{path_, "/proc/meminfo"};
    return ask();
  }

  std::string path_ = std::string{getenv("ORV_PLATFORM_ROOT")} + "/meminfo";
};

// What the handler's figures are at load is seen once a process, so first of all.
TEST_F(Heap, AnswersWithWhatItHoldsWhenTheSummaryCannotBeRead) {
  testing::internal::CaptureStderr();
  {
    const mounted no_proc{orv_test::memory_files{}, "/proc"};
    EXPECT_EQ(ask(), "1,1,0");
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Error: /proc must be mounted\n"
            "  To mount /proc at boot you need an /etc/fstab line like:\n"
            "      /proc   /proc   proc    defaults\n"
            "  In the meantime, run \"mount /proc /proc -t proc\"\n");
  EXPECT_EQ(ask_with("MemTotal: 503316 kB\n"), "1,1,515395584");
  testing::internal::CaptureStderr();
  {
    const mounted failing{"/proc/self/mem", "/proc/meminfo"};
    EXPECT_EQ(ask(), "1,1,515395584");
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "/proc/meminfo: Input/output error\n");
}

TEST_F(Heap, LogsItsFiguresAndAnswersInBytes) {
  EXPECT_EQ(ask_with("MemTotal: 503316 kB\nMemFree: 1000 kB\nBuffers: 20 kB\nCached: 3 kB\n"),
            "1,1,515395584");
  EXPECT_THAT(orv_test::take_writes(),
              ElementsAre("memory/orv/result_data=1,1,515395584", "memory/orv/result=0"));
  EXPECT_THAT(orv_test::take_messages(),
              ElementsAre("I start+ ", "I > MemTotal   = 503316 KB ", "I   MemFree    = 1000 KB ",
                          "I   Buffers    = 20 KB ", "I   Cached     = 3 KB ",
                          "I > HeapFree   = 1023 KB ", "I end- "));
  EXPECT_EQ(ask_with("MemTotal: 2097152 kB\n"), "1,1,-2147483648");
  EXPECT_EQ(ask_with("MemTotal: 4194305 kB\n"), "1,1,1024");
}

TEST_F(Heap, SeesTheFirst2047BytesAlone) {
  const auto padding = [](size_t size) { return "Pad:" + std::string(size - 5, ' ') + "\n"; };
  EXPECT_EQ(ask_with(padding(2047 - strlen("MemTotal: 12")) + "MemTotal: 123 kB\n"), "1,1,12288");
  EXPECT_EQ(ask_with(padding(2047) + "MemTotal: 9 kB\n"), "1,1,12288");
}

std::vector<uint64_t> system_calls_of_child(pid_t child) {
  std::vector<uint64_t> calls;
  int status = 0;
  waitpid(child, &status, 0);
  ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
  while (ptrace(PTRACE_SYSCALL, child, nullptr, nullptr) == 0 && waitpid(child, &status, 0) > 0 &&
         WIFSTOPPED(status)) {
    __ptrace_syscall_info info{};
    ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info);
    if (info.op == PTRACE_SYSCALL_INFO_ENTRY) {
      calls.push_back(info.entry.nr);
    }
  }
  return calls;
}

TEST(Meminfo, TakesThreeSystemCalls) {
  ORV_SKIP_WHEN_EMULATED("processes cannot be traced");
  const pid_t child = fork();
  if (child == 0) {
    uint32_t total = 0;
    const meminfo_row table[] = {{"MemTotal", &total}};
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    kill(getpid(), SIGSTOP);
    orv_meminfo(table, 1);
    syscall(SYS_getppid);  // what follows belongs to the exit
    _exit(0);
  }
  std::vector<uint64_t> calls = system_calls_of_child(child);
  calls.erase(std::find(calls.begin(), calls.end(), uint64_t{SYS_getppid}), calls.end());
  EXPECT_THAT(calls, ElementsAre(SYS_openat, SYS_read, SYS_close));
}

}  // namespace
