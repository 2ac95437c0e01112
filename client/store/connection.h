// A store that was opened: what its commands, watches and logs share.
#ifndef ORV_CLIENT_STORE_CONNECTION_H
#define ORV_CLIENT_STORE_CONNECTION_H

#include <list>
#include <memory>
#include <string>

#include "hub.h"

namespace orv_client::store {

class whole_command;

struct connection {
  std::string directory;                               // as the address names it
  listener followed{[](change) {}};                    // keeps the keys registered between commands
  std::list<std::unique_ptr<whole_command>> commands;  // the first one is under way
};

}  // namespace orv_client::store

#endif
