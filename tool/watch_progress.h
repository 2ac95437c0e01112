// A line on standard error that says how a watch goes, when somebody sees it there.
#ifndef ORV_TOOL_WATCH_PROGRESS_H
#define ORV_TOOL_WATCH_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace orvctl {

class watch_progress {
 public:
  explicit watch_progress(std::optional<std::chrono::milliseconds> duration);
  watch_progress(const watch_progress&) = delete;
  watch_progress& operator=(const watch_progress&) = delete;
  ~watch_progress() { clear(); }

  void show(uint64_t items, size_t packet_bytes);
  // Makes room for other output.
  void clear();

 private:
  std::optional<std::chrono::milliseconds> duration_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  bool seen_;
  bool shown_ = false;
};

}  // namespace orvctl

#endif
