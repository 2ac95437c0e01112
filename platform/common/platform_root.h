// The directory under which the stand-ins keep the store, the log and the version file.
//
// Nothing here allocates: a process that is short of memory still finds its store.
#ifndef ORV_PLATFORM_ROOT_H
#define ORV_PLATFORM_ROOT_H

#include <limits.h>

namespace platform {

// A name that is too long for a path is cut, and then still too long.
struct root_name {
  char text[PATH_MAX + 1];
};

// ORV_PLATFORM_ROOT, or "orv-platform" in XDG_RUNTIME_DIR, or /dev/shm/orv-platform-UID.
root_name root_path();

enum class root_state { usable, missing, refused };

struct root_check {
  root_state state;
  // One line without newline unless usable: what is wrong, with what, what next.
  char reason[PATH_MAX + 128];
};

// A descriptor of the checked root (O_PATH, close-on-exec), or -1 with the reason in `why`.
// With `make`, a missing root is made, closed to others.
int open_root(bool make, root_check& why);

}  // namespace platform

#endif
