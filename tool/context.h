// What all subcommands share.
#ifndef ORV_TOOL_CONTEXT_H
#define ORV_TOOL_CONTEXT_H

#include <chrono>
#include <string>

namespace orvctl {

enum exit_status { status_success = 0, status_failure = 1, status_usage = 2, status_no_answer = 3 };

struct context {
  double timeout_s = 5;
  std::string store;
  int status = status_success;

  [[nodiscard]] std::chrono::milliseconds timeout() const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::duration<double>{timeout_s});
  }
};

}  // namespace orvctl

#endif
