// The three monitors, as a user names them.
#ifndef ORV_TOOL_MONITOR_KIND_H
#define ORV_TOOL_MONITOR_KIND_H

#include <orv/protocol.h>

#include <string_view>

#include "exchange.h"

namespace orvctl {

constexpr int default_cpu_interval_ms = 250;

struct monitor_kind {
  std::string_view name;
  int type;
  int item_code;
  int fixed_interval_ms;  // 0: the tool sets it
};

inline constexpr monitor_kind monitor_kinds[] = {
    {"cpu", ORV_MON_TYPE_CPU, ORV_ITEM_CPU, 0},
    {"heap", ORV_MON_TYPE_HEAP, ORV_ITEM_HEAP, ORV_HEAP_MONITOR_INTERVAL_MS},
    {"stack", ORV_MON_TYPE_STACK, ORV_ITEM_STACK, ORV_STACK_MONITOR_INTERVAL_MS},
};

// Null when there is no such monitor.
const monitor_kind* find_monitor(std::string_view name);

inline int interval_of(const monitor_kind& kind, int cpu_interval_ms) {
  return kind.fixed_interval_ms != 0 ? kind.fixed_interval_ms : cpu_interval_ms;
}

// Where the interval is fixed, the agent only looks whether it is 0.
inline command start_command(const monitor_kind& kind, int interval_ms) {
  return {ORV_COMMAND_MONITOR, {kind.type, ORV_MONITOR_START, interval_ms}, {}};
}

inline command stop_command(const monitor_kind& kind) {
  return {ORV_COMMAND_MONITOR, {kind.type, ORV_MONITOR_STOP}, {}};
}

// Neither starts nor stops anything.
inline command health_command(const monitor_kind& kind) {
  return {ORV_COMMAND_MONITOR, {kind.type, -1}, {}};
}

}  // namespace orvctl

#endif
