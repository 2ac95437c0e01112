// Programs of the test's own, first in PATH: what the agent's shell commands find.
#ifndef ORV_TESTS_SUPPORT_FED_PROGRAMS_H
#define ORV_TESTS_SUPPORT_FED_PROGRAMS_H

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "process.h"

namespace orv_test {

// A `ps` and a `cat` that print what they are fed, and note that they were run. Fed nothing, `cat`
// fails.
class fed_programs {
 public:
  fed_programs() {
    const std::string start =
        "#!/bin/sh\ncd " + directory_.string() + "\necho \"${0##*/} $*\" >>log\n";
    put("bin/ps", start + "/bin/cat listing\n. ./after\n");
    put("bin/cat", start + "exec /bin/cat \"maps$1\" 2>&-\n");
    feed_ps("");
    then_ps_runs("");
    setenv("PATH", ((directory_ / "bin").string() + ":" + old_path_).c_str(), 1);
  }
  fed_programs(const fed_programs&) = delete;
  fed_programs& operator=(const fed_programs&) = delete;
  ~fed_programs() {
    setenv("PATH", old_path_.c_str(), 1);
    std::filesystem::remove_all(directory_);
  }

  void feed_ps(const std::string& listing) const { put("listing", listing); }
  void feed_cat(const std::string& path, const std::string& text) const {
    put("maps" + path, text);
  }
  // Run by `ps` when it has printed.
  void then_ps_runs(const std::string& script) const { put("after", script + "\n"); }

  // Nothing but a `ps` is found from now on, and it takes no notes: for many runs. The listing is a
  // printf format without quotes.
  void feed_ps_alone(const std::string& listing) const {
    put("bin/ps", "#!/bin/sh\nprintf '" + listing + "'");
    std::filesystem::remove(directory_ / "bin/cat");
    setenv("PATH", (directory_ / "bin").c_str(), 1);
  }

  // The command lines since the last call.
  [[nodiscard]] std::vector<std::string> take_commands() const {
    std::vector<std::string> commands = lines_of(std::ifstream{directory_ / "log"});
    std::filesystem::remove(directory_ / "log");
    return commands;
  }

 private:
  void put(const std::string& name, const std::string& text) const {
    std::filesystem::create_directories((directory_ / name).parent_path());
    std::ofstream{directory_ / name} << text;
    std::filesystem::permissions(directory_ / name, std::filesystem::perms::owner_all);
  }

  std::filesystem::path directory_ = std::filesystem::path{getenv("ORV_PLATFORM_ROOT")} / "fed";
  std::string old_path_ = getenv("PATH");
};

}  // namespace orv_test

#endif
