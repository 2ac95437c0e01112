#include "platform_root.h"

#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {
namespace {

constexpr mode_t open_to_others = S_IRWXG | S_IRWXO;

__attribute__((format(printf, 2, 3))) root_check check(root_state state, const char* format, ...) {
  root_check result{state, {}};
  va_list arguments;
  va_start(arguments, format);
  vsnprintf(result.reason, sizeof result.reason, format, arguments);
  va_end(arguments);
  return result;
}

root_check judge(const char* path, const struct stat& status) {
  if (!S_ISDIR(status.st_mode)) {
    return check(root_state::refused, "%s is not a directory; name another root", path);
  }
  if (status.st_uid != geteuid()) {
    return check(root_state::refused,
                 "%s belongs to user %ju, not to this one; name a root of your own", path,
                 uintmax_t{status.st_uid});
  }
  if ((status.st_mode & open_to_others) != 0) {
    return check(root_state::refused,
                 "%s is open to others (mode %04o); close it with chmod 700 or name another root",
                 path, status.st_mode & 07777U);
  }
  return {root_state::usable, {}};
}

root_check failure(const char* path, int error, bool make) {
  const char* next = make ? "; is the directory above it there?" : "; is a host running on it?";
  const bool missing = error == ENOENT;
  return check(missing && !make ? root_state::missing : root_state::refused, "%s: %s%s", path,
               strerror(error), missing ? next : "");
}

int open_directory(const char* path) {
  return open(path, O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

}  // namespace

root_name root_path() {
  root_name name{};
  const char* named = getenv("ORV_PLATFORM_ROOT");
  const char* runtime = getenv("XDG_RUNTIME_DIR");
  if (named != nullptr && *named != '\0') {
    snprintf(name.text, sizeof name.text, "%s", named);
  } else if (runtime != nullptr && *runtime != '\0') {
    snprintf(name.text, sizeof name.text, "%s/orv-platform", runtime);
  } else {
    snprintf(name.text, sizeof name.text, "/dev/shm/orv-platform-%ju", uintmax_t{geteuid()});
  }
  return name;
}

int open_root(bool make, root_check& why) {
  const root_name path = root_path();
  int fd = open_directory(path.text);
  if (fd < 0 && errno == ENOENT && make && (mkdir(path.text, S_IRWXU) == 0 || errno == EEXIST)) {
    fd = open_directory(path.text);
  }
  if (fd < 0) {
    why = failure(path.text, errno, make);
    return -1;
  }
  struct stat status {};
  why = fstat(fd, &status) == 0 ? judge(path.text, status) : failure(path.text, errno, make);
  if (why.state != root_state::usable) {
    close(fd);
    return -1;
  }
  return fd;
}

}  // namespace platform
