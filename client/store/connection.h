// A store that was opened: what its commands, watches and logs share.
#ifndef ORV_CLIENT_STORE_CONNECTION_H
#define ORV_CLIENT_STORE_CONNECTION_H

#include <list>
#include <memory>
#include <optional>
#include <string>

#include "../ending.h"
#include "hub.h"
#include "lock_file.h"

namespace orv_client::store {

class whole_command;

struct connection {
  explicit connection(std::string at) : directory{std::move(at)} {}

  std::string directory;             // as the address names it
  listener followed{[](change) {}};  // keeps the keys registered between commands
  std::optional<lock_file> rights;   // of the commands; a watch opens one for itself
  std::list<std::unique_ptr<whole_command>> commands;  // the first one is under way
};

// Opens the connection's lock file where it is not open yet or was removed since. Otherwise `why`
// says what is wrong.
bool open_rights(connection& at, std::string& why);

// The connection to the store at the address's place, or null and how that ended.
std::unique_ptr<connection> connect(const std::string& place, ending& failure);

}  // namespace orv_client::store

#endif
