// inotify watches on the directories of keys.
//
// Every function but hold_directory runs on the main context's thread only.
#ifndef ORV_VCONF_DIRECTORY_WATCH_H
#define ORV_VCONF_DIRECTORY_WATCH_H

#include <string_view>

namespace vconf {

constexpr int not_watched = -1;

// The descriptor that events are read from; -1 as long as there is none.
int event_queue();

// Makes the queue unless there is one. False with a line on standard error when that fails.
bool open_event_queue();

// Watches the key's directory, which is made when missing. Allocates nothing.
int watch_directory(std::string_view key);
void end_watch(int watch);

// Called after a write: in a process that watches keys, what a source of the main context writes is
// what others wait for, and a watch that no write triggers is kept on its directory; elsewhere, and
// on other threads, nothing is done. Where the last watch of a directory goes with a process, as
// with a test tool that waited for an answer, the kernel has that process wait before it ends: 7 ms
// a call of the tool in place of 2.4 (Linux 6.18).
void hold_directory(int root, std::string_view key);

// After a directory was lost, held or not: the next write of each key holds its directory again.
void forget_held_directories();

}  // namespace vconf

#endif
