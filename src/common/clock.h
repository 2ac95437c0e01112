// The agent's clock: wall-clock milliseconds in 32 bits.
#ifndef ORV_COMMON_CLOCK_H
#define ORV_COMMON_CLOCK_H

#include <stdint.h>
#include <sys/time.h>

namespace orv {

// Wraps modulo 2^32; differences of two readings stay true over a wrap.
constexpr uint32_t to_ms(const timeval& time) {
  return static_cast<uint32_t>(time.tv_sec) * 1000U + static_cast<uint32_t>(time.tv_usec) / 1000U;
}

inline timeval wall_clock() {
  timeval now{};
  gettimeofday(&now, nullptr);
  return now;
}

}  // namespace orv

#endif
