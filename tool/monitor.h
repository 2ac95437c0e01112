// Starting and stopping one monitor.
#ifndef ORV_TOOL_MONITOR_H
#define ORV_TOOL_MONITOR_H

#include "context.h"
#include "monitor_kind.h"

namespace orvctl {

// `cpu_interval_ms` is for cpu; the others tick as they do.
void start_monitor(context& shared, const monitor_kind& kind, int cpu_interval_ms);
void stop_monitor(context& shared, const monitor_kind& kind);

}  // namespace orvctl

#endif
