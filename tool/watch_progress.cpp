#include "watch_progress.h"

#include <stdio.h>
#include <unistd.h>

#include "memory_size.h"

namespace orvctl {

using std::chrono::duration_cast;
using std::chrono::seconds;

watch_progress::watch_progress(std::optional<std::chrono::milliseconds> duration)
    : duration_{duration}, seen_{isatty(STDERR_FILENO) == 1} {}

void watch_progress::show(uint64_t items, size_t packet_bytes) {
  if (!seen_) {
    return;
  }
  clear();
  const auto gone = duration_cast<seconds>(std::chrono::steady_clock::now() - start_);
  fprintf(stderr, "watching: %lld s", static_cast<long long>(gone.count()));
  if (duration_) {
    fprintf(stderr, " of %g s", std::chrono::duration<double>{*duration_}.count());
  }
  fprintf(stderr, ", %llu items, packet %s", static_cast<unsigned long long>(items),
          memory_size(packet_bytes).c_str());
  fflush(stderr);
  shown_ = true;
}

void watch_progress::clear() {
  if (shown_) {
    fputs("\r\033[K", stderr);
    fflush(stderr);
    shown_ = false;
  }
}

}  // namespace orvctl
