#include "screen_reader.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

#include <memory>

#include "process.h"

namespace {

struct x_free {
  void operator()(void* data) const noexcept { XFree(data); }
};
template <class T>
using x_data = std::unique_ptr<T, x_free>;

Window application_window(Display* display) {
  Window root = 0, parent = 0, *children = nullptr;
  unsigned count = 0;
  XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count);
  const x_data<Window> owner{children};
  for (unsigned i = 0; i < count; i++) {
    char* name = nullptr;
    if (XFetchName(display, children[i], &name) == 0) continue;
    const x_data<char> name_owner{name};
    if (std::string_view{name} == "lumen-ui-host") return children[i];
  }
  return None;
}

}  // namespace

std::string screen_reader::input_text() const {
  const Window application = application_window(display.get());
  if (application == None) return "";
  Atom type = None;
  int format = 0;
  unsigned long length = 0, rest = 0;
  unsigned char* text = nullptr;
  XGetWindowProperty(display.get(), application,
                     XInternAtom(display.get(), "_ORV_LAST_INPUT", False), 0, 4096, False,
                     XA_STRING, &type, &format, &length, &rest, &text);
  const x_data<unsigned char> owner{text};
  return {reinterpret_cast<const char*>(text), length};
}

unsigned long screen_reader::pixel(int x, int y) const {
  XImage* image =
      XGetImage(display.get(), DefaultRootWindow(display.get()), x, y, 1, 1, AllPlanes, ZPixmap);
  const unsigned long color = XGetPixel(image, 0, 0) & 0xffffffU;
  XDestroyImage(image);
  return color;
}

void screen_reader::key(int keycode, bool down) const {
  XTestFakeKeyEvent(display.get(), static_cast<unsigned>(keycode), down ? True : False, 0);
  XSync(display.get(), False);
}

void screen_reader::touch_at(int x, int y, bool down) const {
  XTestFakeMotionEvent(display.get(), -1, x, y, 0);
  XTestFakeButtonEvent(display.get(), Button1, down ? True : False, 0);
  XSync(display.get(), False);
}

void screen_reader::move_to(int x, int y) const {
  XTestFakeMotionEvent(display.get(), -1, x, y, 0);
  XSync(display.get(), False);
}

bool comes_true(const std::function<bool()>& holds) {
  return orv_test::eventually(holds, 10'000);
}

std::string awaited_input(const screen_reader& reader, const std::string& text) {
  comes_true([&] { return reader.input_text() == text; });
  return reader.input_text();
}
