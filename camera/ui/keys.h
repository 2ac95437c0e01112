// The camera's keys: what the X server's keycodes are called.
#pragma once

#include <string>
#include <string_view>

struct key_row {
  std::string_view name;
  int keycode;
};

// VK_ keys are virtual: no button sends them, the firmware and its tests do.
inline constexpr key_row key_table[] = {
    {"KEY_MODE_LENS", 67},  {"KEY_MODE_COLLAGE", 68}, {"KEY_MODE_WIFI", 69},
    {"KEY_MODE_SCENE", 70}, {"KEY_MODE_MOVIE", 71},   {"KEY_MODE_SMART", 72},
    {"KEY_MODE_P", 73},     {"KEY_MODE_A", 74},       {"KEY_MODE_S", 75},
    {"KEY_MODE_M", 76},     {"KEY_UP", 80},           {"KEY_LEFT", 83},
    {"KEY_RIGHT", 85},      {"KEY_DOWN", 88},         {"KEY_DELETE", 91},
    {"KEY_OK", 104},        {"KEY_POWEROFF", 124},    {"KEY_POWERON", 125},
    {"KEY_SW1", 133},       {"KEY_SW2", 134},         {"KEY_MENU", 135},
    {"KEY_PB", 179},        {"KEY_FUNC", 180},        {"KEY_EVC", 181},
    {"KEY_WHEELCW", 185},   {"KEY_WHEELCCW", 186},    {"KEY_RECORD", 220},
    {"KEY_WIFI", 223},      {"VK_RESET", 190},        {"VK_REPOSITION", 208},
    {"VK_INFO", 209},       {"VK_DELALLIMAGE", 210},  {"VK_CAPTURE_END", 211},
};

// A wrong name does not compile.
consteval int keycode_of(std::string_view name) {
  for (const key_row& row : key_table)
    if (row.name == name) return row.keycode;
  throw "no such key";
}

// A key that the camera does not have is named by its number, "keycode 99".
std::string key_name(int keycode);
