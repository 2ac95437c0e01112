// orv-screenshot: writes what the X display shows to a PNG file.

// Before X.h, whose macros (Success) break it.
#include <CLI/CLI.hpp>

#include <X11/Xlib.h>
#include <cairo-xlib.h>

#include <cstdio>

#include "../ui/handles.h"

namespace {

handle<cairo_surface_t> root_surface(Display* display) {
  const int screen = DefaultScreen(display);
  return handle<cairo_surface_t>{cairo_xlib_surface_create(
      display, RootWindow(display, screen), DefaultVisual(display, screen),
      DisplayWidth(display, screen), DisplayHeight(display, screen))};
}

int fail(const char* what, const char* with, const char* why) {
  fprintf(stderr, "orv-screenshot: %s %s%s\n", what, with, why);
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App parser{"Writes a picture of the X display (DISPLAY) to a PNG file."};
  std::string file;
  parser.add_option("FILE.png", file, "the file to write")->required();
  CLI11_PARSE(parser, argc, argv);

  const handle<Display> display{XOpenDisplay(nullptr)};
  if (!display) return fail("cannot open the display", XDisplayName(nullptr), "");
  const handle<cairo_surface_t> root = root_surface(display.get());
  const cairo_status_t status = cairo_surface_write_to_png(root.get(), file.c_str());
  if (status == CAIRO_STATUS_SUCCESS) return 0;
  return fail("cannot write", file.c_str(),
              (std::string{": "} + cairo_status_to_string(status)).c_str());
}
