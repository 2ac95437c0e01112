// The store's server (see store.h). Prints a line once it can be used, and runs until it is killed.
#include <stdio.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <set>

#include "store.h"

namespace {

std::map<std::string, std::string> values;
std::map<int, std::set<std::string>> watchers;  // by connection

void write_value(const std::string& key, const std::string& value) {
  values[key] = value;
  std::erase_if(watchers, [&](const auto& watcher) {
    const auto& [connection, keys] = watcher;
    return keys.contains(key) && !elsewhere::send_packet(connection, key, MSG_DONTWAIT) &&
           close(connection) == 0;
  });
}

std::string answer(char what, const std::string& key, const std::string& rest) {
  if (what == 'G') {
    return values.contains(key) ? values[key] : "-";
  }
  if (what == 'S') {
    write_value(key, rest);
  } else if (what == 'W') {
    watchers[std::stoi(rest)].insert(key);
  }
  return "+";
}

void serve(int client) {
  const std::string request = elsewhere::receive_packet(client);
  if (request == "L") {
    watchers[client] = {};
    elsewhere::send_packet(client, std::to_string(client));
    return;
  }
  const std::string key = request.c_str() + (request.empty() ? 0 : 1);
  const size_t rest = std::min(request.size(), key.size() + 2);
  elsewhere::send_packet(client, answer(request[0], key, request.substr(rest)));
  close(client);
}

}  // namespace

int main() {
  const int listener = elsewhere::open_socket(bind);
  if (listen(listener, SOMAXCONN) != 0) {
    perror("store_server");
    return 1;
  }
  puts("ready");
  fflush(stdout);
  while (true) {
    serve(accept(listener, nullptr, nullptr));
  }
}
