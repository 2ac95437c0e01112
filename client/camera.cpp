#include "camera.h"

#include <stdlib.h>

#include <string>
#include <utility>

namespace orv_client {
namespace {

struct opening {
  std::shared_ptr<camera> open;  // null when it failed
  orv_reply* failure = nullptr;
};

void note_failure(const orv_reply* reply, void* result) {
  static_cast<opening*>(result)->failure = make_reply(*reply, 0);
}

void open_at(const std::string& address, opening& result) {
  const std::string given = address.empty() ? "store:" : address;
  const size_t colon = given.find(':');
  if (colon == std::string::npos) {
    result.failure = make_reply(
        not_run(ORV_WHY_BAD_ADDRESS, "\"" + given + "\" is no address, as in store:DIR"));
    return;
  }
  std::string why;
  const carrier* carried_by = find_carrier(given.substr(0, colon), why);
  if (carried_by == nullptr) {
    result.failure = make_reply(not_run(ORV_WHY_UNKNOWN_SCHEME, given + ": " + why));
    return;
  }
  auto made = std::make_shared<camera>();
  made->carried_by = carried_by;
  made->connection = carried_by->open(given.c_str() + colon + 1, note_failure, &result);
  if (made->connection != nullptr) {
    result.open = std::move(made);
  }
}

std::string default_address() {
  if (const char* address = getenv("ORV_CAMERA"); address != nullptr && *address != '\0') {
    return address;
  }
  const char* root = getenv("ORV_PLATFORM_ROOT");
  return std::string{"store:"} + (root != nullptr ? root : "");
}

}  // namespace

user_callback::user_callback(std::shared_ptr<camera> of) : of_{std::move(of)} {
  ++of_->callbacks;
}

user_callback::~user_callback() {
  if (--of_->callbacks == 0 && of_->close_wanted) {
    run_posted();
    close(*of_);
  }
}

void close(camera& open) {
  if (std::exchange(open.closed, true)) {
    return;
  }
  while (!open.in_flight.empty()) {
    const auto end = std::move(open.in_flight.front());
    open.in_flight.pop_front();
    end();
  }
  open.carried_by->close(open.connection);
  if (open.close_awaited != nullptr) {
    open.close_awaited->complete();
  }
}

}  // namespace orv_client

using orv_client::opening;

const char* orv_default_address() {
  // Made once: it may be asked for on any thread.
  static const std::string address = orv_client::default_address();
  return address.c_str();
}

orv_camera* orv_camera_open(const char* address, orv_reply** failure) try {
  const std::string given = address != nullptr ? address : orv_default_address();
  opening result;
  orv_client::run_on_loop([&] { open_at(given, result); });
  if (!result.open && failure != nullptr) {
    *failure = result.failure != nullptr
                   ? result.failure
                   : make_reply(orv_client::not_run(ORV_WHY_NO_MEMORY, "out of memory"));
  } else {
    orv_reply_free(result.failure);
  }
  return result.open ? new orv_camera{std::move(result.open)} : nullptr;
} catch (...) {
  if (failure != nullptr) {
    *failure = nullptr;
  }
  return nullptr;
}

void orv_camera_close(orv_camera* camera) try {
  if (camera == nullptr) {
    return;
  }
  const std::unique_ptr<orv_camera> owned{camera};
  const auto state = camera->state;
  const bool on_loop = g_main_context_is_owner(g_main_context_default()) != FALSE;
  orv_client::completion closed;
  const bool begun = orv_client::run_on_loop([&] {
    state->close_awaited = on_loop ? nullptr : &closed;
    if (state->callbacks > 0) {
      state->close_wanted = true;
    } else {
      close(*state);
    }
  });
  if (begun && !on_loop) {
    closed.wait(orv_client::steady_clock::time_point::max());
  }
} catch (...) {  // no memory to have it done by the loop's thread
}
