// Two pieces of work timed in turn, in short stretches, so that what slows the machine for a while
// slows both.
#ifndef ORV_BENCH_ALTERNATION_H
#define ORV_BENCH_ALTERNATION_H

#include <functional>
#include <vector>

namespace orv_bench {

using work = std::function<void()>;

// The median of a sample and its 95 % confidence interval: the sample's own values at the ranks
// between which the median lies in 19 of 20 samples, whatever the distribution.
struct median_estimate {
  double low;
  double middle;
  double high;
};

median_estimate estimate_median(std::vector<double> sample);

struct comparison {
  double measured_us;  // medians of one run
  double floor_us;
  median_estimate ratio;  // of the ratios of neighbouring stretches
};

enum class effort { full, once };  // once: each side runs a single time

// `prepare`, which may be empty, runs before each run of either, outside of the measured time.
comparison alternate(const work& measured, const work& floor, const work& prepare, effort how);

}  // namespace orv_bench

#endif
