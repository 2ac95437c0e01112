// The camera's keys by their names.

#include <ctype.h>
#include <orv/client.h>
#include <orv/key_names.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>
#include <utility>

namespace {

#define ORV_CLIENT_KEY_ROW(name, keycode) {name, keycode},
constexpr orv_key keys[] = {ORV_FOR_EACH_KEY(ORV_CLIENT_KEY_ROW)};
#undef ORV_CLIENT_KEY_ROW

constexpr size_t longest_name = 32;
static_assert(std::all_of(std::begin(keys), std::end(keys), [](const orv_key& key) {
  return std::string_view{key.name}.size() <= longest_name;
}));

// Names are in upper case, what a user writes need not be.
bool same_letter(char name, char text) {
  return name == toupper(static_cast<unsigned char>(text));
}

bool begins_with(std::string_view name, std::string_view text) {
  return text.size() <= name.size() &&
         std::equal(text.begin(), text.end(), name.begin(),
                    [](char one, char other) { return same_letter(other, one); });
}

// Without KEY_ or VK_.
std::string_view bare(std::string_view text) {
  for (const std::string_view prefix : {"KEY_", "VK_"}) {
    if (text.size() >= prefix.size() && begins_with(prefix, text.substr(0, prefix.size()))) {
      return text.substr(prefix.size());
    }
  }
  return text;
}

// Whether the text begins the name, with or without the name's prefix.
bool may_mean(std::string_view name, std::string_view text) {
  return begins_with(name, text) || begins_with(bare(name), text);
}

bool means(std::string_view name, std::string_view text) {
  return (text.size() == name.size() && begins_with(name, text)) ||
         (text.size() == bare(name).size() && begins_with(bare(name), text));
}

// Letters to put in, take out or replace to make one of the other.
size_t distance(std::string_view text, std::string_view name) {
  std::array<size_t, longest_name + 1> row{};
  for (size_t i = 0; i <= name.size(); ++i) {
    row[i] = i;
  }
  for (size_t i = 0; i < text.size(); ++i) {
    size_t diagonal = std::exchange(row[0], i + 1);
    for (size_t j = 0; j < name.size(); ++j) {
      const size_t replaced = diagonal + (same_letter(name[j], text[i]) ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
    }
  }
  return row[name.size()];
}

}  // namespace

const orv_key* orv_keys(size_t* count) {
  *count = std::size(keys);
  return keys;
}

size_t orv_keys_like(const char* text, const orv_key** found, size_t room) {
  size_t count = 0;
  for (const orv_key& key : keys) {
    if (means(key.name, text)) {
      if (room > 0) {
        found[0] = &key;
      }
      return 1;
    }
    if (may_mean(key.name, text) && count++ < room) {
      found[count - 1] = &key;
    }
  }
  return count;
}

const orv_key* orv_nearest_key(const char* text) {
  const std::string_view wanted = bare(text);
  const auto far = [wanted](const orv_key& key) { return distance(wanted, bare(key.name)); };
  const orv_key* found =
      std::min_element(std::begin(keys), std::end(keys),
                       [far](const auto& one, const auto& other) { return far(one) < far(other); });
  return far(*found) * 2 <= wanted.size() ? found : nullptr;
}
