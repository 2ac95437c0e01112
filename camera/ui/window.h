// The application's window and what arrives at it.
#pragma once

#include <X11/Xlib.h>

#include <string>

#include "../handles.h"
#include "input_log.h"

struct window {
  handle<Display> display;
  Window id;
  Atom input_property;  // _ORV_LAST_INPUT: the input as text, see describe()
  int xinput_opcode;
  handle<cairo_surface_t> surface;
};

enum class arrival_kind { other, exposed, key_down, key_up, touch_down, touch_move, touch_up };

struct arrival {
  arrival_kind kind;
  int keycode;  // of a key
  point at;     // of a touch
};

// Opens the display that DISPLAY names and shows the window. On failure, now or later (an X
// error, a lost server), the process ends with status 1 and one line on standard error.
window show_window();

// Keys that are down already, in the order of their codes.
std::bitset<256> keys_down(Display* display);

arrival next_arrival(window& shown);
void publish_input(window& shown, const std::string& text);
void show_picture(window& shown, cairo_surface_t* picture);
