// The tool's subcommands. Each describes its own options, on which parser and help rest, and runs
// when it was given.
#ifndef ORV_TOOL_SUBCOMMAND_H
#define ORV_TOOL_SUBCOMMAND_H

#include <chrono>
#include <optional>
#include <string>

#include "exchange.h"

namespace CLI {
class App;
}

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

void add_target(CLI::App& app, context& shared);
void add_heap(CLI::App& app, context& shared);
void add_stack(CLI::App& app, context& shared);
void add_key(CLI::App& app, context& shared);
void add_touch(CLI::App& app, context& shared);
void add_swipe(CLI::App& app, context& shared);
void add_send(CLI::App& app, context& shared);
void add_log(CLI::App& app, context& shared);
void add_monitor(CLI::App& app, context& shared);
void add_monitor_watch(CLI::App& app, CLI::App& monitor, context& shared);

// Runs the exchange; a failure is told on standard error and becomes the exit status. With an
// answer, the exit status is the answer's.
std::optional<answer> ask(context& shared, const command& sent);

// Tells that an answer's text is no `what`; the exit status becomes failure.
void refuse_answer(context& shared, const char* what, const std::string& text);

// What `ask` is made of, for who asks more than one thing: each tells a failure on standard error;
// the first sets the exit status, the second returns it.
bool store_is_usable(context& shared);
int tell(const context& shared, const command& sent, exchange_error error);

}  // namespace orvctl

#endif
