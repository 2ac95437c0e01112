// Another X client, which sends input and looks at what the application makes of it.
#pragma once

#include <X11/Xlib.h>

#include <functional>
#include <string>

#include "../../camera/handles.h"

struct screen_reader {
  handle<Display> display{XOpenDisplay(nullptr)};
  // Empty when there is no application.
  std::string input_text() const;
  // Red, green and blue, 8 bits each.
  unsigned long pixel(int x, int y) const;
  void key(int keycode, bool down) const;
  void touch_at(int x, int y, bool down) const;
  void move_to(int x, int y) const;
};

// Looks again and again until `holds`, at most ten seconds. Returns whether it came to hold.
bool comes_true(const std::function<bool()>& holds);

// Waits for the text and returns what stands there in the end.
std::string awaited_input(const screen_reader& reader, const std::string& text);
