#include <algorithm>
#include <numbers>

#include "keys.h"
#include "paint.h"
#include "screen.h"

namespace {

constexpr double keys_x = 16;
constexpr double keys_y = 64;
constexpr double row_height = 30;

bool is_held(const input_log& input, int keycode) {
  return input.held[static_cast<std::size_t>(keycode)];
}

void draw_key_row(cairo_t* context, double y, const recent_key& key, bool held, double strength) {
  const color ink = held ? color{0.08, 0.08, 0.08} : faded(white, strength);
  fill_rounded(context, {keys_x, y, 196, row_height - 4}, 6,
               held ? amber : faded(glass, 0.4 + 0.6 * strength));
  draw_text(context, keys_x + 12, y + row_height / 2 - 2, key_name(key.keycode),
            {13, ink, align::left, held});
  if (key.presses > 1) {
    draw_text(context, keys_x + 186, y + row_height / 2 - 2, "\u00d7" + std::to_string(key.presses),
              {13, ink, align::right, true});
  }
}

// The newest on top; older ones fade.
void draw_recent_keys(cairo_t* context, const input_log& input) {
  double strength = 1;
  double y = keys_y;
  for (const recent_key& key : input.recent) {
    draw_key_row(context, y, key, is_held(input, key.keycode), strength);
    strength *= 0.86;
    y += row_height;
  }
}

// Held keys that newer ones have pushed out of the list still show.
void draw_held_keys(cairo_t* context, const input_log& input) {
  if (input.held.none()) return;
  const text_style style{13, {0.08, 0.08, 0.08}, align::center, true};
  double x = keys_x;
  for (std::size_t keycode = 0; keycode < input.held.size(); keycode++) {
    if (!input.held[keycode]) continue;
    const std::string name = key_name(static_cast<int>(keycode));
    const double width = text_width(context, name, style) + 24;
    fill_rounded(context, {x, 394, width, 26}, 13, amber);
    draw_text(context, x + width / 2, 407, name, style);
    x += width + 8;
  }
}

void draw_ring(cairo_t* context, point at, double radius, color ink, double line_width) {
  cairo_new_path(context);
  cairo_arc(context, at.x, at.y, radius, 0, 2 * std::numbers::pi);
  set_ink(context, ink);
  cairo_set_line_width(context, line_width);
  cairo_stroke(context);
}

void draw_dot(cairo_t* context, point at, double radius, color ink) {
  cairo_arc(context, at.x, at.y, radius, 0, 2 * std::numbers::pi);
  set_ink(context, ink);
  cairo_fill(context);
}

void draw_trail(cairo_t* context, const std::vector<point>& path) {
  cairo_new_path(context);
  for (const point& at : path) cairo_line_to(context, at.x, at.y);
  cairo_set_line_cap(context, CAIRO_LINE_CAP_ROUND);
  cairo_set_line_join(context, CAIRO_LINE_JOIN_ROUND);
  set_ink(context, faded(amber, 0.3));
  cairo_set_line_width(context, 12);
  cairo_stroke_preserve(context);
  set_ink(context, amber);
  cairo_set_line_width(context, 3);
  cairo_stroke(context);
}

// Beside the finger, on the side where there is room.
void draw_coordinates(cairo_t* context, point at) {
  const std::string text = std::to_string(at.x) + ", " + std::to_string(at.y);
  const text_style style{13, white, align::center, true};
  const double width = text_width(context, text, style) + 20;
  const double x = std::clamp(at.x - width / 2, 4.0, screen_width - width - 4);
  const double y = at.y > 64 ? at.y - 54 : at.y + 30;
  fill_rounded(context, {x, y, width, 24}, 12, {0, 0, 0, 0.7});
  draw_text(context, x + width / 2, y + 12, text, style);
}

void draw_touch(cairo_t* context, const touch_trace& touch) {
  if (touch.state == touch_state::none) return;
  const bool down = touch.state == touch_state::down;
  const point first = touch.path.front();
  const point last = touch.path.back();
  const bool dragged = std::abs(last.x - first.x) + std::abs(last.y - first.y) > 3;
  if (dragged) {
    draw_trail(context, touch.path);
    draw_dot(context, first, 6, amber);
    draw_coordinates(context, first);
  }
  if (down) draw_dot(context, last, 22, faded(amber, 0.45));
  draw_ring(context, last, 22, amber, down ? 3 : 2);
  draw_dot(context, last, 6, down ? white : amber);
  draw_coordinates(context, last);
}

}  // namespace

void draw_input(cairo_t* context, const input_log& input) {
  draw_touch(context, input.touch);
  draw_recent_keys(context, input);
  draw_held_keys(context, input);
}
