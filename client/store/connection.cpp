#include "connection.h"

#include <orv/protocol.h>
#include <stdlib.h>
#include <vconf.h>

#include "directory.h"
#include "turn.h"
#include "whole_command.h"

namespace orv_client::store {
namespace {

// The place of the store that this process reaches: a directory, or empty for the default one.
std::optional<std::string> first_place;

std::string directory_of(const std::string& place) {
  return place.empty() ? default_directory() : place;
}

bool is_first(const std::string& place) {
  return !first_place || (first_place->empty() == place.empty() &&
                          same_directory(directory_of(*first_place), directory_of(place)));
}

// Names the store to the platform, or none for the default one. The platform looks at that when it
// first finds a store; until then, it is named no longer than this lives.
class naming {
 public:
  explicit naming(const std::string& place) {
    const char* named = getenv(variable);
    const std::string before = named != nullptr ? named : "";
    if (!first_place && place != before) {
      before_ = before;
      name(place);
    }
  }
  naming(const naming&) = delete;
  naming& operator=(const naming&) = delete;
  ~naming() {
    if (before_ && !first_place) {
      name(*before_);
    }
  }

 private:
  static void name(const std::string& place) {
    place.empty() ? unsetenv(variable) : setenv(variable, place.c_str(), 1);
  }

  static constexpr char variable[] = "ORV_PLATFORM_ROOT";
  std::optional<std::string> before_;
};

bool agent_was_started() {
  int result = 0;
  return vconf_get_int(VCONFKEY_ORV_RESULT, &result) == 0;
}

// A missing directory is not made before it is known that an agent uses the store.
ending find_camera(const std::string& place) {
  const std::string directory = directory_of(place);
  if (!is_first(place)) {
    return not_run(ORV_WHY_SECOND_STORE, "store " + directory + ": this process uses the store " +
                                             directory_of(*first_place) +
                                             ", and a process can use one only");
  }
  std::string why;
  const directory_state state = check_directory(directory, why);
  if (state == directory_state::refused) {
    return not_run(ORV_WHY_STORE_REFUSED, "store " + why);
  }
  const naming named{place};
  const bool started = agent_was_started();
  if (!first_place && (started || state == directory_state::usable)) {
    first_place = place;
  }
  if (!started) {
    return not_run(ORV_WHY_NO_CAMERA,
                   "store " + (state == directory_state::missing && !place.empty()
                                   ? why
                                   : directory + ": no agent has been started on it; is a host "
                                                 "running on it?"));
  }
  return state == directory_state::usable || make_directory(directory, why)
             ? ending{}
             : not_run(ORV_WHY_STORE_REFUSED, "store " + why);
}

}  // namespace

bool open_rights(connection& at, std::string& why) {
  if (!at.rights || !at.rights->in_place()) {
    at.rights.emplace(at.directory, why);
  }
  return at.rights->usable();
}

std::unique_ptr<connection> connect(const std::string& place, ending& failure) {
  failure = find_camera(place);
  if (failure.outcome != ORV_RAN) {
    return nullptr;
  }
  auto made = std::make_unique<connection>(directory_of(place));
  std::string why;
  if (!open_rights(*made, why)) {
    failure = not_run(ORV_WHY_STORE_REFUSED, "store " + why);
    return nullptr;
  }
  if (!made->followed.listening()) {
    failure = store_failed(made->directory);
    return nullptr;
  }
  return made;
}

}  // namespace orv_client::store
