#include "window.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/extensions/XInput2.h>
#include <cairo-xlib.h>
#include <unistd.h>

#include <cstdio>

#include "paint.h"

namespace {

// Other threads are asleep all over the process: it ends without waiting for any.
[[noreturn]] void give_up(const char* what, const char* with) {
  fprintf(stderr, "lumen-ui-host: %s %s\n", what, with);
  _exit(1);
}

int on_x_error(Display* display, XErrorEvent* error) {
  char text[128];
  XGetErrorText(display, error->error_code, text, sizeof text);
  give_up("X error:", text);
}

int on_lost_server(Display* display) {
  give_up("lost the X server", DisplayString(display));
}

handle<Display> open_display() {
  XSetErrorHandler(on_x_error);
  XSetIOErrorHandler(on_lost_server);
  handle<Display> display{XOpenDisplay(nullptr)};
  if (!display) give_up("no X server answers at the display", XDisplayName(nullptr));
  return display;
}

Window create_window(Display* display) {
  XSetWindowAttributes attributes{};
  attributes.background_pixel = BlackPixel(display, DefaultScreen(display));
  attributes.event_mask = ExposureMask | ButtonPressMask | ButtonReleaseMask | Button1MotionMask;
  const Window id = XCreateWindow(display, DefaultRootWindow(display), 0, 0, screen_width,
                                  screen_height, 0, CopyFromParent, InputOutput, CopyFromParent,
                                  CWBackPixel | CWEventMask, &attributes);
  char name[] = "lumen-ui-host";
  XClassHint hint{name, name};
  XSetClassHint(display, id, &hint);
  XStoreName(display, id, name);
  return id;
}

// Raw events come whatever window has the focus and whoever has grabbed the keyboard, as
// a camera's keys do. Returns the opcode that marks them.
int select_keys(Display* display) {
  int opcode = 0, event = 0, error = 0, major = 2, minor = 2;
  if (XQueryExtension(display, "XInputExtension", &opcode, &event, &error) == 0 ||
      XIQueryVersion(display, &major, &minor) != Success)
    give_up("needs XInput 2.2, which is not in the X server", DisplayString(display));
  unsigned char bits[XIMaskLen(XI_LASTEVENT)] = {};
  XISetMask(bits, XI_RawKeyPress);
  XISetMask(bits, XI_RawKeyRelease);
  XIEventMask mask{XIAllMasterDevices, sizeof bits, bits};
  XISelectEvents(display, DefaultRootWindow(display), &mask, 1);
  return opcode;
}

handle<cairo_surface_t> window_surface(Display* display, Window id) {
  return handle<cairo_surface_t>{cairo_xlib_surface_create(
      display, id, DefaultVisual(display, DefaultScreen(display)), screen_width, screen_height)};
}

arrival key_arrival(Display* display, XGenericEventCookie& cookie) {
  if (XGetEventData(display, &cookie) == 0) return {arrival_kind::other, 0, {}};
  const int keycode = static_cast<const XIRawEvent*>(cookie.data)->detail;
  const bool down = cookie.evtype == XI_RawKeyPress;
  XFreeEventData(display, &cookie);
  return {down ? arrival_kind::key_down : arrival_kind::key_up, keycode, {}};
}

arrival button_arrival(const XButtonEvent& event) {
  if (event.button != Button1) return {arrival_kind::other, 0, {}};
  return {event.type == ButtonPress ? arrival_kind::touch_down : arrival_kind::touch_up,
          0,
          {event.x, event.y}};
}

}  // namespace

window show_window() {
  handle<Display> display = open_display();
  const Window id = create_window(display.get());
  const int opcode = select_keys(display.get());
  const Atom property = XInternAtom(display.get(), "_ORV_LAST_INPUT", False);
  handle<cairo_surface_t> surface = window_surface(display.get(), id);
  XMapRaised(display.get(), id);
  return {std::move(display), id, property, opcode, std::move(surface)};
}

std::bitset<256> keys_down(Display* display) {
  char map[32];
  XQueryKeymap(display, map);
  std::bitset<256> down;
  for (std::size_t keycode = 0; keycode < down.size(); keycode++)
    down[keycode] = (map[keycode / 8] & (1 << keycode % 8)) != 0;
  return down;
}

arrival next_arrival(window& shown) {
  XEvent event;
  XNextEvent(shown.display.get(), &event);
  switch (event.type) {
    case Expose:
      return {arrival_kind::exposed, 0, {}};
    case ButtonPress:
    case ButtonRelease:
      return button_arrival(event.xbutton);
    case MotionNotify:
      return {arrival_kind::touch_move, 0, {event.xmotion.x, event.xmotion.y}};
    case GenericEvent:
      if (event.xcookie.extension == shown.xinput_opcode)
        return key_arrival(shown.display.get(), event.xcookie);
      [[fallthrough]];
    default:
      return {arrival_kind::other, 0, {}};
  }
}

void publish_input(window& shown, const std::string& text) {
  XChangeProperty(shown.display.get(), shown.id, shown.input_property, XA_STRING, 8,
                  PropModeReplace, reinterpret_cast<const unsigned char*>(text.data()),
                  static_cast<int>(text.size()));
  XFlush(shown.display.get());
}

void show_picture(window& shown, cairo_surface_t* picture) {
  const handle<cairo_t> context{cairo_create(shown.surface.get())};
  cairo_set_source_surface(context.get(), picture, 0, 0);
  cairo_paint(context.get());
  cairo_surface_flush(shown.surface.get());
  XFlush(shown.display.get());
}
