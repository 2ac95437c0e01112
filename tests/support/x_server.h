// An X server of the test's own, which it may kill and start again on the same display.
#ifndef ORV_TESTS_SUPPORT_X_SERVER_H
#define ORV_TESTS_SUPPORT_X_SERVER_H

#include <memory>
#include <string>

#include "process.h"

namespace orv_test {

class x_server {
 public:
  // Runs when it returns. `options` go to the server as they are.
  explicit x_server(int display, std::string options = "");

  void start();
  // As a crash does it: SIGKILL. Gone when it returns.
  void kill() { process_.reset(); }

  [[nodiscard]] std::string name() const;  // for DISPLAY
  [[nodiscard]] pid_t pid() const { return process_->pid(); }

 private:
  int display_;
  std::string options_;
  std::unique_ptr<background> process_;
};

}  // namespace orv_test

#endif
