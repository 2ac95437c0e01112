// What the scene's painters share: where things are, light, and chance.
#pragma once

#include <cstdint>

#include "../handles.h"
#include "paint.h"

inline constexpr double shore_y = 298;
inline constexpr double sun_x = 566;
inline constexpr double sun_y = 196;

// Fixed seed: the picture is the same at every start.
class dice {
 public:
  double roll(double low, double high) {
    state_ = state_ * 6364136223846793005U + 1442695040888963407U;
    return low + (high - low) * static_cast<double>(state_ >> 40U) / static_cast<double>(1U << 24U);
  }

 private:
  std::uint64_t state_ = 20240607;
};

void glow(cairo_t* context, double x, double y, double radius, color ink);
// A round glow, drawn out sideways.
void streak(cairo_t* context, double x, double y, double width, double height, color ink);

// `land` is the picture down to the shore, which the lake mirrors.
void paint_lake(cairo_t* context, cairo_surface_t* land, dice& chance);
void paint_bank(cairo_t* context, dice& chance);
