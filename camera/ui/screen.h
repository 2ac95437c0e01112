// What the camera's display shows: the live view with the camera's settings over it, and
// over these the input that arrived.
#pragma once

#include <cairo.h>

#include <string>

#include "camera_state.h"
#include "input_log.h"
#include "scene.h"

struct frame {
  const scene& view;
  const camera_state& camera;
  const input_log& input;
  std::string clock;  // HH:MM:SS
  time_point now;
};

void draw_frame(cairo_t* context, const frame& shown);

// Its two layers, each in a source of its own.
void draw_settings(cairo_t* context, const frame& shown);
void draw_input(cairo_t* context, const input_log& input);
