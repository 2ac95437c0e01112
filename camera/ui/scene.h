// The picture before the lens: a lake in the mountains at sunset.
#pragma once

#include <array>

#include "../handles.h"

inline constexpr int histogram_bins = 64;

struct scene {
  handle<cairo_surface_t> picture;               // screen_width x screen_height
  std::array<double, histogram_bins> histogram;  // brightness, highest bin 1
};

scene paint_scene();
