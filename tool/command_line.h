// The tool's whole command line: its own options and all subcommands.
#ifndef ORV_TOOL_COMMAND_LINE_H
#define ORV_TOOL_COMMAND_LINE_H

#include <span>

#include "options.h"

namespace orvctl {

// Parsing `app` fills `shared` and chooses what is to be done. Of the subcommands those are
// described that the words can mean: a description costs more than most commands.
void describe_program(CLI::App& app, context& shared, job& chosen,
                      std::span<char* const> words = {});

// Parses the words, of which the first is the program's name, and runs the subcommand. The exit
// status.
int run_program(std::span<char* const> words);

}  // namespace orvctl

#endif
