// Displays that fail an injection: the process lives on, and nothing is left of it.

#include <gmock/gmock.h>
#include <signal.h>
#include <stdlib.h>

#include <chrono>
#include <latch>
#include <optional>
#include <thread>

#include "injection_probe.h"
#include "input_recorder.h"
#include "x_relay.h"
#include "x_server.h"

#ifdef ORV_FOREIGN_EXIT_HANDLER
// From another library than the one that opens displays: the agent must do without it, as with an
// Xlib that has none.
extern "C" void __real_XSetIOErrorExitHandler(Display*, XIOErrorExitHandler, void*);
extern "C" void __wrap_XSetIOErrorExitHandler(Display*, XIOErrorExitHandler, void*) {
  ADD_FAILURE() << "the agent showed a display to another library";
}
#define XSetIOErrorExitHandler __real_XSetIOErrorExitHandler
#endif

namespace {

using orv_test::failed;
using orv_test::key;
using orv_test::ok;
using orv_test::touch;
using orv_test::virtual_key;
using orv_test::x_relay;
using orv_test::x_server;

constexpr int server_display = 71;

int error_of_host = 0;
int lost_of_host = 0;

int host_error(Display* /*display*/, XErrorEvent* event) {
  error_of_host = event->error_code;
  return 0;
}
int host_lost(Display* /*display*/) {
  ++lost_of_host;
  return 0;
}

class LostServer : public orv_test::InjectionTest {
 protected:
  void SetUp() override {
    InjectionTest::SetUp();
    error_of_host = 0;
    lost_of_host = 0;
    XSetErrorHandler(host_error);
    XSetIOErrorHandler(host_lost);
    descriptors_ = orv_test::count_descriptors();
  }

  // The process is as the host had it.
  void TearDown() override {
    setenv("DISPLAY", display_.c_str(), 1);
    EXPECT_EQ(XSetErrorHandler(nullptr), host_error);
    EXPECT_EQ(XSetIOErrorHandler(nullptr), host_lost);
    sigset_t signals;
    sigpending(&signals);
    EXPECT_EQ(sigismember(&signals, SIGPIPE), 0);
    pthread_sigmask(SIG_SETMASK, nullptr, &signals);
    EXPECT_EQ(sigismember(&signals, SIGPIPE), 0);
    EXPECT_EQ(orv_test::count_descriptors(), descriptors_);
  }

  const std::string display_ = getenv("DISPLAY");
  long descriptors_ = 0;
};

TEST_F(LostServer, FailsWhenTheServerTakesNoSyntheticInput) {
  const x_server server{server_display, "-extension XTEST"};
  setenv("DISPLAY", server.name().c_str(), 1);
  orv_test::take_messages();
  EXPECT_EQ(key("KEY_OK", ORV_PRESS), failed);
  EXPECT_EQ(touch(ORV_PRESS, 1, 1), failed);
  EXPECT_THAT(orv_test::take_messages(), testing::Not(testing::Contains("I lumen-ui-host exist ")));
}

TEST_F(LostServer, OutlivesServersThatAreKilledInABurstAndWorksWithTheNext) {
  x_server server{server_display};
  setenv("DISPLAY", server.name().c_str(), 1);
  for (int round = 0; round < 8; ++round) {
    std::thread killer{[&] {
      std::this_thread::sleep_for(std::chrono::microseconds{500 + round * 433});
      server.kill();
    }};
    while (virtual_key("KEY_OK") != failed) {
    }
    killer.join();
    EXPECT_EQ(key("KEY_OK", ORV_PRESS), failed) << "there is no server";
    EXPECT_EQ(touch(ORV_PRESS, 1, 1), failed);
    server.start();
    EXPECT_EQ(virtual_key("KEY_OK"), failed) << "the earlier failure";
    EXPECT_EQ(virtual_key("KEY_OK"), ok);
  }
}

class Relayed : public LostServer {
 protected:
  void SetUp() override {
    LostServer::SetUp();
    relay_.emplace();
  }
  void TearDown() override {
    relay_.reset();
    LostServer::TearDown();
  }

  std::optional<x_relay> relay_;
};

TEST_F(Relayed, OutlivesALossAnywhereInTheConnection) {
  ASSERT_EQ(virtual_key("KEY_OK"), ok);
  const size_t all = relay_->bytes_sent();
  ASSERT_GT(all, 500U);
  // A reply has 32 bytes: the losses fall between replies and in their midst.
  for (size_t bytes = all % 16; bytes < all; bytes += 16) {
    SCOPED_TRACE(bytes);
    relay_->cut_after(bytes);
    ASSERT_EQ(virtual_key("KEY_OK"), failed);
    relay_->cut_after(x_relay::never);
    ASSERT_EQ(virtual_key("KEY_OK"), failed) << "the earlier failure";
    ASSERT_EQ(virtual_key("KEY_OK"), ok);
  }
}

TEST_F(Relayed, FailsWhenTheServerRefusesAnEvent) {
  relay_->change_keycode(104, 5);  // no server has keycode 5
  EXPECT_EQ(key("KEY_OK", ORV_PRESS), failed);
  EXPECT_EQ(virtual_key("KEY_OK"), failed);
  EXPECT_EQ(virtual_key("KEY_UP"), failed) << "the earlier failure";
  EXPECT_EQ(virtual_key("KEY_UP"), ok);
  EXPECT_EQ(error_of_host, 0);
}

TEST_F(Relayed, LeavesOtherThreadsErrorsToTheHost) {
  const x_server doomed{server_display};
  std::latch connected{1};
  std::thread host{[&] {
    const orv_test::x_client own{XOpenDisplay(display_.c_str())};
    const orv_test::x_client lost{XOpenDisplay(doomed.name().c_str())};
    XSetIOErrorExitHandler(
        lost.get(), [](Display*, void*) {}, nullptr);
    relay_->hold(true);
    connected.count_down();
    while (!relay_->serving()) {
      std::this_thread::yield();
    }
    XMapWindow(own.get(), None);
    XSync(own.get(), False);
    ::kill(doomed.pid(), SIGKILL);
    XSync(lost.get(), False);
    relay_->hold(false);
  }};
  connected.wait();
  EXPECT_EQ(virtual_key("KEY_OK"), ok);
  host.join();
  EXPECT_EQ(error_of_host, BadWindow);
  EXPECT_EQ(lost_of_host, 1);
}

}  // namespace
