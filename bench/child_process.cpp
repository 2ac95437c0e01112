#include "child_process.h"

#include <dirent.h>
#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <vector>

namespace orv_bench {
namespace {

constexpr size_t stack_size = 8192;
constexpr int most_sleepers = 4000;
constexpr char application[] = "lumen-ui-host";

std::atomic<bool> named{false};

int sleep_for_ever(void* name) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (name != nullptr) {
    prctl(PR_SET_NAME, name);
    named = true;
  }
  while (true) {
    pause();
  }
}

int count_processes() {
  DIR* directory = opendir("/proc");
  int count = 0;
  while (const dirent* entry = readdir(directory)) {
    count += entry->d_name[0] >= '1' && entry->d_name[0] <= '9' ? 1 : 0;
  }
  closedir(directory);
  return count;
}

char* map_stacks() {
  void* stacks = mmap(nullptr, most_sleepers * stack_size, PROT_READ | PROT_WRITE,
                      MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (stacks == MAP_FAILED) {
    perror("orv-bench: mmap");
    exit(1);
  }
  return static_cast<char*>(stacks);
}

}  // namespace

int run_program(std::initializer_list<const char*> words) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  std::vector<const char*> arguments{words};
  arguments.push_back(nullptr);
  pid_t child = -1;
  const int error = posix_spawnp(&child, arguments[0], &actions, nullptr,
                                 const_cast<char**>(arguments.data()), environ);
  posix_spawn_file_actions_destroy(&actions);
  int status = -1;
  if (error != 0 || waitpid(child, &status, 0) != child) {
    return -1;
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// They share this process's memory: copies of it would take seconds to make.
crowd::crowd(int processes) {
  static char* const stacks = map_stacks();
  named = false;
  for (int i = count_processes(); i < processes; ++i) {
    char* const stack_end = stacks + (sleepers_.size() + 1) * stack_size;
    void* const name = sleepers_.empty() ? const_cast<char*>(application) : nullptr;
    const pid_t sleeper = clone(sleep_for_ever, stack_end, CLONE_VM | SIGCHLD, name);
    if (sleeper < 0) {
      perror("orv-bench: clone");
      exit(1);
    }
    sleepers_.push_back(sleeper);
  }
  while (!sleepers_.empty() && !named) {
    sched_yield();
  }
}

crowd::~crowd() {
  for (const pid_t sleeper : sleepers_) {
    kill(sleeper, SIGKILL);
    waitpid(sleeper, nullptr, 0);
  }
}

}  // namespace orv_bench
