// Which names are keys, and where a key's files lie below the root.
#ifndef ORV_VCONF_KEY_PATH_H
#define ORV_VCONF_KEY_PATH_H

#include <stddef.h>

#include <string_view>

namespace vconf {

constexpr size_t max_key_length = 1023;
constexpr size_t max_part_length = 255;

// Parts joined by single slashes, none empty, too long or beginning with a dot: the store's own
// files begin with one, and ".." would leave the tree.
constexpr bool valid_key(std::string_view key) {
  if (key.empty() || key.size() > max_key_length) {
    return false;
  }
  size_t start = 0;
  while (true) {
    const size_t slash = key.find('/', start);
    const std::string_view part = key.substr(start, slash - start);
    if (part.empty() || part.size() > max_part_length || part.front() == '.') {
      return false;
    }
    if (slash == std::string_view::npos) {
      return true;
    }
    start = slash + 1;
  }
}

// A path relative to the root; room for a key and a file name in its directory.
struct path_text {
  char text[max_key_length + 64];
};

// KEY/.value
path_text value_path(std::string_view key);

// KEY/.t… : a name that no neighbouring write of the key, by whatever process, uses as well.
path_text temporary_path(std::string_view key);

constexpr std::string_view temporary_prefix = ".t";

}  // namespace vconf

#endif
