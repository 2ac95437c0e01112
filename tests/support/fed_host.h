// orv-host with a `ps` that the test writes: what its samplers see.
#ifndef ORV_TESTS_SUPPORT_FED_HOST_H
#define ORV_TESTS_SUPPORT_FED_HOST_H

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "process.h"

namespace orv_test {

class fed_host {
 public:
  static constexpr int threads_a_tick = 30;

  // Files of the test's own, removed at the next test's begin.
  fed_host() {
    std::filesystem::remove_all(directory_);
    std::filesystem::create_directories(directory_ / "bin");
  }

  // Every line has a thread id of its own: 1, 2, 3 and so on, all running.
  void number_threads() const {
    std::ofstream{file("serial")} << "0\n";
    write_program("ps", "cd " + directory_.string() + "\nread n <serial\nend=$((n + " +
                            std::to_string(threads_a_tick) +
                            "))\nwhile [ $n -lt $end ]; do n=$((n + 1)); "
                            "echo \"1 $n 0.0 bef01234 w R\"; done\necho $n >serial");
  }
  // These lines, as "1 7 0.0 bef01234 worker R".
  void list_threads(const std::string& lines) const {
    std::ofstream{file("threads.new")} << lines;
    std::filesystem::rename(file("threads.new"), file("threads"));
    write_program("ps", "exec cat " + file("threads"));
  }

  // One that the host and its samplers find before the system's.
  void write_program(const std::string& name, const std::string& script) const {
    const std::string path = file("bin/") + name;
    std::ofstream{path} << "#!/bin/sh\n" << script << "\n";
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
  }

  void launch() {
    host_ = std::make_unique<background>(std::vector<std::string>{
        "sh", "-c", "PATH=" + file("bin") + ":$PATH exec orv-host >/dev/null 2>&1"});
  }
  void start() {
    launch();
    ASSERT_TRUE(eventually([] { return run({"orvctl", "--timeout", "1", "target"}).status == 0; }));
  }
  void kill() {
    host_->signal(SIGKILL);
    host_->wait();
  }

  [[nodiscard]] pid_t pid() const { return host_->pid(); }
  [[nodiscard]] std::string file(const char* name) const { return directory_ / name; }

 private:
  std::filesystem::path directory_ = std::filesystem::path{getenv("ORV_PLATFORM_ROOT")} / "fed";
  std::unique_ptr<background> host_;
};

}  // namespace orv_test

#endif
