// The little of a camera that its keys change on the screen: mode, focus, exposure
// compensation, pictures left, recording.
#pragma once

#include <chrono>
#include <optional>
#include <string_view>

struct shooting_mode {
  int keycode;
  std::string_view badge;
  std::string_view title;
  std::string_view shutter;
  std::string_view aperture;
};

using time_point = std::chrono::steady_clock::time_point;

struct camera_state {
  const shooting_mode* mode;
  int compensation_thirds_ev = 0;
  int pictures_left = 1284;
  bool focused = false;
  std::optional<time_point> recording_since;
};

inline constexpr int max_compensation_thirds_ev = 9;

camera_state new_camera();
void apply_key(camera_state& camera, int keycode, bool down, time_point now);
