// The tool's subcommands. Each function describes one, or those of one topic, with what it does.
#ifndef ORV_TOOL_SUBCOMMANDS_H
#define ORV_TOOL_SUBCOMMANDS_H

#include "options.h"

namespace orvctl {

void add_target(const subcommand& program, context& shared);
void add_heap(const subcommand& program, context& shared);
void add_stack(const subcommand& program, context& shared);
void add_key(const subcommand& program, context& shared);
void add_touch(const subcommand& program, context& shared);
void add_swipe(const subcommand& program, context& shared);
void add_monitor(const subcommand& program, context& shared);
void add_send(const subcommand& program, context& shared);
void add_log(const subcommand& program, context& shared);

}  // namespace orvctl

#endif
