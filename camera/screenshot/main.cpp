// orv-screenshot: writes what the X display shows to a PNG file.

#include "../command_line.h"  // first: X.h has macros that break it

#include <X11/Xlib.h>
#include <cairo-xlib.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "../handles.h"

namespace {

handle<cairo_surface_t> root_surface(Display* display) {
  const int screen = DefaultScreen(display);
  return handle<cairo_surface_t>{cairo_xlib_surface_create(
      display, RootWindow(display, screen), DefaultVisual(display, screen),
      DisplayWidth(display, screen), DisplayHeight(display, screen))};
}

int fail(const char* what, const char* with, const char* why) {
  fprintf(stderr, "orv-screenshot: %s %s: %s\n", what, with, why);
  return 1;
}

int take_screenshot(const char* file) {
  const handle<Display> display{XOpenDisplay(nullptr)};
  if (!display)
    return fail("cannot open the display", XDisplayName(nullptr), "no X server answers there");
  const handle<cairo_surface_t> root = root_surface(display.get());
  const cairo_status_t status = cairo_surface_write_to_png(root.get(), file);
  if (status == CAIRO_STATUS_SUCCESS) return 0;
  const bool errno_says_more = status == CAIRO_STATUS_WRITE_ERROR && errno != 0;
  return fail("cannot write", file,
              errno_says_more ? strerror(errno) : cairo_status_to_string(status));
}

}  // namespace

int main(int argc, char** argv) try {
  CLI::App parser{"Writes a picture of the X display (DISPLAY) to a PNG file.", "orv-screenshot"};
  std::string file;
  parser.add_option("FILE.png", file, "the file to write")->required();
  if (const auto status = read_command_line(parser, argc, argv)) return *status;
  return take_screenshot(file.c_str());
} catch (const std::exception& error) {
  return fail("unexpected error", argv[0], error.what());
}
