// A display that hands everything on to a real X server, and misbehaves on demand.
#ifndef ORV_TESTS_SUPPORT_X_RELAY_H
#define ORV_TESTS_SUPPORT_X_RELAY_H

#include <stddef.h>

#include <atomic>
#include <limits>
#include <string>
#include <thread>

namespace orv_test {

class x_relay {
 public:
  // Hands on to the display of the environment, one client at a time.
  explicit x_relay(int display);
  x_relay(const x_relay&) = delete;
  x_relay& operator=(const x_relay&) = delete;
  ~x_relay();

  [[nodiscard]] std::string name() const;  // for DISPLAY

  // From now on a client loses its connection once the server has sent it so many bytes.
  void cut_after(size_t bytes) { bytes_allowed_ = bytes; }
  static constexpr size_t never = std::numeric_limits<size_t>::max();

  // From now on a fake event of the first key becomes one of the second on its way to the server.
  void change_keycode(char from, char to);

  // Keeps the client's requests back while it is set.
  void hold(bool held) { held_ = held; }
  [[nodiscard]] bool serving() const { return serving_; }

  // To the last client.
  [[nodiscard]] size_t bytes_sent() const { return bytes_sent_; }

 private:
  void run();
  void serve(int client, int server);
  bool take_requests(int client, int server);
  bool take_replies(int server, int client);

  int display_;
  int listener_;
  std::string server_;
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
