// The tool's whole command line: its own options and all subcommands.
#ifndef ORV_TOOL_COMMAND_LINE_H
#define ORV_TOOL_COMMAND_LINE_H

#include <CLI/CLI.hpp>

#include "subcommand.h"

namespace orvctl {

// Parsing `app` fills `shared` and runs the subcommand that was given.
void describe_program(CLI::App& app, context& shared);

}  // namespace orvctl

#endif
