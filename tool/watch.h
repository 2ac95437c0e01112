// Watching the monitors.
#ifndef ORV_TOOL_WATCH_H
#define ORV_TOOL_WATCH_H

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "camera.h"
#include "monitor_kinds.h"

namespace orvctl {

constexpr int usual_cpu_interval_ms = 250;

struct watch_words {
  std::vector<const monitor_kind*> kinds;  // all when empty
  std::optional<int> interval_ms;
  std::optional<std::chrono::milliseconds> duration;  // none: until it is interrupted
  std::string csv_path;                               // "-" for standard output; no CSV when empty
};

// How a watch goes, as much of it as so many columns have room for.
std::string progress_text(std::chrono::seconds gone,
                          std::optional<std::chrono::milliseconds> duration, uint64_t items,
                          size_t packet_bytes, size_t columns);

// Shows the items as they come, how the watch goes, and a summary at the end.
exit_status watch_monitors(const context& shared, const watch_words& given);

}  // namespace orvctl

#endif
