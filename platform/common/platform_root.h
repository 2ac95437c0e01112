// The directory under which the stand-ins keep the store, the log and the version file.
#ifndef ORV_PLATFORM_ROOT_H
#define ORV_PLATFORM_ROOT_H

#include <limits.h>

#include <string>

namespace platform {

// ORV_PLATFORM_ROOT, or "orv-platform" in XDG_RUNTIME_DIR, or /dev/shm/orv-platform-UID.
std::string root_path();

enum class root_state { usable, missing, refused };

struct root_check {
  root_state state;
  std::string
      reason;  // one line without newline unless usable: what is wrong, with what, what next
};

root_check check_root(const std::string& path);

// A descriptor of the checked root (O_PATH, close-on-exec), or -1 with the reason in `why`.
// With `make`, a missing root is made, closed to others.
int open_root(bool make, root_check& why);

}  // namespace platform

#endif
