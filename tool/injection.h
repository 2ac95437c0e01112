// Keys and touches, and the agent's verdict on them.
#ifndef ORV_TOOL_INJECTION_H
#define ORV_TOOL_INJECTION_H

#include <string>

#include "context.h"
#include "exchange.h"

namespace orvctl {

// Sends an event command and tells the agent's verdict on `what` was to happen, a bad one on
// standard error. A bad verdict becomes the exit status, and stays it when a good one follows.
// False when there is no verdict.
bool inject(context& shared, const std::string& what, const command& sent);

}  // namespace orvctl

#endif
