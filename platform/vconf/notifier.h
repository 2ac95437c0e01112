// Who is called for which key, and the source of events on the default main context.
//
// Every function runs on the main context's thread only.
#ifndef ORV_VCONF_NOTIFIER_H
#define ORV_VCONF_NOTIFIER_H

#include "vconf.h"

struct vconf_keynode {
  char* name;
};

namespace vconf {

// 0 or a negative VCONF_ERROR. Only adding allocates, and throws std::bad_alloc, having added
// nothing.
int add_registration(const char* key, vconf_callback_fn callback, void* user_data);
int remove_registrations(const char* key, vconf_callback_fn callback);

}  // namespace vconf

#endif
