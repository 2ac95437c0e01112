#include "input_log.h"

#include "keys.h"

namespace {

bool set_held(input_log& log, int keycode, bool down) {
  const auto bit = static_cast<std::size_t>(keycode);
  if (bit >= log.held.size() || log.held[bit] == down) return false;
  log.held[bit] = down;
  log.last_keycode = keycode;
  log.events++;
  return true;
}

void add_to_path(touch_trace& touch, point at) {
  const bool full = touch.path.size() == max_path_points;
  if (full) touch.path.pop_back();
  touch.path.push_back(at);
}

std::string held_names(const input_log& log) {
  std::string names;
  for (std::size_t keycode = 0; keycode < log.held.size(); keycode++) {
    if (log.held[keycode])
      names += (names.empty() ? " " : ", ") + key_name(static_cast<int>(keycode));
  }
  return names;
}

std::string coordinates(point at) {
  return std::to_string(at.x) + "," + std::to_string(at.y);
}

std::string describe_key(const input_log& log) {
  if (log.last_keycode == 0) return "none";
  const bool down = log.held[static_cast<std::size_t>(log.last_keycode)];
  return key_name(log.last_keycode) + (down ? " down" : " up");
}

std::string describe_touch(const touch_trace& touch) {
  if (touch.state == touch_state::none) return "none";
  return std::string{touch.state == touch_state::down ? "down " : "up "} +
         coordinates(touch.path.front()) + " " + coordinates(touch.path.back());
}

}  // namespace

bool press_key(input_log& log, int keycode) {
  if (!set_held(log, keycode, true)) return false;
  if (!log.recent.empty() && log.recent.front().keycode == keycode) {
    log.recent.front().presses++;
    return true;
  }
  log.recent.push_front({keycode, 1});
  if (log.recent.size() > max_recent_keys) log.recent.pop_back();
  return true;
}

bool release_key(input_log& log, int keycode) {
  return set_held(log, keycode, false);
}

void press_touch(input_log& log, point at) {
  log.touch.state = touch_state::down;
  log.touch.path = {at};
  log.events++;
}

void move_touch(input_log& log, point to) {
  if (log.touch.state != touch_state::down) return;
  add_to_path(log.touch, to);
  log.events++;
}

void release_touch(input_log& log, point at) {
  if (log.touch.state != touch_state::down) return;
  add_to_path(log.touch, at);
  log.touch.state = touch_state::up;
  log.events++;
}

std::string describe(const input_log& log) {
  return "events " + std::to_string(log.events) + "\nkey " + describe_key(log) + "\nheld" +
         held_names(log) + "\ntouch " + describe_touch(log.touch) + "\n";
}
