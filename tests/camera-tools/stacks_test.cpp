// The programs against the kernel's own view of this process's threads.
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <fstream>
#include <functional>
#include <future>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "emulation.h"
#include "shell.h"

namespace {

struct range {
  std::uint64_t start;
  std::uint64_t end;

  bool holds(std::uint64_t address) const { return start <= address && address < end; }
  std::string in_8_digits() const {
    std::array<char, 32> text{};
    snprintf(text.data(), text.size(), "%08x-%08x\n", static_cast<std::uint32_t>(start),
             static_cast<std::uint32_t>(end));
    return text.data();
  }
};

range mapping_that_holds(std::uint64_t address) {
  std::ifstream maps{"/proc/self/maps"};
  range found{};
  for (std::string line; std::getline(maps, line);) {
    char hyphen = 0;
    std::istringstream{line} >> std::hex >> found.start >> hyphen >> found.end;
    if (found.holds(address)) return found;
  }
  return {};
}

std::uint64_t own_frame() {
  return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
}

struct shown_thread {
  std::uint32_t esp;
  std::string name_and_state;
};

std::map<pid_t, shown_thread> listed_threads() {
  std::istringstream listing{run_in_camera("ps -eLo pid,tid,pcpu,esp,comm,state").out};
  std::map<pid_t, shown_thread> threads;
  std::string line;
  std::getline(listing, line);
  while (std::getline(listing, line)) {
    std::istringstream text{line};
    pid_t pid = 0, tid = 0;
    std::string cpu;
    shown_thread shown{};
    text >> pid >> tid >> cpu >> std::hex >> shown.esp;
    std::getline(text >> std::ws, shown.name_and_state);
    threads[tid] = shown;
  }
  return threads;
}

// Two threads that wait and two that never do, beside the first one.
class Stacks : public testing::Test {
 protected:
  void SetUp() override {
    ORV_SKIP_WHEN_EMULATED("the kernel sees the emulator's stacks");
    prctl(PR_SET_PTRACER, PR_SET_PTRACER_ANY);  // where a child may not look at its parent
    for (int i = 0; i < 2; ++i) {
      waiting_.push_back(start([this] { is_ending_.wait(false); }));
      spinning_.push_back(start([this] { spin(); }));
    }
  }

  void TearDown() override {
    is_ending_ = true;
    is_ending_.notify_all();
    for (auto& thread : threads_) thread.join();
  }

  void spin() {
    while (!is_ending_) continue;
  }

  pid_t start(const std::function<void()>& work) {
    std::promise<pid_t> tid;
    threads_.emplace_back([this, &tid, work] {
      const pid_t own = gettid();
      frames_[own] = own_frame();
      tid.set_value(own);
      work();
    });
    return tid.get_future().get();
  }

  std::map<pid_t, std::uint64_t> frames_{{getpid(), own_frame()}};
  std::vector<pid_t> waiting_, spinning_;
  std::vector<std::thread> threads_;
  std::atomic<bool> is_ending_ = false;
};

std::map<pid_t, shown_thread> listed_when_waiting(const std::vector<pid_t>& tids) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds{20};
  auto listed = listed_threads();
  const auto waits = [&](pid_t tid) { return listed[tid].name_and_state.ends_with(" S"); };
  while (!std::all_of(tids.begin(), tids.end(), waits)) {
    if (std::chrono::steady_clock::now() > deadline) return {};
    listed = listed_threads();
  }
  return listed;
}

}  // namespace

TEST_F(Stacks, OfThreadsThatWaitAreShownWithTheRealStackPointer) {
  const auto listed = listed_when_waiting(waiting_);
  ASSERT_FALSE(listed.empty());
  for (const pid_t tid : waiting_) {
    // The thread waits some calls below the frame that it told of.
    const auto frame = static_cast<std::uint32_t>(frames_[tid]);
    EXPECT_LT(frame - listed.at(tid).esp, 0x4000U);
  }
}

TEST_F(Stacks, OfThreadsThatRunAreShownWithAnAddressInTheirOwnStack) {
  const pid_t process = fork();  // its one thread is a first one, and its stack a copy of ours
  if (process == 0) {
    alarm(60);  // its end, should the test not come to kill it
    spin();
    _exit(0);
  }
  ASSERT_GT(process, 0);
  spinning_.push_back(process);
  frames_[process] = own_frame();
  const auto listed = listed_threads();
  kill(process, SIGKILL);
  waitpid(process, nullptr, 0);
  for (const pid_t tid : spinning_) {
    const range stack = mapping_that_holds(frames_[tid]);
    EXPECT_LT(listed.at(tid).esp - static_cast<std::uint32_t>(stack.start),
              stack.end - stack.start);
    EXPECT_TRUE(listed.at(tid).name_and_state.ends_with(" R"));
  }
}

TEST_F(Stacks, AreTheOnlyMarkedMappingInTheirThreadsMapsFile) {
  for (const auto& [tid, frame] : frames_) {
    SCOPED_TRACE(tid);
    const std::string maps =
        "/proc/" + std::to_string(getpid()) + "/task/" + std::to_string(tid) + "/maps";
    const auto marked = run_in_camera("cat " + maps + " | grep stack | awk '{print $ 1}'");
    EXPECT_EQ(marked.out, mapping_that_holds(frame).in_8_digits());
  }
}

TEST(Listing, ShowsDeadProcessesWithoutAStackAndItselfWithOne) {
  ORV_SKIP_WHEN_EMULATED("the kernel knows this process by the emulator's name");
  const pid_t dead = fork();
  if (dead == 0) _exit(0);
  siginfo_t ended;
  waitid(P_PID, static_cast<id_t>(dead), &ended, WEXITED | WNOWAIT);
  const auto listed = listed_threads();
  waitpid(dead, nullptr, 0);
  EXPECT_EQ(listed.at(dead).esp, 0);
  EXPECT_EQ(listed.at(dead).name_and_state, "camera_tools_te Z");
  const auto is_lister = [](const auto& row) {
    return row.second.name_and_state == "ps              R" && row.second.esp != 0;
  };
  EXPECT_EQ(std::count_if(listed.begin(), listed.end(), is_lister), 1);
}
