// The threads of a target, in the order that a user asks for.
#ifndef ORV_TOOL_STACKS_H
#define ORV_TOOL_STACKS_H

#include <orv/client.h>

#include <string>
#include <vector>

namespace orvctl {

enum class sort_key { base, name, size, tid };

// By size the largest first, else ascending; threads that are equal in it, by id.
std::vector<orv_thread> sorted(const orv_threads& found, sort_key key);

}  // namespace orvctl

#endif
