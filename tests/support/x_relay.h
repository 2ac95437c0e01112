// A display that hands everything on to a real X server, and misbehaves on demand.
#ifndef ORV_TESTS_SUPPORT_X_RELAY_H
#define ORV_TESTS_SUPPORT_X_RELAY_H

#include <gtest/gtest.h>
#include <poll.h>
#include <stddef.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <limits>
#include <string>
#include <string_view>
#include <thread>

namespace orv_test {

class x_relay {
 public:
  // Hands on to the display of the environment, one client at a time, and is that display until it
  // goes.
  x_relay() {
    EXPECT_EQ(listen(listener_, 4), 0);
    setenv("DISPLAY", name, 1);
    thread_ = std::thread{&x_relay::run, this};
  }
  x_relay(const x_relay&) = delete;
  x_relay& operator=(const x_relay&) = delete;
  ~x_relay() {
    stopping_ = true;
    thread_.join();
    close(listener_);
    setenv("DISPLAY", server_.c_str(), 1);
  }

  // From now on a client loses its connection once the server has sent it so many bytes.
  void cut_after(size_t bytes) { bytes_allowed_ = bytes; }
  static constexpr size_t never = std::numeric_limits<size_t>::max();

  // From now on a fake event of the first key becomes one of the second on its way to the server.
  void change_keycode(char from, char to) {
    keycode_from_ = from;
    keycode_to_ = to;
  }

  // Keeps the client's requests back while it is set.
  void hold(bool held) { held_ = held; }
  [[nodiscard]] bool serving() const { return serving_; }

  // To the last client.
  [[nodiscard]] size_t bytes_sent() const { return bytes_sent_; }

 private:
  static constexpr char name[] = ":70";
  static constexpr int patience_ms = 20;  // how soon a change of mind is noticed

  // An X server's abstract socket; `use` is bind or connect. -1 when that fails.
  template <class Use>
  static int display_socket(const std::string& display, Use use) {
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

  static bool send_all(int fd, std::string_view bytes) {
    return send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
  }

  void run() {
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

  void serve(int client, int server) {
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

  bool take_replies(int server, int client) {
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

  bool take_requests(int client, int server) {
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

  std::string server_ = getenv("DISPLAY");
  int listener_ = display_socket(name, bind);
  std::atomic<bool> stopping_{false};
  std::atomic<bool> held_{false};
  std::atomic<bool> serving_{false};
  std::atomic<size_t> bytes_allowed_{never};
  std::atomic<size_t> bytes_sent_{0};
  std::atomic<char> keycode_from_{0};
  std::atomic<char> keycode_to_{0};
  std::thread thread_;
};

}  // namespace orv_test

#endif
