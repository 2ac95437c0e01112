#include "ratio_table.h"

#include <benchmark/benchmark.h>
#include <stdio.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace orv_bench {
namespace {

struct wanted_ratio {
  std::string measured;
  std::string against;
  double at_most;
};

struct wanted_counter {
  std::string measured;
  std::string counter;
  double exactly;
};

// Filled before main, from several files: made when first asked for.
std::vector<wanted_ratio>& wanted_ratios() {
  static std::vector<wanted_ratio> rows;
  return rows;
}

std::vector<wanted_counter>& wanted_counters() {
  static std::vector<wanted_counter> rows;
  return rows;
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

class collector : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& /*context*/) override { return true; }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred) {
        fprintf(stderr, "%s: %s\n", run.benchmark_name().c_str(), run.error_message.c_str());
        failed_ = true;
      } else if (run.run_type == Run::RT_Iteration) {
        const std::string name = run.run_name.function_name;
        const double iterations = static_cast<double>(run.iterations);
        times_us_[name].push_back(run.real_accumulated_time / iterations * 1e6);
        for (const auto& [counter, value] : run.counters) {
          counters_[{name, counter}].push_back(value.value);
        }
      }
    }
    fprintf(stderr, ".");
  }

  [[nodiscard]] bool failed() const { return failed_; }

  void print_table() const {
    fprintf(stderr, "\n");
    printf("%-34s %12s  %-34s %12s  %7s  %7s\n", "case", "median us", "against", "median us",
           "ratio", "wanted");
    for (const wanted_ratio& row : wanted_ratios()) {
      print(row);
    }
    for (const wanted_counter& row : wanted_counters()) {
      print(row);
    }
  }

 private:
  void print(const wanted_ratio& row) const {
    const auto measured = times_us_.find(row.measured);
    const auto against = times_us_.find(row.against);
    if (measured == times_us_.end() || against == times_us_.end()) {
      return;  // filtered out
    }
    const double measured_us = median(measured->second);
    const double against_us = median(against->second);
    const double ratio = measured_us / against_us;
    printf("%-34s %12.2f  %-34s %12.2f  %7.3f  <= %.3g%s\n", row.measured.c_str(), measured_us,
           row.against.c_str(), against_us, ratio, row.at_most,
           ratio > row.at_most ? "  MISSED" : "");
  }

  void print(const wanted_counter& row) const {
    const auto measured = counters_.find({row.measured, row.counter});
    if (measured == counters_.end()) {
      return;
    }
    const double value = median(measured->second);
    printf("%-34s %12s  %-34s %12.4g  %7s  == %.3g%s\n", row.measured.c_str(), "",
           row.counter.c_str(), value, "", row.exactly, value == row.exactly ? "" : "  MISSED");
  }

  std::map<std::string, std::vector<double>> times_us_;
  std::map<std::pair<std::string, std::string>, std::vector<double>> counters_;
  bool failed_ = false;
};

}  // namespace

bool want(const std::string& measured, const std::string& against, double at_most) {
  wanted_ratios().push_back({measured, against, at_most});
  return true;
}

bool want_counter(const std::string& measured, const std::string& counter, double exactly) {
  wanted_counters().push_back({measured, counter, exactly});
  return true;
}

int run(int argc, char** argv) {
  std::vector<char*> arguments{argv, argv + argc};
  char interleaving[] = "--benchmark_enable_random_interleaving=true";
  arguments.insert(arguments.begin() + 1, interleaving);
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
    return 2;
  }
  collector results;
  const size_t ran = benchmark::RunSpecifiedBenchmarks(&results);
  results.print_table();
  return ran == 0 || results.failed() ? 1 : 0;
}

}  // namespace orv_bench
