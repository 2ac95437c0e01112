// Watching keys: who is called for which, and the inotify source on the default main context.
//
// Every function but hold_directory runs on the main context's thread only.
#ifndef ORV_VCONF_NOTIFIER_H
#define ORV_VCONF_NOTIFIER_H

#include <string_view>

#include "vconf.h"

struct vconf_keynode {
  char* name;
};

namespace vconf {

// 0 or a negative VCONF_ERROR.
int add_registration(const char* key, vconf_callback_fn callback, void* user_data);
int remove_registrations(const char* key, vconf_callback_fn callback);

// Called behind a write: in a process that watches keys, what a source of the main context writes
// is what others wait for, and a mark that no write triggers is kept on its directory; elsewhere,
// and on other threads, nothing is done. Where the last mark of a directory goes with a process, as
// with a test tool that waited for an answer, the kernel has that process wait before it ends: 7 ms
// a call of the tool in place of 2.4 (Linux 6.18).
void hold_directory(int root, std::string_view key);

}  // namespace vconf

#endif
