#include "x_relay.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>

namespace orv_test {
namespace {

constexpr int patience_ms = 20;  // how soon a change of mind is noticed

// An X server's abstract socket; `use` is bind or connect. -1 when that fails.
template <class Use>
int display_socket(const std::string& display, Use use) {
  const std::string path = std::string(1, '\0') + "/tmp/.X11-unix/X" + display.substr(1);
  sockaddr_un address{AF_UNIX, {}};
  path.copy(address.sun_path, sizeof address.sun_path);
  const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
  const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (use(fd, reinterpret_cast<const sockaddr*>(&address), size) != 0) {
    close(fd);
    return -1;
  }
  return fd;
}

bool send_all(int fd, std::string_view bytes) {
  return send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
}

}  // namespace

x_relay::x_relay(int display)
    : display_{display}, listener_{display_socket(name(), bind)}, server_{getenv("DISPLAY")} {
  EXPECT_EQ(listen(listener_, 4), 0);
  thread_ = std::thread{&x_relay::run, this};
}

x_relay::~x_relay() {
  stopping_ = true;
  thread_.join();
  close(listener_);
}

std::string x_relay::name() const {
  return ":" + std::to_string(display_);
}

void x_relay::change_keycode(char from, char to) {
  keycode_from_ = from;
  keycode_to_ = to;
}

void x_relay::run() {
  while (!stopping_) {
    pollfd listening{listener_, POLLIN, 0};
    if (poll(&listening, 1, patience_ms) != 1) {
      continue;
    }
    const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    const int server = display_socket(server_, connect);
    bytes_sent_ = 0;
    serving_ = true;
    serve(client, server);
    serving_ = false;
    close(server);
    close(client);
  }
}

void x_relay::serve(int client, int server) {
  bool connected = bytes_allowed_ > 0;
  while (connected && !stopping_) {
    pollfd both[] = {{server, POLLIN, 0}, {held_ ? -1 : client, POLLIN, 0}};
    poll(both, 2, patience_ms);
    if (both[0].revents != 0) {
      connected = take_replies(server, client);
    }
    if (connected && both[1].revents != 0) {
      connected = take_requests(client, server);
    }
  }
}

bool x_relay::take_replies(int server, int client) {
  char bytes[4096];
  const ssize_t count = recv(server, bytes, sizeof bytes, 0);
  if (count <= 0) {
    return false;
  }
  const size_t allowed = std::min(static_cast<size_t>(count), bytes_allowed_ - bytes_sent_);
  bytes_sent_ += allowed;
  const bool last = bytes_sent_ >= bytes_allowed_;
  if (last) {
    shutdown(client, SHUT_RD);  // however fast it answers, it writes to nobody
  }
  return send_all(client, {bytes, allowed}) && !last;
}

bool x_relay::take_requests(int client, int server) {
  char bytes[4096];
  const ssize_t count = recv(client, bytes, sizeof bytes, 0);
  if (count <= 0) {
    return false;
  }
  // Minor opcode, length in words, key press, keycode.
  const char fake_key[] = {2, 9, 0, 2, keycode_from_};
  char* const end = bytes + count;
  char* const found = std::search(bytes, end, fake_key, std::end(fake_key));
  if (found != end) {
    found[sizeof fake_key - 1] = keycode_to_;
  }
  return send_all(server, {bytes, static_cast<size_t>(count)});
}

}  // namespace orv_test
