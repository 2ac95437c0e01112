#include "notifier.h"

#include <errno.h>
#include <glib-unix.h>
#include <stdint.h>
#include <stdio.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <list>
#include <set>
#include <string>
#include <vector>

#include "key_path.h"
#include "platform_root.h"
#include "value_file.h"

namespace vconf {
namespace {

// A write renames a temporary file of a name of its own, so it arrives as one IN_MOVED_FROM that
// the kernel cannot merge with its neighbour, after the new value stands. IN_MOVED_TO would carry
// the same name each time, and unread ones would merge.
constexpr uint32_t watched_events = IN_MOVED_FROM | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
constexpr uint32_t directory_lost = IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED;
constexpr unsigned rewatch_interval_ms = 200;
constexpr int not_watched = -1;

struct registration {
  vconf_callback_fn callback;
  void* user_data;
};

struct watched_key {
  std::string key;
  int watch;
  std::vector<registration> registrations;
};

std::list<watched_key> watched_keys;
int inotify_fd = -1;

std::set<std::string, std::less<>> held_keys;  // of the main context's thread

watched_key* find_key(std::string_view key) {
  const auto found = std::find_if(watched_keys.begin(), watched_keys.end(),
                                  [key](const auto& row) { return row.key == key; });
  return found == watched_keys.end() ? nullptr : &*found;
}

watched_key* find_watch(int watch) {
  const auto found = std::find_if(watched_keys.begin(), watched_keys.end(),
                                  [watch](const auto& row) { return row.watch == watch; });
  return found == watched_keys.end() ? nullptr : &*found;
}

registration* find_registration(watched_key& row, vconf_callback_fn callback) {
  const auto found = std::find_if(row.registrations.begin(), row.registrations.end(),
                                  [callback](const auto& one) { return one.callback == callback; });
  return found == row.registrations.end() ? nullptr : &*found;
}

bool still_registered(const std::string& key, vconf_callback_fn callback) {
  watched_key* row = find_key(key);
  return row != nullptr && find_registration(*row, callback) != nullptr;
}

// Callbacks may register and remove as they like: what runs is a copy, looked up before each call.
void deliver(std::string key) {
  const watched_key* row = find_key(key);
  if (row == nullptr) {
    return;
  }
  const std::vector<registration> callbacks = row->registrations;
  for (const registration& one : callbacks) {
    if (still_registered(key, one.callback)) {
      vconf_keynode node{key.data()};
      one.callback(&node, one.user_data);
    }
  }
}

bool is_named(int root, const std::string& path) {
  struct stat opened {};
  struct stat named {};
  return fstat(root, &opened) == 0 && lstat(path.c_str(), &named) == 0 &&
         opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
}

int add_watch_below(const std::string& root_name, std::string_view key, uint32_t mask) {
  const std::string path = root_name + "/" + std::string{key};
  return inotify_add_watch(inotify_fd, path.c_str(), mask);
}

// By the root's name, where that still means this root: the first look through /proc/self in a
// process takes longer than all that a test tool sends.
int add_watch(int root, std::string_view key, uint32_t mask) {
  const std::string name = platform::root_path();
  const int watch = add_watch_below(name, key, mask);
  const bool too_long = watch == not_watched && errno == ENAMETOOLONG;
  if (!too_long && is_named(root, name)) {
    return watch;
  }
  if (watch != not_watched) {
    inotify_rm_watch(inotify_fd, watch);
  }
  return add_watch_below("/proc/self/fd/" + std::to_string(root), key, mask);
}

int watch_made_directory(int root, const std::string& key) {
  const int watch = add_watch(root, key, watched_events);
  return watch == not_watched && make_key_directory(root, key)
             ? add_watch(root, key, watched_events)
             : watch;
}

int watch_directory(const std::string& key) {
  const int root = root_descriptor(true);
  const int watch = root >= 0 ? watch_made_directory(root, key) : not_watched;
  if (watch != not_watched || root < 0) {
    return watch;
  }
  const int fresh_root = root_descriptor(true, true);
  return fresh_root >= 0 ? watch_made_directory(fresh_root, key) : not_watched;
}

bool has_value(const std::string& key) {
  value found{};
  return read_value(key.c_str(), found) == 0;
}

gboolean rewatch_lost_keys(gpointer) {
  bool all_watched = true;
  std::vector<std::string> written_meanwhile;
  for (watched_key& row : watched_keys) {
    if (row.watch != not_watched) {
      continue;
    }
    row.watch = watch_directory(row.key);
    all_watched = all_watched && row.watch != not_watched;
    if (row.watch != not_watched && has_value(row.key)) {
      written_meanwhile.push_back(row.key);
    }
  }
  for (const std::string& key : written_meanwhile) {
    deliver(key);
  }
  return all_watched ? G_SOURCE_REMOVE : G_SOURCE_CONTINUE;
}

// Whoever removes the tree may be halfway through it; what cannot be watched now is tried again.
void lose(watched_key& row, uint32_t mask) {
  if ((mask & IN_MOVE_SELF) != 0) {
    inotify_rm_watch(inotify_fd, row.watch);
  }
  row.watch = not_watched;
  if (rewatch_lost_keys(nullptr) == G_SOURCE_CONTINUE) {
    g_timeout_add(rewatch_interval_ms, rewatch_lost_keys, nullptr);
  }
}

void look_at_every_key() {
  std::vector<std::string> keys;
  for (const watched_key& row : watched_keys) {
    keys.push_back(row.key);
  }
  for (const std::string& key : keys) {
    deliver(key);
  }
}

void handle(const inotify_event& event) {
  if ((event.mask & IN_Q_OVERFLOW) != 0) {
    look_at_every_key();
    return;
  }
  watched_key* row = find_watch(event.wd);
  if ((event.mask & directory_lost) != 0) {
    held_keys.clear();  // which of them, the next write of each tells
  }
  if (row == nullptr) {
    return;
  }
  if ((event.mask & directory_lost) != 0) {
    lose(*row, event.mask);
  } else if (event.len != 0 && std::string_view{event.name}.starts_with(temporary_prefix)) {
    deliver(row->key);
  }
}

gboolean read_events(gint fd, GIOCondition, gpointer) {
  alignas(inotify_event) char events[16384];
  const ssize_t size = read(fd, events, sizeof events);
  for (ssize_t at = 0; at < size;) {
    const auto* event = static_cast<const inotify_event*>(static_cast<const void*>(events + at));
    handle(*event);
    at += static_cast<ssize_t>(sizeof *event + event->len);
  }
  return G_SOURCE_CONTINUE;
}

bool start_source() {
  if (inotify_fd >= 0) {
    return true;
  }
  inotify_fd = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  if (inotify_fd < 0) {
    perror("vconf: changes cannot be watched: inotify_init1");
    return false;
  }
  GSource* source = g_unix_fd_source_new(inotify_fd, G_IO_IN);
  using callback = gboolean (*)(gint, GIOCondition, gpointer);
  const callback reader = read_events;
  g_source_set_callback(source, G_SOURCE_FUNC(reader), nullptr, nullptr);
  // A source that may not recurse is taken out of the poll set for each dispatch, and putting it
  // back wakes the loop a second time.
  g_source_set_can_recurse(source, TRUE);
  g_source_attach(source, nullptr);
  g_source_unref(source);
  return true;
}

}  // namespace

int add_registration(const char* key, vconf_callback_fn callback, void* user_data) {
  if (key == nullptr || callback == nullptr || !valid_key(key)) {
    return VCONF_ERROR_NO_KEY;
  }
  if (root_descriptor(true) < 0 || !start_source()) {
    return VCONF_ERROR_STORE;
  }
  watched_key* row = find_key(key);
  if (row == nullptr) {
    const int watch = watch_directory(key);
    if (watch == not_watched) {
      return VCONF_ERROR_STORE;
    }
    row = &watched_keys.emplace_back(watched_key{key, watch, {}});
  }
  if (registration* known = find_registration(*row, callback)) {
    known->user_data = user_data;
  } else {
    row->registrations.push_back({callback, user_data});
  }
  return 0;
}

void hold_directory(int root, std::string_view key) {
  const bool serving =
      inotify_fd >= 0 && g_main_depth() > 0 && g_main_context_is_owner(g_main_context_default());
  if (serving && !held_keys.contains(key)) {
    held_keys.emplace(key);
    add_watch(root, key, IN_DELETE_SELF | IN_ONLYDIR | IN_MASK_CREATE);
  }
}

int remove_registrations(const char* key, vconf_callback_fn callback) {
  watched_key* row = key != nullptr ? find_key(key) : nullptr;
  if (row == nullptr) {
    return VCONF_ERROR_NO_KEY;
  }
  const auto removed = std::erase_if(
      row->registrations, [callback](const auto& one) { return one.callback == callback; });
  if (row->registrations.empty()) {
    if (row->watch != not_watched) {
      inotify_rm_watch(inotify_fd, row->watch);
    }
    watched_keys.remove_if([key](const auto& one) { return one.key == key; });
  }
  return removed != 0 ? 0 : VCONF_ERROR_NO_KEY;
}

}  // namespace vconf
