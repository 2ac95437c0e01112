// The few strokes that everything on the screen is drawn with.
#pragma once

#include <cairo.h>

#include <string>

struct color {
  double red;
  double green;
  double blue;
  double alpha = 1;
};

struct box {
  double x;
  double y;
  double width;
  double height;
};

enum class align { left, center, right };

struct text_style {
  double size_px;
  color ink;
  align alignment = align::left;
  bool bold = false;
};

inline constexpr int screen_width = 800;
inline constexpr int screen_height = 480;

inline constexpr color white{1, 1, 1};
inline constexpr color black{0, 0, 0};
inline constexpr color amber{1, 0.72, 0.16};
inline constexpr color green{0.42, 0.93, 0.52};
inline constexpr color red{0.96, 0.26, 0.22};
inline constexpr color glass{0.03, 0.05, 0.08, 0.55};

color faded(color ink, double alpha);

void set_ink(cairo_t* context, color ink);
void rounded_path(cairo_t* context, box area, double radius);
void fill_rounded(cairo_t* context, box area, double radius, color ink);
void outline_rounded(cairo_t* context, box area, double radius, color ink, double line_width);

// `y` is the middle of the capitals, so text sits in the middle of its row at any size.
void draw_text(cairo_t* context, double x, double y, const std::string& text,
               const text_style& style);
double text_width(cairo_t* context, const std::string& text, const text_style& style);
