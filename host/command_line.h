// The host's command line.
#ifndef ORV_HOST_COMMAND_LINE_H
#define ORV_HOST_COMMAND_LINE_H

#include <CLI/CLI.hpp>
#include <string>

namespace orv_host {

struct options {
  // Found through the program's run path: beside an installed host or in the build tree.
  std::string library = "liborv-agent.so.0";
};

void describe_program(CLI::App& app, options& given);

}  // namespace orv_host

#endif
