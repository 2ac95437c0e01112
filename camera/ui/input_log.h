// What the screen has received: keys, keys held down, the touch.
#pragma once

#include <bitset>
#include <cstddef>
#include <deque>
#include <string>
#include <vector>

struct point {
  int x;
  int y;
};

// One key in the list of the last keys; pressed again right away it is counted, not repeated.
struct recent_key {
  int keycode;
  int presses;
};

enum class touch_state { none, down, up };

struct touch_trace {
  touch_state state = touch_state::none;
  std::vector<point> path;  // from the press on, at most max_path_points
};

inline constexpr std::size_t max_recent_keys = 8;
inline constexpr std::size_t max_path_points = 512;

struct input_log {
  unsigned long events = 0;
  int last_keycode = 0;           // 0: none yet
  std::deque<recent_key> recent;  // newest first
  std::bitset<256> held;
  touch_trace touch;
};

// Both return false, and change nothing, when the key is already so: an auto-repeat.
bool press_key(input_log& log, int keycode);
bool release_key(input_log& log, int keycode);

void press_touch(input_log& log, point at);
void move_touch(input_log& log, point to);
void release_touch(input_log& log, point at);

// The log as text, for other X clients:
//   events COUNT
//   key NAME down|up         or  key none
//   held NAME, NAME...
//   touch down|up X,Y X,Y    or  touch none      (where it began, where it is or ended)
std::string describe(const input_log& log);
