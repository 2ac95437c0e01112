#include "platform_root.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {
namespace {

constexpr mode_t open_to_others = S_IRWXG | S_IRWXO;

std::string octal(mode_t mode) {
  std::string digits;
  for (mode_t rest = mode & 07777U; rest != 0 || digits.size() < 4; rest >>= 3U) {
    digits.insert(digits.begin(), static_cast<char>('0' + (rest & 7U)));
  }
  return digits;
}

root_check judge(const std::string& path, const struct stat& status) {
  if (!S_ISDIR(status.st_mode)) {
    return {root_state::refused, path + " is not a directory; name another root"};
  }
  if (status.st_uid != geteuid()) {
    return {root_state::refused, path + " belongs to user " + std::to_string(status.st_uid) +
                                     ", not to this one; name a root of your own"};
  }
  if ((status.st_mode & open_to_others) != 0) {
    return {root_state::refused, path + " is open to others (mode " + octal(status.st_mode) +
                                     "); close it with chmod 700 or name another root"};
  }
  return {root_state::usable, {}};
}

root_check failure(const std::string& path, int error, bool make) {
  const std::string reason = path + ": " + strerror(error);
  if (error != ENOENT) {
    return {root_state::refused, reason};
  }
  return make ? root_check{root_state::refused, reason + "; is the directory above it there?"}
              : root_check{root_state::missing, reason + "; is a host running on it?"};
}

int open_directory(const std::string& path) {
  return open(path.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

}  // namespace

std::string root_path() {
  const char* named = getenv("ORV_PLATFORM_ROOT");
  if (named != nullptr && *named != '\0') {
    return named;
  }
  const char* runtime = getenv("XDG_RUNTIME_DIR");
  if (runtime != nullptr && *runtime != '\0') {
    return std::string{runtime} + "/orv-platform";
  }
  return "/dev/shm/orv-platform-" + std::to_string(geteuid());
}

root_check check_root(const std::string& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0) {
    return failure(path, errno, false);
  }
  return judge(path, status);
}

int open_root(bool make, root_check& why) {
  const std::string path = root_path();
  int fd = open_directory(path);
  if (fd < 0 && errno == ENOENT && make && (mkdir(path.c_str(), S_IRWXU) == 0 || errno == EEXIST)) {
    fd = open_directory(path);
  }
  if (fd < 0) {
    why = failure(path, errno, make);
    return -1;
  }
  struct stat status {};
  why = fstat(fd, &status) == 0 ? judge(path, status) : failure(path, errno, make);
  if (why.state != root_state::usable) {
    close(fd);
    return -1;
  }
  return fd;
}

}  // namespace platform
