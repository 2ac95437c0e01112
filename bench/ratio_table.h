// Benchmarks are told as ratios: each case against its floor or its peer of the same run.
#ifndef ORV_BENCH_RATIO_TABLE_H
#define ORV_BENCH_RATIO_TABLE_H

#include <string>

namespace orv_bench {

// The measured case should take at most so many times what the other one takes. Both are names of
// registered benchmarks. Called before main, to initialise a constant.
bool want(const std::string& measured, const std::string& against, double at_most);

// The same for a figure that a case reports as a counter: it should be `exactly` this.
bool want_counter(const std::string& measured, const std::string& counter, double exactly);

// Runs what is registered, its repetitions interleaved, and prints the table of ratios of medians.
// Further options are Google Benchmark's. The exit status tells whether all ran, not how fast.
int run(int argc, char** argv);

}  // namespace orv_bench

#endif
