#include "notifier.h"

#include <glib-unix.h>
#include <stdint.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <list>
#include <string>
#include <string_view>
#include <vector>

#include "directory_watch.h"
#include "key_path.h"
#include "value_file.h"

namespace vconf {
namespace {

constexpr uint32_t directory_lost = IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED;
constexpr gint64 rewatch_interval_us = 200'000;
constexpr gint64 never = -1;

struct registration {
  vconf_callback_fn callback;
  void* user_data;
  uint64_t number;  // of all registrations, in the order in which they were made
};

struct watched_key {
  std::string key;
  int watch;
  bool due;  // is to be delivered though no event says so
  std::vector<registration> registrations;
};

std::list<watched_key> watched_keys;
uint64_t next_number = 0;
GSource* events_source = nullptr;

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

// The key's first registration with a number of this range.
const registration* find_numbered(std::string_view key, uint64_t from, uint64_t end) {
  const watched_key* row = find_key(key);
  if (row == nullptr) {
    return nullptr;
  }
  const auto found = std::find_if(row->registrations.begin(), row->registrations.end(),
                                  [from](const auto& one) { return one.number >= from; });
  return found == row->registrations.end() || found->number >= end ? nullptr : &*found;
}

// Callbacks may register and remove as they like, so each is looked up when it is its turn. No
// delivery allocates: an event that was read and then found no memory would be lost.
void deliver(const watched_key& row) {
  char name[max_key_length + 1];
  name[row.key.copy(name, max_key_length)] = '\0';
  vconf_keynode node{name};
  const std::string_view key{name};
  const uint64_t end = next_number;
  uint64_t from = 0;
  while (const registration* next = find_numbered(key, from, end)) {
    from = next->number + 1;
    next->callback(&node, next->user_data);
  }
}

void deliver_due_keys() {
  const auto is_due = [](const watched_key& row) { return row.due; };
  while (true) {
    const auto found = std::find_if(watched_keys.begin(), watched_keys.end(), is_due);
    if (found == watched_keys.end()) {
      return;
    }
    found->due = false;
    deliver(*found);
  }
}

// Whoever removes the tree may be halfway through it; what cannot be watched now is tried again.
void rewatch_lost_keys() {
  bool all_watched = true;
  for (watched_key& row : watched_keys) {
    if (row.watch == not_watched) {
      row.watch = watch_directory(row.key);
      all_watched = all_watched && row.watch != not_watched;
      row.due = row.due || (row.watch != not_watched && has_value(row.key.c_str()));
    }
  }
  g_source_set_ready_time(events_source,
                          all_watched ? never : g_get_monotonic_time() + rewatch_interval_us);
  deliver_due_keys();
}

void lose(watched_key& row, uint32_t mask) {
  if ((mask & IN_MOVE_SELF) != 0) {
    end_watch(row.watch);
  }
  row.watch = not_watched;
  rewatch_lost_keys();
}

void look_at_every_key() {
  for (watched_key& row : watched_keys) {
    row.due = true;
  }
  deliver_due_keys();
}

void handle(const inotify_event& event) {
  if ((event.mask & IN_Q_OVERFLOW) != 0) {
    look_at_every_key();
    return;
  }
  const bool lost = (event.mask & directory_lost) != 0;
  if (lost) {
    forget_held_directories();
  }
  watched_key* row = find_watch(event.wd);
  if (row == nullptr) {
    return;
  }
  if (lost) {
    lose(*row, event.mask);
  } else if (event.len != 0 && std::string_view{event.name}.starts_with(temporary_prefix)) {
    deliver(*row);
  }
}

bool rewatch_is_due() {
  const gint64 time = g_source_get_ready_time(events_source);
  return time != never && time <= g_get_monotonic_time();
}

gboolean read_events(gint fd, GIOCondition, gpointer) {
  alignas(inotify_event) char events[16384];
  const ssize_t size = read(fd, events, sizeof events);
  for (ssize_t at = 0; at < size;) {
    const auto* event = static_cast<const inotify_event*>(static_cast<const void*>(events + at));
    handle(*event);
    at += static_cast<ssize_t>(sizeof *event + event->len);
  }
  if (rewatch_is_due()) {
    rewatch_lost_keys();
  }
  return G_SOURCE_CONTINUE;
}

bool start_source() {
  if (events_source != nullptr) {
    return true;
  }
  if (!open_event_queue()) {
    return false;
  }
  events_source = g_unix_fd_source_new(event_queue(), G_IO_IN);
  using callback = gboolean (*)(gint, GIOCondition, gpointer);
  const callback reader = read_events;
  g_source_set_callback(events_source, G_SOURCE_FUNC(reader), nullptr, nullptr);
  // A source that may not recurse is taken out of the poll set for each dispatch, and putting it
  // back wakes the loop a second time.
  g_source_set_can_recurse(events_source, TRUE);
  g_source_attach(events_source, nullptr);
  return true;
}

int add_key(const char* key, const registration& first) {
  std::list<watched_key> added;
  added.push_back({key, not_watched, false, {first}});
  added.front().watch = watch_directory(key);
  if (added.front().watch == not_watched) {
    return VCONF_ERROR_STORE;
  }
  watched_keys.splice(watched_keys.end(), added);
  return 0;
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
    return add_key(key, {callback, user_data, next_number++});
  }
  if (registration* known = find_registration(*row, callback)) {
    known->user_data = user_data;
  } else {
    row->registrations.push_back({callback, user_data, next_number++});
  }
  return 0;
}

int remove_registrations(const char* key, vconf_callback_fn callback) {
  watched_key* row = key != nullptr ? find_key(key) : nullptr;
  if (row == nullptr) {
    return VCONF_ERROR_NO_KEY;
  }
  const auto removed = std::erase_if(
      row->registrations, [callback](const auto& one) { return one.callback == callback; });
  if (row->registrations.empty()) {
    end_watch(row->watch);
    watched_keys.remove_if([key](const auto& one) { return one.key == key; });
  }
  return removed != 0 ? 0 : VCONF_ERROR_NO_KEY;
}

}  // namespace vconf
