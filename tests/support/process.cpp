#include "process.h"

#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <thread>

namespace orv_test {
namespace {

int decode(int status) {
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

[[noreturn]] void become(const std::vector<std::string>& words) {
  std::vector<char*> arguments;
  for (const std::string& word : words) {
    arguments.push_back(const_cast<char*>(word.c_str()));
  }
  arguments.push_back(nullptr);
  execvp(arguments[0], arguments.data());
  perror(arguments[0]);
  _exit(127);
}

std::string content(int fd) {
  std::string text;
  char piece[4096];
  lseek(fd, 0, SEEK_SET);
  for (ssize_t got = 0; (got = read(fd, piece, sizeof piece)) > 0;) {
    text.append(piece, static_cast<size_t>(got));
  }
  close(fd);
  return text;
}

}  // namespace

outcome run(const std::vector<std::string>& words) {
  const int out = memfd_create("output", 0);
  const int err = memfd_create("errors", 0);
  fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    dup2(out, STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    close(out);
    close(err);
    become(words);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return {decode(status), content(out), content(err)};
}

background::background(const std::vector<std::string>& words)
    : background{[&words]() -> int { become(words); }} {}

background::background(const std::function<int()>& body) : pid_{-1} {
  fflush(nullptr);
  pid_ = fork();
  if (pid_ == 0) {
    _exit(body());
  }
}

background::~background() {
  if (pid_ > 0) {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
}

void background::signal(int number) const {
  if (pid_ > 0) {
    kill(pid_, number);
  }
}

int background::wait(int deadline_ms) {
  int status = 0;
  if (!eventually([&] { return waitpid(pid_, &status, WNOHANG) == pid_; }, deadline_ms)) {
    return -1;
  }
  pid_ = -1;
  return decode(status);
}

std::vector<std::string> lines_of(std::istream&& from) {
  std::vector<std::string> lines;
  for (std::string line; std::getline(from, line);) {
    lines.push_back(line);
  }
  return lines;
}

long count_descriptors() {
  return std::distance(std::filesystem::directory_iterator{"/proc/self/fd"}, {});
}

bool eventually(const std::function<bool()>& condition, int deadline_ms) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds{deadline_ms};
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds{2});
  }
  return true;
}

}  // namespace orv_test
