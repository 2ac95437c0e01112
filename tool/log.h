// The agent's log.
#ifndef ORV_TOOL_LOG_H
#define ORV_TOOL_LOG_H

#include "context.h"

namespace orvctl {

// Becomes the platform's log reader, which prints the agent's records; with `dump` it ends behind
// the last one. Returns only when the store or that fails, which it tells.
void show_log(context& shared, bool dump);

}  // namespace orvctl

#endif
