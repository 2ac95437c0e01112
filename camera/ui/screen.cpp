#include "screen.h"

#include "paint.h"

namespace {

void draw_thirds(cairo_t* context) {
  set_ink(context, faded(white, 0.16));
  cairo_set_line_width(context, 1);
  for (int third = 1; third <= 2; third++) {
    const double x = screen_width / 3.0 * third;
    const double y = screen_height / 3.0 * third;
    cairo_move_to(context, x, 0);
    cairo_line_to(context, x, screen_height);
    cairo_move_to(context, 0, y);
    cairo_line_to(context, screen_width, y);
  }
  cairo_stroke(context);
}

void corner(cairo_t* context, double x, double y, double dx, double dy) {
  cairo_move_to(context, x + dx, y);
  cairo_line_to(context, x, y);
  cairo_line_to(context, x, y + dy);
}

void draw_focus_frame(cairo_t* context, bool focused) {
  constexpr double left = 330, top = 190, right = 470, bottom = 290, arm = 22;
  corner(context, left, top, arm, arm);
  corner(context, right, top, -arm, arm);
  corner(context, left, bottom, arm, -arm);
  corner(context, right, bottom, -arm, -arm);
  set_ink(context, focused ? green : faded(white, 0.9));
  cairo_set_line_width(context, focused ? 3 : 2);
  cairo_stroke(context);
}

}  // namespace

void draw_frame(cairo_t* context, const frame& shown) {
  cairo_set_source_surface(context, shown.view.picture.get(), 0, 0);
  cairo_paint(context);
  draw_thirds(context);
  draw_focus_frame(context, shown.camera.focused);
  draw_settings(context, shown);
  draw_input(context, shown.input);
}
