// The options of the tool's subcommands. Each add_ describes one, on which parser and help rest,
// and has it run when it was given.
//
// What a subcommand does is elsewhere: the parser's header makes objects of its own in each source
// that includes it, before main begins, and takes seconds to compile.
#ifndef ORV_TOOL_SUBCOMMANDS_H
#define ORV_TOOL_SUBCOMMANDS_H

#include "context.h"

namespace CLI {
class App;
}

namespace orvctl {

void add_target(CLI::App& app, context& shared);
void add_heap(CLI::App& app, context& shared);
void add_stack(CLI::App& app, context& shared);
void add_key(CLI::App& app, context& shared);
void add_touch(CLI::App& app, context& shared);
void add_swipe(CLI::App& app, context& shared);
void add_monitor(CLI::App& app, context& shared);
void add_send(CLI::App& app, context& shared);
void add_log(CLI::App& app, context& shared);

// The timeout of what samples stacks, unless one was given.
void allow_for_stacks(const CLI::App& app, context& shared);

}  // namespace orvctl

#endif
