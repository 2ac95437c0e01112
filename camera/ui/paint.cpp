#include "paint.h"

#include <numbers>

namespace {

void use_font(cairo_t* context, const text_style& style) {
  cairo_select_font_face(context, "sans-serif", CAIRO_FONT_SLANT_NORMAL,
                         style.bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(context, style.size_px);
}

double advance(cairo_t* context, const std::string& text) {
  cairo_text_extents_t extents;
  cairo_text_extents(context, text.c_str(), &extents);
  return extents.x_advance;
}

double indent(align alignment, double width) {
  switch (alignment) {
    case align::center:
      return width / 2;
    case align::right:
      return width;
    default:
      return 0;
  }
}

}  // namespace

color faded(color ink, double alpha) {
  return {ink.red, ink.green, ink.blue, ink.alpha * alpha};
}

void set_ink(cairo_t* context, color ink) {
  cairo_set_source_rgba(context, ink.red, ink.green, ink.blue, ink.alpha);
}

void rounded_path(cairo_t* context, box area, double radius) {
  constexpr double quarter = std::numbers::pi / 2;
  const double left = area.x + radius;
  const double right = area.x + area.width - radius;
  const double top = area.y + radius;
  const double bottom = area.y + area.height - radius;
  cairo_new_sub_path(context);
  cairo_arc(context, right, top, radius, -quarter, 0);
  cairo_arc(context, right, bottom, radius, 0, quarter);
  cairo_arc(context, left, bottom, radius, quarter, 2 * quarter);
  cairo_arc(context, left, top, radius, 2 * quarter, 3 * quarter);
  cairo_close_path(context);
}

void fill_rounded(cairo_t* context, box area, double radius, color ink) {
  rounded_path(context, area, radius);
  set_ink(context, ink);
  cairo_fill(context);
}

void outline_rounded(cairo_t* context, box area, double radius, color ink, double line_width) {
  rounded_path(context, area, radius);
  set_ink(context, ink);
  cairo_set_line_width(context, line_width);
  cairo_stroke(context);
}

void draw_text(cairo_t* context, double x, double y, const std::string& text,
               const text_style& style) {
  constexpr double cap_height = 0.73;  // of the font size
  use_font(context, style);
  cairo_move_to(context, x - indent(style.alignment, advance(context, text)),
                y + style.size_px * cap_height / 2);
  set_ink(context, style.ink);
  cairo_show_text(context, text.c_str());
}

double text_width(cairo_t* context, const std::string& text, const text_style& style) {
  use_font(context, style);
  return advance(context, text);
}
