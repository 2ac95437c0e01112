#include "serving_process.h"

#include <errno.h>
#include <signal.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <new>
#include <thread>

namespace orv_bench {
namespace {

constexpr char role_option[] = "--serve";
constexpr auto start_deadline = std::chrono::seconds{10};

[[noreturn]] void give_up(const char* what) {
  perror(what);
  exit(1);
}

shared_counters* map_counters(int fd) {
  void* memory = mmap(nullptr, sizeof(shared_counters), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  if (memory == MAP_FAILED) {
    give_up("orv-bench: mmap");
  }
  return static_cast<shared_counters*>(memory);
}

// In a group of its own: an agent starts a log reader, which outlives it.
pid_t start(const char* const* arguments) {
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
  pid_t child = -1;
  const int error = posix_spawn(&child, "/proc/self/exe", nullptr, &attributes,
                                const_cast<char**>(arguments), environ);
  posix_spawnattr_destroy(&attributes);
  if (error != 0) {
    errno = error;
    give_up("orv-bench: posix_spawn");
  }
  return child;
}

}  // namespace

serving_process::serving_process(const std::string& role, const std::string& argument)
    : counters_{nullptr}, pid_{-1} {
  const int fd = memfd_create("orv-bench", 0);
  if (fd < 0 || ftruncate(fd, sizeof(shared_counters)) != 0) {
    give_up("orv-bench: memfd_create");
  }
  counters_ = new (map_counters(fd)) shared_counters{};
  const std::string fd_text = std::to_string(fd);
  const char* arguments[] = {"orv-bench",     role_option,      role.c_str(),
                             fd_text.c_str(), argument.c_str(), nullptr};
  pid_ = start(arguments);
  close(fd);
  const auto deadline = std::chrono::steady_clock::now() + start_deadline;
  while (counters_->ready == 0) {
    if (std::chrono::steady_clock::now() > deadline) {
      fprintf(stderr, "orv-bench: the serving process (%s) did not start\n", role.c_str());
      exit(1);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds{1});
  }
}

serving_process::~serving_process() {
  kill(-pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
  munmap(counters_, sizeof *counters_);
}

void serve_if_asked(int argc, char** argv) {
  if (argc != 5 || strcmp(argv[1], role_option) != 0) {
    return;
  }
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  const std::string role = argv[2];
  const int fd = static_cast<int>(strtol(argv[3], nullptr, 10));
  shared_counters& counters = *map_counters(fd);
  close(fd);
  if (role == "agent") {
    serve_agent(counters);
  } else if (role == "store") {
    serve_bare_store(counters);
  } else {
    serve_echo(counters, argv[4]);
  }
  exit(0);
}

}  // namespace orv_bench
