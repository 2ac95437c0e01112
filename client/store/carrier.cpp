// The carrier that is part of the library: requests go through the platform's store.

#include "../carrier.h"

#include "connection.h"
#include "log_reader.h"
#include "watch.h"
#include "whole_command.h"

namespace orv_client {
namespace {

using store::connection;
using store::log_reader;
using store::watch;
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
                    carried_reply_fn on_reply, void* user_data) try {
  return whole_command::add(*static_cast<connection*>(opened), *request, limit, on_reply,
                            user_data);
} catch (...) {
  return nullptr;
}

orv_outcome cancel_command(void* started) {
  return static_cast<whole_command*>(started)->cancel();
}

void* start_watch(void* opened, const orv_watch_options* options, carried_event_fn on_event,
                  void* user_data) try {
  return watch::start(static_cast<connection*>(opened)->directory, *options, on_event, user_data);
} catch (...) {
  return nullptr;
}

void stop_watch(void* started) {
  static_cast<watch*>(started)->stop();
}

void cancel_watch(void* started) {
  static_cast<watch*>(started)->cancel();
}

void* start_log(void* /*opened*/, int follow, carried_line_fn on_line, void* user_data) try {
  return log_reader::start(follow != 0, on_line, user_data);
} catch (...) {
  return nullptr;
}

void stop_log(void* started) {
  static_cast<log_reader*>(started)->stop();
}

void cancel_log(void* started) {
  static_cast<log_reader*>(started)->cancel();
}

}  // namespace

extern const carrier store_carrier;
const carrier store_carrier = {
    .scheme = "store",
    .open = open,
    .close = close,
    .command = start_command,
    .cancel = cancel_command,
    .watch = start_watch,
    .stop_watch = stop_watch,
    .cancel_watch = cancel_watch,
    .log = start_log,
    .stop_log = stop_log,
    .cancel_log = cancel_log,
};

}  // namespace orv_client
