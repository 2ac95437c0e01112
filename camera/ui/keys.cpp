#include "keys.h"

namespace {

constexpr bool keycodes_unique() {
  for (const key_row& row : key_table) {
    for (const key_row& other : key_table)
      if (&row != &other && (row.keycode == other.keycode || row.name == other.name)) return false;
  }
  return true;
}
static_assert(keycodes_unique());

}  // namespace

std::string key_name(int keycode) {
  for (const key_row& row : key_table)
    if (row.keycode == keycode) return std::string{row.name};
  return "keycode " + std::to_string(keycode);
}
