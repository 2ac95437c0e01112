// The process lister, which both samplers share.
#ifndef ORV_COMMON_THREAD_LISTER_H
#define ORV_COMMON_THREAD_LISTER_H

#include <stdint.h>

#include <optional>

#include "common/handle.h"
#include "common/thread_line.h"

namespace orv {

// What the samplers' callers have room for.
inline constexpr int32_t max_listed_threads = 4096;

class thread_listing {
 public:
  // Runs the lister and waits for its end.
  thread_listing() noexcept;

  // The threads in the lister's order, `max_listed_threads` of them at most; empty behind the last.
  std::optional<listed_thread> next() noexcept;

 private:
  handle<FILE> file_;  // null when the threads could not be listed
  int32_t taken_ = 0;
};

}  // namespace orv

#endif
