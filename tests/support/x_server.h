// An X server of the test's own, which it may kill and start again on the same display.
#ifndef ORV_TESTS_SUPPORT_X_SERVER_H
#define ORV_TESTS_SUPPORT_X_SERVER_H

#include <sys/types.h>

#include <string>
#include <vector>

namespace orv_test {

class x_server {
 public:
  // Runs when it returns. `options` go to the server as they are.
  explicit x_server(int display, std::vector<std::string> options = {});
  x_server(const x_server&) = delete;
  x_server& operator=(const x_server&) = delete;
  ~x_server();

  void start();
  // As a crash does it: SIGKILL. Gone when it returns.
  void kill();

  [[nodiscard]] std::string name() const;  // for DISPLAY
  [[nodiscard]] pid_t pid() const { return pid_; }

 private:
  int display_;
  std::vector<std::string> options_;
  pid_t pid_ = -1;
};

}  // namespace orv_test

#endif
