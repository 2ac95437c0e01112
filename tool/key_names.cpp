#include "key_names.h"

#include <orv/key_names.h>

#include <algorithm>
#include <cctype>
#include <numeric>
#include <utility>

namespace orvctl {
namespace {

#define ORVCTL_KEY_ROW(name, keycode) {name, keycode},
constexpr key_name keys[] = {ORV_FOR_EACH_KEY(ORVCTL_KEY_ROW)};
#undef ORVCTL_KEY_ROW

std::string upper_case(std::string_view text) {
  std::string upper{text};
  std::transform(upper.begin(), upper.end(), upper.begin(),
                 [](unsigned char one) { return static_cast<char>(std::toupper(one)); });
  return upper;
}

// What is left behind KEY_ or VK_.
std::string_view bare(std::string_view name) {
  for (const std::string_view prefix : {"KEY_", "VK_"}) {
    if (name.starts_with(prefix)) {
      return name.substr(prefix.size());
    }
  }
  return name;
}

// Letters to put in, take out or replace to make one text of the other.
size_t distance(std::string_view from, std::string_view to) {
  std::vector<size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 0; i < from.size(); ++i) {
    size_t diagonal = std::exchange(row[0], i + 1);
    for (size_t j = 0; j < to.size(); ++j) {
      const size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

// At most every second letter may be wrong.
std::string_view nearest(std::string_view text) {
  const std::string_view wanted = bare(text);
  const auto far = [wanted](const key_name& key) { return distance(wanted, bare(key.name)); };
  const key_name& found = *std::min_element(
      std::begin(keys), std::end(keys),
      [far](const key_name& one, const key_name& other) { return far(one) < far(other); });
  return far(found) * 2 <= wanted.size() ? found.name : "";
}

std::string join(const std::vector<std::string_view>& names) {
  std::string list;
  for (const std::string_view name : names) {
    list += (list.empty() ? "" : ", ") + std::string{name};
  }
  return list;
}

}  // namespace

std::span<const key_name> all_keys() {
  return keys;
}

std::vector<std::string_view> keys_like(std::string_view text) {
  const std::string wanted = upper_case(text);
  std::vector<std::string_view> found;
  for (const key_name& key : keys) {
    if (wanted == key.name || wanted == bare(key.name)) {
      return {key.name};
    }
    if (key.name.starts_with(wanted) || bare(key.name).starts_with(wanted)) {
      found.push_back(key.name);
    }
  }
  return found;
}

std::string check_key(const std::string& text) {
  const std::vector<std::string_view> found = keys_like(text);
  if (found.size() == 1) {
    return "";
  }
  if (!found.empty()) {
    return "\"" + text + "\" may be " + join(found);
  }
  const std::string_view meant = nearest(upper_case(text));
  return "no key \"" + text + "\"; " +
         (meant.empty() ? "orvctl key --list names them all"
                        : "the nearest is " + std::string{meant});
}

}  // namespace orvctl
