// The carrier that is part of the library: requests go through the platform's store.

#include "../carrier.h"

#include "connection.h"
#include "whole_command.h"

namespace orv_client {
namespace {

using store::connection;
using store::whole_command;

void* open(const char* place, carried_reply_fn on_failure, void* user_data) {
  ending failure;
  auto made = store::connect(place, failure);
  if (!made) {
    const orv_reply reply = failure.view();
    on_failure(&reply, user_data);
  }
  return made.release();
}

void close(void* opened) {
  delete static_cast<connection*>(opened);
}

void* start_command(void* opened, const orv_request* request, time_limit limit,
                    carried_reply_fn on_reply, void* user_data) {
  return whole_command::add(*static_cast<connection*>(opened), *request, limit, on_reply,
                            user_data);
}

orv_outcome cancel_command(void* started) {
  return static_cast<whole_command*>(started)->cancel();
}

}  // namespace

extern const carrier store_carrier;
const carrier store_carrier = {
    .scheme = "store",
    .open = open,
    .close = close,
    .command = start_command,
    .cancel = cancel_command,
    .watch = nullptr,
    .stop_watch = nullptr,
    .cancel_watch = nullptr,
    .log = nullptr,
    .stop_log = nullptr,
    .cancel_log = nullptr,
};

}  // namespace orv_client
