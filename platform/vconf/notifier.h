// Watching keys: who is called for which, and the inotify source on the default main context.
//
// Every function runs on the main context's thread.
#ifndef ORV_VCONF_NOTIFIER_H
#define ORV_VCONF_NOTIFIER_H

#include "vconf.h"

struct vconf_keynode {
  char* name;
};

namespace vconf {

// 0 or a negative VCONF_ERROR.
int add_registration(const char* key, vconf_callback_fn callback, void* user_data);
int remove_registrations(const char* key, vconf_callback_fn callback);

}  // namespace vconf

#endif
