// libvconf.so.0 of another platform; see store.h.
#include <glib-unix.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

#include "store.h"

#define PUBLIC extern "C" __attribute__((visibility("default")))

struct node {
  std::string key;
};

namespace {

using changed_fn = void (*)(node* changed, void* user_data);

struct watch {
  std::string key;
  changed_fn changed;
  void* user_data;
  bool operator==(const watch&) const = default;
};

std::vector<watch> watches;
std::string connection_number;  // of the connection that brings changes; empty while there is none

// The connection stays open. The reply is empty when there is no store.
std::string ask(const std::string& request, int& connection) {
  connection = elsewhere::open_socket(connect);
  return elsewhere::send_packet(connection, request) ? elsewhere::receive_packet(connection) : "";
}

std::string ask(const std::string& request) {
  int connection = -1;
  std::string reply = ask(request, connection);
  close(connection);
  return reply;
}

int change(char what, const std::string& key, const std::string& rest) {
  return ask(what + key + '\0' + rest) == "+" ? 0 : -1;
}

// Any watch may end in a callback.
gboolean deliver(int connection, GIOCondition /*condition*/, void* /*none*/) {
  node changed{elsewhere::receive_packet(connection)};
  for (const watch& one : std::vector<watch>{watches}) {
    if (one.key == changed.key && std::ranges::count(watches, one) > 0) {
      one.changed(&changed, one.user_data);
    }
  }
  return changed.key.empty() ? G_SOURCE_REMOVE : G_SOURCE_CONTINUE;
}

void listen_for_changes() {
  int connection = -1;
  connection_number = ask("L", connection);
  if (connection_number.empty()) {
    close(connection);
  } else {
    g_unix_fd_add(connection, G_IO_IN, deliver, nullptr);
  }
}

}  // namespace

PUBLIC int vconf_get_int(const char* key, int* value) {
  const std::string found = ask(std::string{"G"} + key);
  if (!found.starts_with('i')) {
    return -1;
  }
  *value = static_cast<int>(strtol(found.c_str() + 1, nullptr, 10));
  return 0;
}

PUBLIC char* vconf_get_str(const char* key) {
  const std::string found = ask(std::string{"G"} + key);
  return found.starts_with('s') ? strdup(found.c_str() + 1) : nullptr;
}

PUBLIC int vconf_set_int(const char* key, int value) {
  return change('S', key, "i" + std::to_string(value));
}

PUBLIC int vconf_set_str(const char* key, const char* value) {
  return change('S', key, std::string{"s"} + value);
}

PUBLIC int vconf_notify_key_changed(const char* key, changed_fn changed, void* user_data) {
  if (connection_number.empty()) {
    listen_for_changes();
  }
  if (connection_number.empty() || change('W', key, connection_number) != 0) {
    return -1;
  }
  watches.push_back({key, changed, user_data});
  return 0;
}

PUBLIC int vconf_ignore_key_changed(const char* key, changed_fn changed) {
  const auto ended = std::erase_if(watches, [key = std::string{key}, changed](const watch& one) {
    return one.changed == changed && one.key == key;
  });
  return ended > 0 ? 0 : -1;
}

PUBLIC char* vconf_keynode_get_name(node* changed) {
  return changed->key.data();
}

PUBLIC int vconf_keynode_get_type(node* changed) {
  int ignored = 0;
  return vconf_get_int(changed->key.c_str(), &ignored) == 0 ? 41 : 40;
}
