#include "x_server.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <utility>

namespace orv_test {
namespace {

pid_t spawn(const std::vector<std::string>& command, int ready_fd) {
  std::vector<char*> arguments;
  for (const std::string& one : command) {
    arguments.push_back(const_cast<char*>(one.c_str()));
  }
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ready_fd, 3);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t pid = -1;
  EXPECT_EQ(posix_spawnp(&pid, arguments[0], &actions, nullptr, arguments.data(), environ), 0);
  posix_spawn_file_actions_destroy(&actions);
  return pid;
}

}  // namespace

x_server::x_server(int display, std::vector<std::string> options)
    : display_{display}, options_{std::move(options)} {
  start();
}

x_server::~x_server() {
  kill();
}

std::string x_server::name() const {
  return ":" + std::to_string(display_);
}

// The server writes its display's number once it listens, then closes the pipe, which it must find
// open until then.
void x_server::start() {
  std::vector<std::string> command{"Xvfb",      name(), "-displayfd", "3",
                                   "-screen",   "0",    "800x480x24", "-noreset",
                                   "-nolisten", "tcp",  "-nolisten",  "unix"};
  command.insert(command.end(), options_.begin(), options_.end());
  int ready[2];
  ASSERT_EQ(pipe2(ready, O_CLOEXEC), 0);
  pid_ = spawn(command, ready[1]);
  close(ready[1]);
  bool listens = false;
  for (char byte = 0; read(ready[0], &byte, 1) == 1;) {
    listens = true;
  }
  EXPECT_TRUE(listens) << "Xvfb did not start";
  close(ready[0]);
}

void x_server::kill() {
  if (pid_ > 0) {
    ::kill(pid_, SIGKILL);
    waitpid(std::exchange(pid_, -1), nullptr, 0);
  }
}

}  // namespace orv_test
