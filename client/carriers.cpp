// Which carrier an address asks for.

#include <dirent.h>
#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string_view>

#include "carrier.h"

namespace orv_client {

extern const carrier store_carrier;

namespace {

constexpr std::string_view module_start = "carrier-";
constexpr std::string_view module_end = ".so";

// Beside this library, which may be anywhere.
std::string module_directory() {
  Dl_info library{};
  if (dladdr(&store_carrier, &library) == 0 || library.dli_fname == nullptr) {
    return "";
  }
  const std::string path = library.dli_fname;
  return path.substr(0, path.rfind('/') + 1) + "orv-client/";
}

struct directory_closer {
  void operator()(DIR* open) const noexcept { closedir(open); }
};

std::string known_schemes() {
  std::set<std::string> known{store_carrier.scheme};
  const std::unique_ptr<DIR, directory_closer> modules{opendir(module_directory().c_str())};
  while (const dirent* entry = modules ? readdir(modules.get()) : nullptr) {
    const std::string_view name = entry->d_name;
    if (name.starts_with(module_start) && name.ends_with(module_end)) {
      known.emplace(
          name.substr(module_start.size(), name.size() - module_start.size() - module_end.size()));
    }
  }
  std::string list;
  for (const std::string& scheme : known) {
    list += (list.empty() ? "" : ", ") + scheme;
  }
  return list;
}

// What becomes part of a file's name.
bool is_scheme(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9');
  });
}

// A module stays: its callbacks may be under way for as long as the process lives.
const carrier* load(const std::string& path, std::string& why) {
  void* module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  const void* table = module != nullptr ? dlsym(module, "orv_carrier_table") : nullptr;
  if (table == nullptr) {
    why = dlerror();
  }
  return static_cast<const carrier*>(table);
}

}  // namespace

const carrier* find_carrier(const std::string& scheme, std::string& why) {
  if (scheme == store_carrier.scheme) {
    return &store_carrier;
  }
  const std::string name = std::string{module_start} + scheme + std::string{module_end};
  const std::string path = module_directory() + name;
  if (is_scheme(scheme) && access(path.c_str(), F_OK) == 0) {
    return load(path, why);
  }
  why = "no carrier for \"" + scheme + ":\"; there is: " + known_schemes();
  return nullptr;
}

}  // namespace orv_client
