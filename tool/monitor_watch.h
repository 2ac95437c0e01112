// Watching the monitors: a session with its items, progress and summary shown.
#ifndef ORV_TOOL_MONITOR_WATCH_H
#define ORV_TOOL_MONITOR_WATCH_H

#include <string>
#include <string_view>
#include <vector>

#include "context.h"
#include "monitor_kind.h"

namespace orvctl {

// The tool waits for a tick of the slowest monitor to empty the key behind it. Any longer, and the
// others could fill the packet meanwhile, and a query would give up waiting for the key.
constexpr int longest_watch_interval_ms = 4000;

struct watch_options {
  std::vector<std::string> monitors;  // all when empty
  int interval_ms = default_cpu_interval_ms;
  std::string duration;  // as parse_duration reads it; until interrupted when empty
  bool json = false;
  std::string csv_path;  // standard output when empty
};

bool watches(const watch_options& given, std::string_view name);

void watch_monitors(context& shared, const watch_options& given);

}  // namespace orvctl

#endif
