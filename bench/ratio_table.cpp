#include "ratio_table.h"

#include <getopt.h>
#include <stdio.h>

#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

namespace orv_bench {
namespace {

struct wanted_ratio {
  std::string name;
  std::string against;
  double at_most;
  row_body body;
};

// Filled before main, from several files: made when first asked for.
std::vector<wanted_ratio>& wanted_ratios() {
  static std::vector<wanted_ratio> rows;
  return rows;
}

struct options {
  effort how = effort::full;
  std::string filter;
};

constexpr char usage[] =
    R"(Usage: orv-bench [OPTION...]

Measures each case against its floor or its peer and prints a table of ratios.

Options:
  --filter TEXT  only the rows with TEXT in the name of the case, or of what it is measured against
  --once         run each side a single time, to see that it works; the figures mean nothing
  --help         this text
)";

constexpr char explanation[] = R"(
Case and floor alternate in stretches of 0.3 ms, or of one run that takes longer, and each two
neighbouring stretches give a ratio. "ratio" is the median of these, "95 %" its confidence interval
by order statistics. MISSED: the whole interval lies above what is wanted. Where one run takes
a millisecond or more, the machine has to be quiet: load slows a long run by more than a short one.
)";

// An exit status when there is nothing to measure, or -1.
int read_options(int argc, char** argv, options& chosen) {
  const option known[] = {{"filter", required_argument, nullptr, 'f'},
                          {"once", no_argument, nullptr, 'o'},
                          {"help", no_argument, nullptr, 'h'},
                          {}};
  int letter = 0;
  while ((letter = getopt_long(argc, argv, "", known, nullptr)) != -1) {
    if (letter == 'f') {
      chosen.filter = optarg;
    } else if (letter == 'o') {
      chosen.how = effort::once;
    } else {
      fputs(usage, letter == 'h' ? stdout : stderr);
      return letter == 'h' ? 0 : 2;
    }
  }
  return -1;
}

void print(const wanted_ratio& wanted, const row& measured) {
  const comparison& times = measured.times();
  const median_estimate& ratio = times.ratio;
  printf("%-28s %10.2f  %-33s %10.2f  %6.3f  %6.3f ..%6.3f  <= %.3g%s\n", wanted.name.c_str(),
         times.measured_us, wanted.against.c_str(), times.floor_us, ratio.middle, ratio.low,
         ratio.high, wanted.at_most, ratio.low > wanted.at_most ? "  MISSED" : "");
  for (const figure& one : measured.figures()) {
    printf("%-28s %10s  %-33s %10.4g  %6s  %16s  == %.3g%s\n", wanted.name.c_str(), "",
           one.name.c_str(), one.seen, "", "", one.wanted,
           one.seen == one.wanted ? "" : "  MISSED");
  }
  fflush(stdout);
}

bool measure(const wanted_ratio& wanted, effort how) {
  row measured{how};
  try {
    wanted.body(measured);
  } catch (const std::exception& failure) {
    fprintf(stderr, "orv-bench: %s against %s: %s\n", wanted.name.c_str(), wanted.against.c_str(),
            failure.what());
    return false;
  }
  print(wanted, measured);
  return true;
}

}  // namespace

bool compare(const std::string& name, const std::string& against, double at_most,
             const row_body& body) {
  wanted_ratios().push_back({name, against, at_most, body});
  return true;
}

void require(bool well, const char* failure) {
  if (!well) {
    throw std::runtime_error{failure};
  }
}

int run(int argc, char** argv) {
  options chosen;
  if (const int status = read_options(argc, argv, chosen); status >= 0) {
    return status;
  }
  printf("%-28s %10s  %-33s %10s  %6s  %16s  %s\n", "case", "median us", "against", "median us",
         "ratio", "95 %", "wanted");
  bool all_ran = true;
  size_t chosen_rows = 0;
  for (const wanted_ratio& row : wanted_ratios()) {
    if ((row.name + " " + row.against).find(chosen.filter) != std::string::npos) {
      ++chosen_rows;
      all_ran = measure(row, chosen.how) && all_ran;
    }
  }
  fputs(explanation, stdout);
  return all_ran && chosen_rows > 0 ? 0 : 1;
}

}  // namespace orv_bench
