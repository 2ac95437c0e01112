#include "fed_programs.h"

#include <stdlib.h>

#include <fstream>

namespace orv_test {
namespace fs = std::filesystem;

fed_programs::fed_programs()
    : directory_{fs::path{getenv("ORV_PLATFORM_ROOT")} / "fed"}, old_path_{getenv("PATH")} {
  fs::create_directories(directory_ / "bin");
  const std::string start =
      "#!/bin/sh\ncd " + directory_.string() + "\necho \"${0##*/} $*\" >>log\n";
  std::ofstream{directory_ / "bin/ps"} << start << "/bin/cat listing\n. ./after\n";
  std::ofstream{directory_ / "bin/cat"} << start << "exec /bin/cat \"maps$1\" 2>&-\n";
  for (const char* program : {"bin/ps", "bin/cat"}) {
    fs::permissions(directory_ / program, fs::perms::owner_all);
  }
  feed_ps("");
  then_ps_runs("");
  setenv("PATH", ((directory_ / "bin").string() + ":" + old_path_).c_str(), 1);
}

fed_programs::~fed_programs() {
  setenv("PATH", old_path_.c_str(), 1);
  fs::remove_all(directory_);
}

void fed_programs::feed_ps(const std::string& listing) const {
  std::ofstream{directory_ / "listing"} << listing;
}

void fed_programs::feed_cat(const std::string& path, const std::string& text) const {
  const fs::path file{directory_.string() + "/maps" + path};
  fs::create_directories(file.parent_path());
  std::ofstream{file} << text;
}

void fed_programs::then_ps_runs(const std::string& script) const {
  std::ofstream{directory_ / "after"} << script << "\n";
}

void fed_programs::feed_ps_alone(const std::string& listing) const {
  std::ofstream{directory_ / "bin/ps"} << "#!/bin/sh\nprintf '" << listing << "'";
  fs::remove(directory_ / "bin/cat");
  setenv("PATH", (directory_ / "bin").c_str(), 1);
}

std::vector<std::string> fed_programs::take_commands() const {
  std::vector<std::string> commands;
  std::ifstream log{directory_ / "log"};
  for (std::string line; std::getline(log, line);) {
    commands.push_back(line);
  }
  fs::remove(directory_ / "log");
  return commands;
}

}  // namespace orv_test
