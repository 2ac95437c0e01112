// A request on its way: it waits for its connection's earlier ones, for its rights and its turn,
// settles what is outstanding, and is sent. One time limit is for all of that.
#ifndef ORV_CLIENT_STORE_WHOLE_COMMAND_H
#define ORV_CLIENT_STORE_WHOLE_COMMAND_H

#include <memory>

#include "../carrier.h"
#include "../commands.h"
#include "connection.h"
#include "turn.h"

namespace orv_client::store {

class whole_command {
 public:
  // `on_reply` is called when it has ended and is gone.
  whole_command(connection& of, const orv_request& request, time_limit limit,
                carried_reply_fn on_reply, void* user_data);
  whole_command(const whole_command&) = delete;
  whole_command& operator=(const whole_command&) = delete;
  ~whole_command();

  // The last of its connection's.
  static whole_command* add(connection& to, const orv_request& request, time_limit limit,
                            carried_reply_fn on_reply, void* user_data);

  // Destroys it without a reply.
  orv_outcome cancel();

 private:
  using step = void (whole_command::*)();

  void begin();
  void take_packet();
  void take_turn();
  void use_turn();
  void settle();
  void ask();
  void go_on(step next);
  void end_busy();
  void end_soon(ending how);
  void end(ending how);
  void leave();

  connection& of_;
  command sent_;
  time_limit limit_;
  carried_reply_fn on_reply_;
  void* user_data_;
  bool needs_packet_;
  bool asking_ = false;
  source next_;
  std::unique_ptr<claim> packet_claim_;
  std::unique_ptr<turn> turn_;
};

}  // namespace orv_client::store

#endif
