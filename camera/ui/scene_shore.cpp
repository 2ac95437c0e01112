#include <cmath>

#include "scene_parts.h"

namespace {

// The land upside down, flattened and darker.
void paint_reflection(cairo_t* context, cairo_surface_t* land) {
  cairo_save(context);
  cairo_rectangle(context, 0, shore_y, screen_width, screen_height - shore_y);
  cairo_clip(context);
  cairo_translate(context, 0, shore_y * 1.62);
  cairo_scale(context, 1, -0.62);
  cairo_set_source_surface(context, land, 0, 0);
  cairo_paint(context);
  cairo_restore(context);
  cairo_rectangle(context, 0, shore_y, screen_width, screen_height - shore_y);
  set_ink(context, {0.03, 0.09, 0.17, 0.45});
  cairo_fill(context);
}

void paint_ripples(cairo_t* context, dice& chance) {
  for (int ripple = 0; ripple < 150; ripple++) {
    const double depth = chance.roll(0, 1);
    const double y = shore_y + 3 + depth * depth * 150;
    const color ink =
        chance.roll(0, 1) < 0.5 ? color{1, 0.85, 0.66, 0.16} : color{0, 0.03, 0.1, 0.2};
    streak(context, chance.roll(0, 800), y, 50 + 160 * depth, 1.4 + 3 * depth, ink);
  }
}

void paint_glints(cairo_t* context, dice& chance) {
  for (int glint = 0; glint < 70; glint++) {
    const double depth = chance.roll(0, 1);
    const double spread = 14 + 46 * depth;
    streak(context, sun_x + chance.roll(-spread, spread), shore_y + 3 + depth * 120,
           18 + 52 * depth, 2 + 2.6 * depth, {1, 0.86, 0.6, 0.5});
  }
}

void paint_pine(cairo_t* context, double x, double foot_y, double height, dice& chance) {
  constexpr int tiers = 7;
  for (int tier = 0; tier < tiers; tier++) {
    const double top = foot_y - height + height * tier / (tiers + 1.5);
    const double half_width = height * (0.045 + 0.028 * tier) * chance.roll(0.85, 1.15);
    const double bottom = top + height * 0.24;
    cairo_move_to(context, x, top);
    cairo_line_to(context, x - half_width, bottom);
    cairo_line_to(context, x + half_width, bottom);
    cairo_close_path(context);
  }
  cairo_rectangle(context, x - height * 0.015, foot_y - height * 0.2, height * 0.03, height * 0.24);
  cairo_fill(context);
}

double bank_y(double x) {
  return 452 - 66 * std::pow(std::abs(x - 430) / 430, 2.2) + 5 * std::sin(x / 23) +
         2 * std::sin(x / 7);
}

}  // namespace

void paint_lake(cairo_t* context, cairo_surface_t* land, dice& chance) {
  paint_reflection(context, land);
  paint_ripples(context, chance);
  paint_glints(context, chance);
}

void paint_bank(cairo_t* context, dice& chance) {
  set_ink(context, {0.035, 0.055, 0.075});
  cairo_move_to(context, 0, screen_height);
  for (int x = 0; x <= screen_width; x += 3) cairo_line_to(context, x, bank_y(x));
  cairo_line_to(context, screen_width, screen_height);
  cairo_fill(context);
  for (int tree = 0; tree < 34; tree++) {
    const double from_edge = 250 * std::pow(chance.roll(0, 1), 1.6);
    const double x = tree % 2 == 0 ? from_edge : screen_width - from_edge;
    const double height = (150 - from_edge * 0.44) * chance.roll(0.6, 1.15);
    paint_pine(context, x, bank_y(x) + 6, height, chance);
  }
}
