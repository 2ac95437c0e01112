#include "scene.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "paint.h"
#include "scene_parts.h"

namespace {

struct color_stop {
  double offset;
  color ink;
};

constexpr color_stop sky_stops[] = {
    {0.0, {0.07, 0.14, 0.29}},  {0.35, {0.20, 0.33, 0.54}}, {0.62, {0.62, 0.52, 0.60}},
    {0.82, {0.96, 0.66, 0.44}}, {1.0, {1.00, 0.84, 0.58}},
};

handle<cairo_pattern_t> sky_gradient(double from_y, double to_y) {
  handle<cairo_pattern_t> gradient{cairo_pattern_create_linear(0, from_y, 0, to_y)};
  for (const auto& [offset, ink] : sky_stops)
    cairo_pattern_add_color_stop_rgb(gradient.get(), offset, ink.red, ink.green, ink.blue);
  return gradient;
}

void paint_sky(cairo_t* context, dice& chance) {
  cairo_set_source(context, sky_gradient(0, shore_y).get());
  cairo_paint(context);
  for (int cloud = 0; cloud < 46; cloud++) {
    const double y = chance.roll(60, 236);
    const color ink{1.0, 0.72 + chance.roll(-0.1, 0.1), 0.62, chance.roll(0.04, 0.17)};
    streak(context, chance.roll(-60, 860), y, chance.roll(120, 380), chance.roll(5, 17), ink);
  }
  glow(context, sun_x, sun_y, 330, {1.0, 0.74, 0.42, 0.55});
  glow(context, sun_x, sun_y, 90, {1.0, 0.92, 0.72, 0.9});
  glow(context, sun_x, sun_y, 44, {1.0, 0.97, 0.85, 1});
  cairo_arc(context, sun_x, sun_y, 17, 0, 2 * std::numbers::pi);
  set_ink(context, {1.0, 0.99, 0.93});
  cairo_fill(context);
}

struct ridge {
  double base_y;
  double height;
  double phase;
  color ink;
};

constexpr ridge ridges[] = {
    {248, 74, 0.4, {0.52, 0.46, 0.58}},
    {266, 58, 2.3, {0.37, 0.36, 0.50}},
    {282, 44, 4.6, {0.24, 0.27, 0.39}},
    {298, 30, 1.1, {0.13, 0.17, 0.25}},
};

// Between -1 and 1; the shorter waves make the crest jagged.
double crest(double x, double phase) {
  const double slope = x / 800 * 2 * std::numbers::pi;
  return 0.50 * std::sin(1.3 * slope + phase) + 0.26 * std::sin(3.1 * slope + 2.1 * phase) +
         0.13 * std::asin(std::sin(8.7 * slope + 3.7 * phase)) / 1.5 +
         0.07 * std::asin(std::sin(23 * slope + 5.3 * phase)) / 1.5 +
         0.04 * std::sin(61 * slope + 7.9 * phase);
}

void paint_ridge(cairo_t* context, const ridge& mountains) {
  cairo_move_to(context, 0, shore_y);
  for (int x = 0; x <= screen_width; x += 2) {
    cairo_line_to(context, x,
                  mountains.base_y - mountains.height * (0.5 + crest(x, mountains.phase) / 2));
  }
  cairo_line_to(context, screen_width, shore_y);
  cairo_close_path(context);
  const handle<cairo_pattern_t> haze{
      cairo_pattern_create_linear(0, mountains.base_y - mountains.height, 0, shore_y)};
  const color& ink = mountains.ink;
  cairo_pattern_add_color_stop_rgb(haze.get(), 0, ink.red, ink.green, ink.blue);
  cairo_pattern_add_color_stop_rgb(haze.get(), 1, ink.red * 0.7 + 0.28, ink.green * 0.7 + 0.20,
                                   ink.blue * 0.7 + 0.15);
  cairo_set_source(context, haze.get());
  cairo_fill(context);
}

void paint_vignette(cairo_t* context) {
  const handle<cairo_pattern_t> shade{cairo_pattern_create_radial(420, 230, 260, 420, 230, 560)};
  cairo_pattern_add_color_stop_rgba(shade.get(), 0, 0, 0, 0, 0);
  cairo_pattern_add_color_stop_rgba(shade.get(), 1, 0, 0, 0, 0.5);
  cairo_set_source(context, shade.get());
  cairo_paint(context);
}

handle<cairo_surface_t> new_picture() {
  return handle<cairo_surface_t>{
      cairo_image_surface_create(CAIRO_FORMAT_RGB24, screen_width, screen_height)};
}

std::array<double, histogram_bins> brightness(cairo_surface_t* picture) {
  std::array<double, histogram_bins> bins{};
  cairo_surface_flush(picture);
  const unsigned char* row = cairo_image_surface_get_data(picture);
  for (int y = 0; y < screen_height; y++, row += cairo_image_surface_get_stride(picture)) {
    for (const unsigned char* pixel = row; pixel < row + 4L * screen_width; pixel += 4) {
      const unsigned luma = (pixel[0] * 29U + pixel[1] * 150U + pixel[2] * 77U) / 256;
      bins[luma * histogram_bins / 256]++;
    }
  }
  const double highest = *std::max_element(bins.begin(), bins.end());
  for (double& bin : bins) bin /= highest;
  return bins;
}

}  // namespace

void glow(cairo_t* context, double x, double y, double radius, color ink) {
  const handle<cairo_pattern_t> light{cairo_pattern_create_radial(x, y, 0, x, y, radius)};
  cairo_pattern_add_color_stop_rgba(light.get(), 0, ink.red, ink.green, ink.blue, ink.alpha);
  cairo_pattern_add_color_stop_rgba(light.get(), 1, ink.red, ink.green, ink.blue, 0);
  cairo_set_source(context, light.get());
  cairo_rectangle(context, x - radius, y - radius, 2 * radius, 2 * radius);
  cairo_fill(context);
}

void streak(cairo_t* context, double x, double y, double width, double height, color ink) {
  cairo_save(context);
  cairo_translate(context, x, y);
  cairo_scale(context, width / 2, height / 2);
  glow(context, 0, 0, 1, ink);
  cairo_restore(context);
}

scene paint_scene() {
  dice chance;
  const handle<cairo_surface_t> land = new_picture();
  const handle<cairo_t> land_context{cairo_create(land.get())};
  paint_sky(land_context.get(), chance);
  for (const ridge& mountains : ridges) paint_ridge(land_context.get(), mountains);

  handle<cairo_surface_t> picture = new_picture();
  const handle<cairo_t> context{cairo_create(picture.get())};
  cairo_set_source_surface(context.get(), land.get(), 0, 0);
  cairo_paint(context.get());
  paint_lake(context.get(), land.get(), chance);
  paint_bank(context.get(), chance);
  paint_vignette(context.get());
  const std::array<double, histogram_bins> histogram = brightness(picture.get());
  return {std::move(picture), histogram};
}
