// The camera's keys: what the X server's keycodes are called.
#pragma once

#include <orv/key_names.h>

#include <string>
#include <string_view>

struct key_row {
  std::string_view name;
  int keycode;
};

inline constexpr key_row key_table[] = {
#define ROW(name, keycode) {name, keycode},
    ORV_FOR_EACH_KEY(ROW)
#undef ROW
};

// A wrong name does not compile.
consteval int keycode_of(std::string_view name) {
  for (const key_row& row : key_table)
    if (row.name == name) return row.keycode;
  throw "no such key";
}

// A key that the camera does not have is named by its number, "keycode 99".
std::string key_name(int keycode);
