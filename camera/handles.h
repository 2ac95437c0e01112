// Handles for what the camera's programs hold of X and cairo.
#pragma once

#include <X11/Xlib.h>
#include <cairo.h>

#include <memory>

struct closer {
  void operator()(Display* display) const noexcept { XCloseDisplay(display); }
  void operator()(cairo_t* context) const noexcept { cairo_destroy(context); }
  void operator()(cairo_surface_t* surface) const noexcept { cairo_surface_destroy(surface); }
  void operator()(cairo_pattern_t* pattern) const noexcept { cairo_pattern_destroy(pattern); }
};

template <class T>
using handle = std::unique_ptr<T, closer>;
