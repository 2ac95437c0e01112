// The stack query.
#ifndef ORV_TOOL_STACK_H
#define ORV_TOOL_STACK_H

#include <chrono>

#include "context.h"
#include "thread_list.h"

namespace orvctl {

// How long an answer may take: the target runs a shell command for each of its threads.
constexpr std::chrono::seconds stack_timeout{30};

// Asks for the stack of every thread and prints them as a table or as a JSON object.
void show_stacks(context& shared, sort_key order, bool json);

}  // namespace orvctl

#endif
