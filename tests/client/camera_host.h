// A host process on the test's store, and the library's handles.
#ifndef ORV_TESTS_CLIENT_CAMERA_HOST_H
#define ORV_TESTS_CLIENT_CAMERA_HOST_H

#include <gtest/gtest.h>
#include <orv/client.h>
#include <orv/protocol.h>
#include <signal.h>
#include <stdlib.h>

#include <memory>
#include <string>

#include "keys.h"
#include "process.h"

namespace orv_test {

struct client_closer {
  void operator()(orv_camera* camera) const { orv_camera_close(camera); }
  void operator()(orv_reply* reply) const { orv_reply_free(reply); }
};
using camera_handle = std::unique_ptr<orv_camera, client_closer>;
using reply_handle = std::unique_ptr<orv_reply, client_closer>;

inline std::string store_directory() {
  return getenv("ORV_PLATFORM_ROOT");
}

inline reply_handle ask(const camera_handle& camera, const orv_request& request,
                        uint32_t timeout_ms = 5000) {
  return reply_handle{orv_ask(camera.get(), &request, timeout_ms)};
}

// "1 8 message": outcome, reason and message of what could not be opened, or "open".
inline std::string opening(const char* address) {
  orv_reply* failure = nullptr;
  const camera_handle camera{orv_camera_open(address, &failure)};
  const reply_handle owned{failure};
  return camera ? "open"
                : std::to_string(failure->outcome) + " " + std::to_string(failure->why) + " " +
                      failure->message;
}

class ClientTest : public testing::Test {
 protected:
  void SetUp() override {
    vconf_set_int(VCONFKEY_ORV_RESULT, 99);
    host_ = std::make_unique<background>(std::vector<std::string>{"orv-host"});
    // The agent's start resets the keys, so a command that comes too early is lost.
    ASSERT_TRUE(eventually([] { return number_at(VCONFKEY_ORV_RESULT) == ORV_RESULT_NONE; }));
    camera_.reset(orv_camera_open(nullptr, nullptr));
    ASSERT_TRUE(camera_);
    ASSERT_TRUE(eventually([this] { return ask(camera_, orv_identity_request(), 100)->why == 0; }));
  }

  std::unique_ptr<background> host_;
  camera_handle camera_;
};

}  // namespace orv_test

#endif
