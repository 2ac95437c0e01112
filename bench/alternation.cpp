#include "alternation.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <utility>

namespace orv_bench {
namespace {

using clock = std::chrono::steady_clock;
using seconds = std::chrono::duration<double>;

// A tenth of what the scheduler gives to a process at a time (3 ms): on a busy machine most
// stretches then pass undisturbed. With stretches of 3 ms, interruptions can keep in step with the
// alternation and hit the same side each time.
constexpr seconds stretch_time{0.0003};
constexpr seconds comparison_time{5};
constexpr size_t fewest_pairs = 15;
constexpr size_t most_pairs = 3000;

// One of the two: what it runs, and how often in a stretch.
struct side {
  const work& run;
  size_t runs = 1;
  std::vector<double> times_s = {};  // of one run, a stretch each
};

double time_runs(const side& one) {
  const auto start = clock::now();
  for (size_t i = 0; i < one.runs; ++i) {
    one.run();
  }
  return seconds{clock::now() - start}.count();
}

double time_prepared_runs(const side& one, const work& prepare) {
  seconds total{0};
  for (size_t i = 0; i < one.runs; ++i) {
    prepare();
    const auto start = clock::now();
    one.run();
    total += clock::now() - start;
  }
  return total.count();
}

void run_stretch(side& one, const work& prepare) {
  const double total_s = prepare ? time_prepared_runs(one, prepare) : time_runs(one);
  one.times_s.push_back(total_s / static_cast<double>(one.runs));
}

// Doubles the number of runs until they fill a stretch. The first runs warm the caches as well.
void fill_stretch(side& one, const work& prepare) {
  while (true) {
    const auto start = clock::now();
    run_stretch(one, prepare);
    if (clock::now() - start >= stretch_time / 2) {
      break;
    }
    one.runs *= 2;
  }
  one.times_s.clear();
}

// Every second pair begins with the other side: what a stretch leaves to the next one, in caches
// say, is so left to both.
void run_pairs(side& measured, side& floor, const work& prepare, size_t pairs) {
  for (size_t i = 0; i < pairs; ++i) {
    run_stretch(i % 2 == 0 ? floor : measured, prepare);
    run_stretch(i % 2 == 0 ? measured : floor, prepare);
  }
}

size_t pairs_in_time(side& measured, side& floor, const work& prepare) {
  const auto start = clock::now();
  run_pairs(measured, floor, prepare, 2);
  const seconds pair_time = seconds{clock::now() - start} / 2;
  return std::clamp(static_cast<size_t>(comparison_time / pair_time), fewest_pairs, most_pairs);
}

double median(const std::vector<double>& sample) {
  return estimate_median(sample).middle;
}

}  // namespace

median_estimate estimate_median(std::vector<double> sample) {
  std::sort(sample.begin(), sample.end());
  // How many values lie below the median is a binomial count, nearly normal, of deviation
  // sqrt(n) / 2.
  const auto size = static_cast<double>(sample.size());
  const double rank = std::max(0.0, std::floor((size - 1) / 2 - 0.98 * std::sqrt(size)));
  const auto lowest = static_cast<size_t>(rank);
  const size_t last = sample.size() - 1;
  return {sample[lowest], (sample[last / 2] + sample[(last + 1) / 2]) / 2, sample[last - lowest]};
}

comparison alternate(const work& measured_work, const work& floor_work, const work& prepare,
                     effort how) {
  side measured{measured_work};
  side floor{floor_work};
  size_t pairs = 1;
  if (how == effort::full) {
    fill_stretch(floor, prepare);
    fill_stretch(measured, prepare);
    pairs = pairs_in_time(measured, floor, prepare);
  }
  run_pairs(measured, floor, prepare, pairs);
  std::vector<double> ratios;
  for (size_t i = 0; i < measured.times_s.size(); ++i) {
    ratios.push_back(measured.times_s[i] / floor.times_s[i]);
  }
  return {median(measured.times_s) * 1e6, median(floor.times_s) * 1e6, estimate_median(ratios)};
}

}  // namespace orv_bench
