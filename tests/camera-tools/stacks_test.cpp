// The programs against the kernel's own view of this process's threads.
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <future>
#include <map>
#include <sstream>
#include <string>
#include <thread>

#include "emulation.h"
#include "mapping.h"
#include "shell.h"

namespace {

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

}  // namespace

TEST(Stacks, OfThreadsThatRunAreShownWithAnAddressInTheirOwnStack) {
  ORV_SKIP_WHEN_EMULATED("the kernel sees the emulator's stacks");
  prctl(PR_SET_PTRACER, PR_SET_PTRACER_ANY);  // where a child may not look at its parent
  std::atomic<bool> is_ending = false;
  const auto spin = [&is_ending] {
    while (!is_ending) continue;
  };
  std::map<pid_t, std::uint64_t> frames;
  std::promise<void> started;
  std::thread spinning{[&] {
    frames[gettid()] = own_frame();
    started.set_value();
    spin();
  }};
  started.get_future().wait();
  // Its one thread is a first one, and its stack a copy of ours.
  const orv_test::background process{[&] {
    alarm(60);  // its end, should the test not come to kill it
    spin();
    return 0;
  }};
  frames[process.pid()] = own_frame();
  auto listed = listed_threads();
  for (const auto& [tid, frame] : frames) {
    const auto stack = orv_test::mapping_of("/proc/self/maps", frame).value();
    EXPECT_LT(listed[tid].esp - static_cast<std::uint32_t>(stack.start), stack.end - stack.start);
    EXPECT_TRUE(listed[tid].name_and_state.ends_with(" R"));
  }
  is_ending = true;
  spinning.join();
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
