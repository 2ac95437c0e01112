#include "directory.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orv_client::store {
namespace {

constexpr mode_t open_to_others = S_IRWXG | S_IRWXO;
constexpr char default_pattern[] = ORV_DEFAULT_STORE;

std::string octal(mode_t mode) {
  char digits[16];
  snprintf(digits, sizeof digits, "%04o", static_cast<unsigned>(mode) & 07777U);
  return digits;
}

directory_state judge(const std::string& path, const struct stat& status, std::string& why) {
  if (!S_ISDIR(status.st_mode)) {
    why = path + " is not a directory; name another root";
  } else if (status.st_uid != geteuid()) {
    why = path + " belongs to user " + std::to_string(status.st_uid) +
          ", not to this one; name a root of your own";
  } else if ((status.st_mode & open_to_others) != 0) {
    why = path + " is open to others (mode " + octal(status.st_mode) +
          "); close it with chmod 700 or name another root";
  } else {
    return directory_state::usable;
  }
  return directory_state::refused;
}

directory_state failure(const std::string& path, int error, std::string& why) {
  why = path + ": " + strerror(error);
  if (error != ENOENT) {
    return directory_state::refused;
  }
  why += "; is a host running on it?";
  return directory_state::missing;
}

}  // namespace

directory_state check_directory(const std::string& path, std::string& why) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 ? judge(path, status, why) : failure(path, errno, why);
}

bool make_directory(const std::string& path, std::string& why) {
  if (mkdir(path.c_str(), S_IRWXU) == 0 || errno == EEXIST) {
    return true;
  }
  why = path + ": " + strerror(errno) + "; is the directory above it there?";
  return false;
}

int open_directory(const std::string& path, std::string& why) {
  const int fd = open(path.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  struct stat status {};
  if (fd < 0 || fstat(fd, &status) != 0) {
    failure(path, errno, why);
  } else if (judge(path, status, why) == directory_state::usable) {
    return fd;
  }
  if (fd >= 0) {
    close(fd);
  }
  return -1;
}

bool same_directory(const std::string& one, const std::string& other) {
  struct stat first {};
  struct stat second {};
  return one == other || (stat(one.c_str(), &first) == 0 && stat(other.c_str(), &second) == 0 &&
                          first.st_dev == second.st_dev && first.st_ino == second.st_ino);
}

std::string default_directory() {
  std::string path = default_pattern;
  if (const size_t at = path.find("%u"); at != std::string::npos) {
    path.replace(at, 2, std::to_string(geteuid()));
  }
  return path;
}

}  // namespace orv_client::store
