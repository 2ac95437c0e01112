// An open camera, and what is in flight on it: calls, watches, logs.
#ifndef ORV_CLIENT_CAMERA_H
#define ORV_CLIENT_CAMERA_H

#include <orv/client.h>

#include <functional>
#include <list>
#include <memory>

#include "carrier.h"
#include "ending.h"

namespace orv_client {

// Belongs to the loop's thread, but for shared pointers to it: work that is handed to that thread
// keeps the camera, which may be closed by the time the work is done.
struct camera {
  const carrier* carried_by = nullptr;
  void* connection = nullptr;
  bool closed = false;
  // Each ends one thing that is in flight, reporting its last event. The thing takes its entry out
  // when it ends by itself; at the close, the entry is out when it is called.
  std::list<std::function<void()>> in_flight;
  int callbacks = 0;                    // of the user's, under way
  bool close_wanted = false;            // meanwhile
  completion* close_awaited = nullptr;  // by another thread
};

// Around a call of a user's callback: a close within it takes place when this goes.
class user_callback {
 public:
  explicit user_callback(std::shared_ptr<camera> of);
  user_callback(const user_callback&) = delete;
  user_callback& operator=(const user_callback&) = delete;
  ~user_callback();

 private:
  std::shared_ptr<camera> of_;
};

// Ends all that is in flight.
void close(camera& open);

// A copy for a caller to free with orv_reply_free, with the record that an answer to this command
// holds: an answer that cannot be parsed is ORV_WHY_BAD_ANSWER. Null where there is no memory.
orv_reply* make_reply(const orv_reply& carried, int32_t code) noexcept;
inline orv_reply* make_reply(const ending& how) noexcept {
  return make_reply(how.view(), 0);
}

}  // namespace orv_client

struct orv_camera {
  std::shared_ptr<orv_client::camera> state;
};

#endif
