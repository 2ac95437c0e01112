#include "handler/injection.h"

#include <X11/extensions/XTest.h>

#include "handler/x_connection.h"

namespace orv {
namespace {

constexpr int current_screen = -1;
constexpr unsigned touch_button = 1;

// XTest answers 0 when the server does not have it.
bool send_key(Display* display, int32_t keycode, bool press) {
  return XTestFakeKeyEvent(display, static_cast<unsigned>(keycode), press ? True : False,
                           CurrentTime) != 0;
}

}  // namespace

bool inject_key(int32_t keycode, bool press) noexcept {
  return x_connection{}.run([&](Display* display) { return send_key(display, keycode, press); });
}

bool inject_key_tap(int32_t keycode) noexcept {
  return x_connection{}.run([&](Display* display) {
    return send_key(display, keycode, true) && send_key(display, keycode, false);
  });
}

bool inject_touch(int32_t x, int32_t y, bool press) noexcept {
  return x_connection{}.run([&](Display* display) {
    return XTestFakeMotionEvent(display, current_screen, x, y, CurrentTime) != 0 &&
           XTestFakeButtonEvent(display, touch_button, press ? True : False, CurrentTime) != 0;
  });
}

}  // namespace orv
