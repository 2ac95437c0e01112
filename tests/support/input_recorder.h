// What reaches an X server's devices, seen by another client of it.
#ifndef ORV_TESTS_SUPPORT_INPUT_RECORDER_H
#define ORV_TESTS_SUPPORT_INPUT_RECORDER_H

#include <gtest/gtest.h>  // first: Xlib has macros that break it

#include <X11/Xlib.h>
#include <X11/Xproto.h>
#include <X11/extensions/XTest.h>
#include <X11/extensions/record.h>
#include <poll.h>
#include <string.h>

#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace orv_test {

struct display_closer {
  void operator()(Display* display) const { XCloseDisplay(display); }
};
using x_client = std::unique_ptr<Display, display_closer>;

class input_recorder {
 public:
  // Of the display of the environment.
  input_recorder() {
    XRecordClientSpec clients = XRecordAllClients;
    const std::unique_ptr<XRecordRange, int (*)(void*)> range{XRecordAllocRange(), XFree};
    range->device_events.first = KeyPress;
    range->device_events.last = MotionNotify;
    XRecordRange* ranges = range.get();
    context_ = XRecordCreateContext(control_.get(), 0, &clients, 1, &ranges, 1);
    XSync(control_.get(), False);
    auto* const self = reinterpret_cast<XPointer>(this);
    EXPECT_NE(XRecordEnableContextAsync(data_.get(), context_, received, self), 0);
    take();
  }
  input_recorder(const input_recorder&) = delete;
  input_recorder& operator=(const input_recorder&) = delete;
  // A connection that records answers nothing else, its closing included.
  ~input_recorder() {
    XRecordDisableContext(control_.get(), context_);
    XSync(control_.get(), False);
    data_.reset();  // its closing still delivers what was recorded
  }

  // What has happened since the last call, in order: "press 104", "release 104", "move 100,200",
  // "button 1 down", "button 1 up".
  std::vector<std::string> take() {
    XTestFakeKeyEvent(control_.get(), fence_keycode, True, CurrentTime);
    XTestFakeKeyEvent(control_.get(), fence_keycode, False, CurrentTime);
    XSync(control_.get(), False);
    fence_seen_ = false;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds{5};
    while (!fence_seen_ && std::chrono::steady_clock::now() < end) {
      pollfd connection{ConnectionNumber(data_.get()), POLLIN, 0};
      poll(&connection, 1, 100);
      XRecordProcessReplies(data_.get());
    }
    EXPECT_TRUE(fence_seen_) << "nothing recorded";
    return std::exchange(seen_, {});
  }

 private:
  // A key that the camera does not have: what comes before it has arrived once it has.
  static constexpr unsigned fence_keycode = 9;

  static void received(XPointer self, XRecordInterceptData* data) {
    if (data->category == XRecordFromServer) {
      static_cast<input_recorder*>(static_cast<void*>(self))->note(data->data);
    }
    XRecordFreeData(data);
  }

  void note(const unsigned char* bytes) {
    xEvent event;
    memcpy(&event, bytes, sizeof event);
    const auto& place = event.u.keyButtonPointer;
    const int type = event.u.u.type;
    const std::string detail = std::to_string(event.u.u.detail);
    if (event.u.u.detail == fence_keycode) {
      fence_seen_ = fence_seen_ || type == KeyRelease;
    } else if (type == KeyPress || type == KeyRelease) {
      seen_.push_back((type == KeyPress ? "press " : "release ") + detail);
    } else if (type == ButtonPress || type == ButtonRelease) {
      seen_.push_back("button " + detail + (type == ButtonPress ? " down" : " up"));
    } else {
      seen_.push_back("move " + std::to_string(place.rootX) + "," + std::to_string(place.rootY));
    }
  }

  x_client control_{XOpenDisplay(nullptr)};
  x_client data_{XOpenDisplay(nullptr)};
  XRecordContext context_ = 0;
  std::vector<std::string> seen_;
  bool fence_seen_ = false;
};

}  // namespace orv_test

#endif
