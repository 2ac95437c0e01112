#include <cstdio>
#include <numbers>

#include "paint.h"
#include "screen.h"

namespace {

constexpr double top_row_y = 24;
constexpr double bottom_row_y = 456;

void shade(cairo_t* context, double from_y, double to_y) {
  const handle<cairo_pattern_t> shadow{cairo_pattern_create_linear(0, from_y, 0, to_y)};
  cairo_pattern_add_color_stop_rgba(shadow.get(), 0, 0, 0, 0, 0.78);
  cairo_pattern_add_color_stop_rgba(shadow.get(), 1, 0, 0, 0, 0);
  cairo_set_source(context, shadow.get());
  cairo_rectangle(context, 0, std::min(from_y, to_y), screen_width, std::abs(to_y - from_y));
  cairo_fill(context);
}

// Returns where the badge ends.
double draw_badge(cairo_t* context, double x, const std::string& text) {
  const text_style style{17, {0.08, 0.08, 0.08}, align::center, true};
  const double width = std::max(34.0, text_width(context, text, style) + 18);
  fill_rounded(context, {x, top_row_y - 14, width, 28}, 6, amber);
  draw_text(context, x + width / 2, top_row_y, text, style);
  return x + width;
}

void draw_mode(cairo_t* context, const shooting_mode& mode) {
  const double end = draw_badge(context, 16, std::string{mode.badge});
  draw_text(context, end + 12, top_row_y, std::string{mode.title}, {15, white});
}

void draw_recording(cairo_t* context, const camera_state& camera, time_point now) {
  if (!camera.recording_since) return;
  const auto seconds =
      std::chrono::duration_cast<std::chrono::seconds>(now - *camera.recording_since).count();
  char text[32];
  snprintf(text, sizeof text, "REC %02lld:%02lld", static_cast<long long>(seconds / 60),
           static_cast<long long>(seconds % 60));
  fill_rounded(context, {348, 48, 104, 26}, 13, glass);
  cairo_arc(context, 362, 61, 5, 0, 2 * std::numbers::pi);
  set_ink(context, red);
  cairo_fill(context);
  draw_text(context, 374, 61, text, {13, white, align::left, true});
}

void draw_card(cairo_t* context, double x, int pictures_left) {
  const double y = top_row_y - 9;
  cairo_move_to(context, x, y);
  cairo_line_to(context, x + 9, y);
  cairo_line_to(context, x + 14, y + 5);
  cairo_line_to(context, x + 14, y + 18);
  cairo_line_to(context, x, y + 18);
  cairo_close_path(context);
  set_ink(context, white);
  cairo_set_line_width(context, 1.6);
  cairo_stroke(context);
  draw_text(context, x + 22, top_row_y, std::to_string(pictures_left), {16, white});
}

void draw_battery(cairo_t* context, double x) {
  outline_rounded(context, {x, top_row_y - 8, 32, 16}, 3, white, 1.6);
  fill_rounded(context, {x + 33.5, top_row_y - 3.5, 3.5, 7}, 1, white);
  for (int cell = 0; cell < 3; cell++)
    fill_rounded(context, {x + 3.5 + cell * 8.7, top_row_y - 4.5, 7.2, 9}, 1, green);
}

double scale_x(int thirds_ev) {
  return 400 + thirds_ev * 9.0;
}

void draw_compensation(cairo_t* context, int thirds_ev) {
  for (int tick = -max_compensation_thirds_ev; tick <= max_compensation_thirds_ev; tick++) {
    const bool whole = tick % 3 == 0;
    cairo_move_to(context, scale_x(tick), bottom_row_y + 8);
    cairo_line_to(context, scale_x(tick), bottom_row_y + (whole ? 0 : 4));
    set_ink(context, faded(white, whole ? 0.95 : 0.55));
    cairo_set_line_width(context, whole ? 1.6 : 1);
    cairo_stroke(context);
    if (whole) {
      draw_text(context, scale_x(tick), bottom_row_y - 9, std::to_string(std::abs(tick / 3)),
                {11, faded(white, 0.8), align::center});
    }
  }
  cairo_move_to(context, scale_x(thirds_ev), bottom_row_y + 9);
  cairo_rel_line_to(context, -5, 9);
  cairo_rel_line_to(context, 10, 0);
  cairo_close_path(context);
  set_ink(context, amber);
  cairo_fill(context);
}

void draw_exposure(cairo_t* context, const camera_state& camera) {
  const text_style figure{22, white, align::left, true};
  draw_text(context, 24, bottom_row_y, std::string{camera.mode->shutter}, figure);
  draw_text(context, 150, bottom_row_y, std::string{camera.mode->aperture}, figure);
  draw_compensation(context, camera.compensation_thirds_ev);
  draw_text(context, 560, bottom_row_y, "AWB", {15, faded(white, 0.85)});
  draw_text(context, 622, bottom_row_y, "AF-S", {15, faded(white, 0.85)});
  draw_text(context, 690, bottom_row_y, "ISO", {13, faded(white, 0.8)});
  draw_text(context, 722, bottom_row_y, "200", figure);
  if (!camera.focused) return;
  cairo_arc(context, 252, bottom_row_y, 6, 0, 2 * std::numbers::pi);
  set_ink(context, green);
  cairo_fill(context);
}

void draw_histogram(cairo_t* context, const scene& view) {
  constexpr box area{656, 348, 128, 72};
  fill_rounded(context, area, 6, glass);
  constexpr double bin_width = (area.width - 12) / histogram_bins;
  const double foot = area.y + area.height - 6;
  cairo_move_to(context, area.x + 6, foot);
  for (std::size_t bin = 0; bin < histogram_bins; bin++) {
    cairo_line_to(context, area.x + 6 + (static_cast<double>(bin) + 0.5) * bin_width,
                  foot - view.histogram[bin] * (area.height - 12));
  }
  cairo_line_to(context, area.x + area.width - 6, foot);
  cairo_close_path(context);
  set_ink(context, faded(white, 0.75));
  cairo_fill(context);
}

}  // namespace

void draw_settings(cairo_t* context, const frame& shown) {
  shade(context, 0, 70);
  shade(context, screen_height, screen_height - 84);
  draw_mode(context, *shown.camera.mode);
  draw_recording(context, shown.camera, shown.now);
  draw_text(context, 400, top_row_y, shown.clock, {18, white, align::center, true});
  draw_card(context, 642, shown.camera.pictures_left);
  draw_battery(context, 746);
  draw_exposure(context, shown.camera);
  draw_histogram(context, shown.view);
}
