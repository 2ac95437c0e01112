#include "handler/key_map.h"

#include <orv/input.h>
#include <orv/key_names.h>
#include <string.h>

#include <string_view>

namespace {

constexpr char end_name[] = "end";

}  // namespace

#define ORV_KEY_ROW(name, keycode) {name, keycode},
constexpr key_map_entry orv_key_map[ORV_KEY_MAP_ROWS] = {ORV_FOR_EACH_KEY(ORV_KEY_ROW){"end", 0}};
#undef ORV_KEY_ROW

namespace {

constexpr const key_map_entry* end_row = orv_key_map + ORV_KEY_MAP_ROWS - 1;
static_assert(std::string_view{end_row->key_name} == end_name);

constexpr bool is_unlike_all_after(const key_map_entry* row) {
  for (const key_map_entry* other = row + 1; other <= end_row; ++other) {
    if (row->keycode == other->keycode ||
        std::string_view{row->key_name} == std::string_view{other->key_name}) {
      return false;
    }
  }
  return true;
}

// X knows keycodes from 8 to 255; Xlib would send the low byte of any other.
constexpr bool keys_are_sound() {
  for (const key_map_entry* row = orv_key_map; row != end_row; ++row) {
    if (row->keycode < 8 || row->keycode > 255 || !is_unlike_all_after(row)) {
      return false;
    }
  }
  return true;
}
static_assert(keys_are_sound());

}  // namespace

namespace orv {

std::optional<int32_t> find_keycode(const char* name) {
  if (name == nullptr) {
    return std::nullopt;
  }
  for (const key_map_entry* row = orv_key_map; strcmp(row->key_name, end_name) != 0; ++row) {
    if (strcmp(name, row->key_name) == 0) {
      return row->keycode;
    }
  }
  return std::nullopt;
}

}  // namespace orv
