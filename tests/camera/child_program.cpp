#include "child_program.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace {

constexpr int ready_fd = 3;
constexpr int patience_ms = 10'000;

[[noreturn]] void become(const std::vector<std::string>& arguments, int ready, int errors) {
  std::vector<char*> argv;
  argv.reserve(arguments.size() + 1);
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  dup2(errors, STDERR_FILENO);
  dup2(ready, ready_fd);
  if (ready == ready_fd) fcntl(ready_fd, F_SETFD, 0);
  execvp(argv[0], argv.data());
  _exit(127);
}

std::string read_line(int fd) {
  std::string line;
  char next = 0;
  while (read(fd, &next, 1) == 1 && next != '\n') line += next;
  return line;
}

}  // namespace

child_program::child_program(const std::vector<std::string>& arguments)
    : errors_fd_(memfd_create("errors", MFD_CLOEXEC)) {
  int ready[2];
  if (pipe2(ready, O_CLOEXEC) != 0) return;
  pid_ = fork();
  if (pid_ == 0) become(arguments, ready[1], errors_fd_);
  close(ready[1]);
  first_line_ = read_line(ready[0]);
  close(ready[0]);
}

child_program::~child_program() {
  close(errors_fd_);
  if (ended_ || pid_ < 0) return;
  kill(pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
}

int child_program::exit_status() {
  const int handle = static_cast<int>(syscall(SYS_pidfd_open, pid_, 0));
  pollfd end{handle, POLLIN, 0};
  const bool in_time = poll(&end, 1, patience_ms) == 1;
  close(handle);
  int status = 0;
  if (!in_time || waitpid(pid_, &status, 0) != pid_) return -1;
  ended_ = true;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string child_program::errors() const {
  char text[4096];
  const ssize_t length = pread(errors_fd_, text, sizeof text, 0);
  return {text, length > 0 ? static_cast<std::size_t>(length) : 0};
}
