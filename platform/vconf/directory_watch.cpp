#include "directory_watch.h"

#include <errno.h>
#include <glib.h>
#include <stdint.h>
#include <stdio.h>
#include <sys/inotify.h>
#include <sys/stat.h>

#include <new>
#include <set>
#include <string>

#include "key_path.h"
#include "platform_root.h"
#include "value_file.h"

namespace vconf {
namespace {

// A write renames a temporary file with a unique name, so it arrives as one IN_MOVED_FROM that
// the kernel cannot merge with its neighbour, after the new value is in place. IN_MOVED_TO would
// carry the same name each time, and unread ones would merge.
constexpr uint32_t watched_events = IN_MOVED_FROM | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

int inotify_fd = -1;

std::set<std::string, std::less<>> held_keys;  // of the main context's thread

bool is_named(int root, const char* path) {
  struct stat opened {};
  struct stat named {};
  return fstat(root, &opened) == 0 && lstat(path, &named) == 0 && opened.st_ino == named.st_ino &&
         opened.st_dev == named.st_dev;
}

int add_watch_below(const char* root_name, std::string_view key, uint32_t mask) {
  char path[sizeof(platform::root_name) + max_key_length + 1];
  snprintf(path, sizeof path, "%s/%.*s", root_name, static_cast<int>(key.size()), key.data());
  return inotify_add_watch(inotify_fd, path, mask);
}

// By the root's name, where that still means this root: the first look through /proc/self in a
// process takes longer than all that a test tool sends.
int add_watch(int root, std::string_view key, uint32_t mask) {
  const platform::root_name name = platform::root_path();
  const int watch = add_watch_below(name.text, key, mask);
  const bool too_long = watch == not_watched && errno == ENAMETOOLONG;
  if (!too_long && is_named(root, name.text)) {
    return watch;
  }
  end_watch(watch);
  char by_descriptor[32];
  snprintf(by_descriptor, sizeof by_descriptor, "/proc/self/fd/%d", root);
  return add_watch_below(by_descriptor, key, mask);
}

int watch_made_directory(int root, std::string_view key) {
  const int watch = add_watch(root, key, watched_events);
  return watch == not_watched && make_key_directory(root, key)
             ? add_watch(root, key, watched_events)
             : watch;
}

}  // namespace

int event_queue() {
  return inotify_fd;
}

bool open_event_queue() {
  if (inotify_fd < 0) {
    inotify_fd = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  }
  if (inotify_fd < 0) {
    perror("vconf: changes cannot be watched: inotify_init1");
  }
  return inotify_fd >= 0;
}

int watch_directory(std::string_view key) {
  const int root = root_descriptor(true);
  const int watch = root >= 0 ? watch_made_directory(root, key) : not_watched;
  if (watch != not_watched || root < 0) {
    return watch;
  }
  const int fresh_root = root_descriptor(true, true);
  return fresh_root >= 0 ? watch_made_directory(fresh_root, key) : not_watched;
}

void end_watch(int watch) {
  if (watch != not_watched) {
    inotify_rm_watch(inotify_fd, watch);
  }
}

void hold_directory(int root, std::string_view key) {
  const bool serving =
      inotify_fd >= 0 && g_main_depth() > 0 && g_main_context_is_owner(g_main_context_default());
  if (!serving || held_keys.contains(key)) {
    return;
  }
  try {
    held_keys.emplace(key);
  } catch (const std::bad_alloc&) {
    return;  // the next write tries again
  }
  add_watch(root, key, IN_DELETE_SELF | IN_ONLYDIR | IN_MASK_CREATE);
}

void forget_held_directories() {
  held_keys.clear();
}

}  // namespace vconf
