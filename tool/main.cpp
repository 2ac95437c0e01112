// orvctl: drives a camera's test agent from a command line.

#include "command_line.h"

int main(int argc, char** argv) {
  CLI::App app;
  orvctl::context shared;
  orvctl::describe_program(app, shared, {argv, static_cast<size_t>(argc)});
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? orvctl::status_success : orvctl::status_usage;
  }
  return shared.status;
}
