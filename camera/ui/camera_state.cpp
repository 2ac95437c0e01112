#include "camera_state.h"

#include <algorithm>

#include "keys.h"

namespace {

constexpr shooting_mode mode_table[] = {
    {keycode_of("KEY_MODE_P"), "P", "Program", "1/250", "F5.6"},
    {keycode_of("KEY_MODE_A"), "A", "Aperture priority", "1/500", "F2.8"},
    {keycode_of("KEY_MODE_S"), "S", "Shutter priority", "1/60", "F11"},
    {keycode_of("KEY_MODE_M"), "M", "Manual", "1/125", "F8.0"},
    {keycode_of("KEY_MODE_SMART"), "SMART", "Smart", "1/200", "F5.6"},
    {keycode_of("KEY_MODE_SCENE"), "SCENE", "Sunset", "1/160", "F8.0"},
    {keycode_of("KEY_MODE_MOVIE"), "MOVIE", "1080 60p", "1/120", "F4.0"},
    {keycode_of("KEY_MODE_LENS"), "LENS", "Lens priority", "1/250", "F3.5"},
    {keycode_of("KEY_MODE_COLLAGE"), "COLLAGE", "2 x 2", "1/250", "F5.6"},
    {keycode_of("KEY_MODE_WIFI"), "WIFI", "Remote viewfinder", "1/250", "F5.6"},
};

void choose_mode(camera_state& camera, int keycode) {
  for (const shooting_mode& mode : mode_table)
    if (mode.keycode == keycode) camera.mode = &mode;
}

void compensate(camera_state& camera, int thirds_ev) {
  camera.compensation_thirds_ev =
      std::clamp(camera.compensation_thirds_ev + thirds_ev, -max_compensation_thirds_ev,
                 max_compensation_thirds_ev);
}

void take_picture(camera_state& camera) {
  if (camera.pictures_left > 0) camera.pictures_left--;
}

void toggle_recording(camera_state& camera, time_point now) {
  if (camera.recording_since) {
    camera.recording_since.reset();
  } else {
    camera.recording_since = now;
  }
}

}  // namespace

camera_state new_camera() {
  camera_state camera{};
  camera.mode = &mode_table[0];
  return camera;
}

void apply_key(camera_state& camera, int keycode, bool down, time_point now) {
  if (keycode == keycode_of("KEY_SW1")) camera.focused = down;
  if (!down) return;
  choose_mode(camera, keycode);
  switch (keycode) {
    case keycode_of("KEY_SW2"):
      take_picture(camera);
      break;
    case keycode_of("KEY_WHEELCW"):
      compensate(camera, 1);
      break;
    case keycode_of("KEY_WHEELCCW"):
      compensate(camera, -1);
      break;
    case keycode_of("KEY_RECORD"):
      toggle_recording(camera, now);
      break;
    default:
      break;
  }
}
