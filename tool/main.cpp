// orvctl: drives a camera's test agent from a command line.

#include <platform_root.h>
#include <stdlib.h>

#include "subcommand.h"

namespace {

std::string one_line(const CLI::App* /*app*/, const CLI::Error& error) {
  return "orvctl: " + std::string{error.what()} + "; see orvctl --help\n";
}

void describe(CLI::App& app, orvctl::context& shared) {
  app.require_subcommand(0, 1);  // so that a wrong name is told as such
  app.final_callback([&app] {
    if (app.get_subcommands().empty()) {
      throw CLI::RequiredError("A subcommand");
    }
  });
  app.failure_message(one_line);
  app.footer(
      "Exit status: 0 the agent answered with success, 1 it answered with failure,\n"
      "2 wrong usage or store, 3 no answer in time.");
  app.add_option("--timeout", shared.timeout_s, "Seconds to wait for an answer")
      ->check(CLI::Range(0.001, 86400.0))
      ->capture_default_str();
  app.add_option("--store", shared.store,
                 "Directory of the platform's store (default: the one that ORV_PLATFORM_ROOT "
                 "names, or the user's own)");
  app.fallthrough();
  app.parse_complete_callback([&shared] {
    if (shared.store.empty()) {
      shared.store = platform::root_path();
    }
    setenv("ORV_PLATFORM_ROOT", shared.store.c_str(), 1);
  });
  orvctl::add_target(app, shared);
  orvctl::add_heap(app, shared);
  orvctl::add_stack(app, shared);
  orvctl::add_monitor(app, shared);
  orvctl::add_send(app, shared);
  orvctl::add_log(app, shared);
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"Drive a camera's test agent.", "orvctl"};
  orvctl::context shared;
  describe(app, shared);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? orvctl::status_success : orvctl::status_usage;
  }
  return shared.status;
}
