#include "command_line.h"

namespace orv_host {
namespace {

constexpr char footer[] =
    "Exit status:\n"
    "  0 ended by a signal, 1 the library or the agent failed, 2 wrong usage.\n\n"
    "Environment:\n"
    "  ORV_PLATFORM_ROOT names the directory under which the store and the log lie;\n"
    "  DISPLAY names the X server that receives keys and touches.\n\n"
    "See also:\n"
    "  orvctl(1)";

}  // namespace

void describe_program(CLI::App& app, options& given) {
  app.name("orv-host")
      ->description("Load the test agent and run it on a main loop until SIGTERM or SIGINT.");
  app.footer(footer);
  app.add_option("-l,--library", given.library, "The agent's shared library")
      ->type_name("FILE")
      ->capture_default_str();
}

}  // namespace orv_host
