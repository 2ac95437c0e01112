// Before Xlib, whose macros take names of it.
#include <gtest/gtest.h>

#include "input_recorder.h"

#include <X11/Xproto.h>
#include <X11/extensions/XTest.h>
#include <poll.h>
#include <string.h>

#include <chrono>
#include <utility>

namespace orv_test {
namespace {

// A key that the camera does not have: what comes before it has arrived once it has.
constexpr unsigned fence_keycode = 9;
constexpr auto deadline = std::chrono::seconds{5};

std::string place(int x, int y) {
  return std::to_string(x) + "," + std::to_string(y);
}

}  // namespace

input_recorder::input_recorder() : control_{XOpenDisplay(nullptr)}, data_{XOpenDisplay(nullptr)} {
  XRecordClientSpec clients = XRecordAllClients;
  const std::unique_ptr<XRecordRange, int (*)(void*)> range{XRecordAllocRange(), XFree};
  range->device_events.first = KeyPress;
  range->device_events.last = MotionNotify;
  XRecordRange* ranges = range.get();
  context_ = XRecordCreateContext(control_.get(), 0, &clients, 1, &ranges, 1);
  XSync(control_.get(), False);
  EXPECT_NE(
      XRecordEnableContextAsync(data_.get(), context_, received, reinterpret_cast<XPointer>(this)),
      0);
  take();
}

// A connection that records answers nothing else, its closing included.
input_recorder::~input_recorder() {
  XRecordDisableContext(control_.get(), context_);
  XSync(control_.get(), False);
  data_.reset();  // its closing still delivers what was recorded
}

std::vector<std::string> input_recorder::take() {
  XTestFakeKeyEvent(control_.get(), fence_keycode, True, CurrentTime);
  XTestFakeKeyEvent(control_.get(), fence_keycode, False, CurrentTime);
  XSync(control_.get(), False);
  fence_seen_ = false;
  const auto end = std::chrono::steady_clock::now() + deadline;
  while (!fence_seen_ && std::chrono::steady_clock::now() < end) {
    pollfd connection{ConnectionNumber(data_.get()), POLLIN, 0};
    poll(&connection, 1, 100);
    XRecordProcessReplies(data_.get());
  }
  EXPECT_TRUE(fence_seen_) << "nothing recorded";
  return std::exchange(seen_, {});
}

std::string input_recorder::pointer() const {
  Window ignored = None;
  int x = 0;
  int y = 0;
  int ignored_place = 0;
  unsigned buttons = 0;
  XQueryPointer(control_.get(), DefaultRootWindow(control_.get()), &ignored, &ignored, &x, &y,
                &ignored_place, &ignored_place, &buttons);
  return place(x, y) + ((buttons & Button1Mask) != 0 ? " down" : " up");
}

void input_recorder::received(XPointer self, XRecordInterceptData* data) {
  if (data->category == XRecordFromServer) {
    static_cast<input_recorder*>(static_cast<void*>(self))->note(data->data);
  }
  XRecordFreeData(data);
}

void input_recorder::note(const unsigned char* bytes) {
  xEvent event;
  memcpy(&event, bytes, sizeof event);
  const int detail = event.u.u.detail;
  switch (event.u.u.type) {
    case KeyPress:
    case KeyRelease:
      if (detail != fence_keycode) {
        seen_.push_back((event.u.u.type == KeyPress ? "press " : "release ") +
                        std::to_string(detail));
      } else if (event.u.u.type == KeyRelease) {
        fence_seen_ = true;
      }
      break;
    case ButtonPress:
    case ButtonRelease:
      seen_.push_back("button " + std::to_string(detail) +
                      (event.u.u.type == ButtonPress ? " down" : " up"));
      break;
    default:
      seen_.push_back("move " +
                      place(event.u.keyButtonPointer.rootX, event.u.keyButtonPointer.rootY));
  }
}

}  // namespace orv_test
