// What takes requests to a camera: one table of functions for each scheme of an address.
//
// The store's is part of the library. Any other is a shared object, carrier-SCHEME.so, that defines
// orv_carrier_table; it and the library may have different C++ runtimes, so only plain types pass.
//
// All functions are called on the default main context's thread and call back there, never before
// they return. None lets an exception out.
#ifndef ORV_CLIENT_CARRIER_H
#define ORV_CLIENT_CARRIER_H

#include <orv/client.h>

#include <string>

#include "loop.h"

namespace orv_client {

// Texts of replies are the carrier's and live for the call; typed records are null.
using carried_reply_fn = void (*)(const orv_reply* reply, void* user_data);
using carried_event_fn = void (*)(const orv_watch_event* event, void* user_data);
// `end` is null but after the last line, when `line` is.
using carried_line_fn = void (*)(const char* line, const orv_reply* end, void* user_data);

struct carrier {
  const char* scheme;

  // `place` is the address after its colon. Null on failure; `on_failure` has then been called, the
  // one callback that comes before its function returns.
  void* (*open)(const char* place, carried_reply_fn on_failure, void* user_data);
  // All commands, watches and logs have ended or are cancelled.
  void (*close)(void* connection);

  // Calls back once, at the latest at the limit. Commands of a connection are sent in their order.
  // Null where there is no memory; nothing is called then.
  void* (*command)(void* connection, const orv_request* request, time_limit limit,
                   carried_reply_fn on_reply, void* user_data);
  // Instead of the reply: ORV_NOT_RUN, or ORV_MAY_HAVE_RUN when it was sent.
  orv_outcome (*cancel)(void* command);

  // Calls back until ORV_WATCH_ENDED, after which the watch is gone. Null as above.
  void* (*watch)(void* connection, const orv_watch_options* options, carried_event_fn on_event,
                 void* user_data);
  void (*stop_watch)(void* watch);    // begins the end
  void (*cancel_watch)(void* watch);  // ends it here; nothing is called any more

  // Calls back until a null line, after which the log is gone. Null as above.
  void* (*log)(void* connection, int follow, carried_line_fn on_line, void* user_data);
  void (*stop_log)(void* log);    // begins the end
  void (*cancel_log)(void* log);  // ends it here; nothing is called any more
};

// The scheme's table, or null with the reason in `why` (in one line).
const carrier* find_carrier(const std::string& scheme, std::string& why);

}  // namespace orv_client

#endif
