#include "next_in_path.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace orv::camera {
namespace {

using file_path = std::array<char, PATH_MAX>;
constexpr int exit_cannot_execute = 126;
constexpr int exit_not_found = 127;

std::string_view take_directory(std::string_view& path) {
  const std::string_view directory = path.substr(0, path.find(':'));
  path.remove_prefix(std::min(directory.size() + 1, path.size()));
  return directory.empty() ? "." : directory;
}

bool is_program(const char* path, struct stat& status) {
  return stat(path, &status) == 0 && S_ISREG(status.st_mode) && access(path, X_OK) == 0;
}

// The first one after the last place where `self` stands: two copies of a stand-in in one PATH do
// not start each other for ever.
bool find_after(const struct stat& self, const char* program, std::string_view path,
                file_path& found) {
  bool is_found = false;
  while (!path.empty()) {
    const std::string_view directory = take_directory(path);
    file_path candidate;
    const int length = snprintf(candidate.data(), candidate.size(), "%.*s/%s",
                                static_cast<int>(directory.size()), directory.data(), program);
    struct stat status;
    if (length >= PATH_MAX || !is_program(candidate.data(), status)) continue;
    if (status.st_dev == self.st_dev && status.st_ino == self.st_ino) {
      is_found = false;
    } else if (!is_found) {
      found = candidate;
      is_found = true;
    }
  }
  return is_found;
}

}  // namespace

int exec_next_in_path(const char* program, char** argv) {
  struct stat self;
  if (stat("/proc/self/exe", &self) != 0) {
    fprintf(stderr, "%s: /proc/self/exe: %s\n", program, strerror(errno));
    return exit_not_found;
  }
  const char* path = getenv("PATH");
  file_path next;
  if (!find_after(self, program, path != nullptr ? path : "/usr/bin:/bin", next)) {
    fprintf(stderr, "%s: no other %s in PATH\n", program, program);
    return exit_not_found;
  }
  execv(next.data(), argv);
  fprintf(stderr, "%s: %s: %s\n", program, next.data(), strerror(errno));
  return exit_cannot_execute;
}

}  // namespace orv::camera
