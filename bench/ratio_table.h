// The table of ratios: each case against its floor or its peer.
#ifndef ORV_BENCH_RATIO_TABLE_H
#define ORV_BENCH_RATIO_TABLE_H

#include <functional>
#include <string>
#include <vector>

#include "alternation.h"

namespace orv_bench {

struct figure {
  std::string name;
  double seen;
  double wanted;
};

// A row of the table while it is measured.
class row {
 public:
  explicit row(effort how) : how_{how} {}

  // Times the two in turn (see alternation.h).
  void alternate(const work& measured, const work& floor, const work& prepare = nullptr) {
    times_ = orv_bench::alternate(measured, floor, prepare, how_);
  }

  // Adds a line for a figure that should be exactly this.
  void expect(const std::string& name, double seen, double wanted) {
    figures_.push_back({name, seen, wanted});
  }

  [[nodiscard]] const comparison& times() const { return times_; }
  [[nodiscard]] const std::vector<figure>& figures() const { return figures_; }

 private:
  effort how_;
  comparison times_{};
  std::vector<figure> figures_;
};

using row_body = std::function<void(row&)>;

// The case should take at most so many times what the other one takes. The body sets up what both
// need and calls alternate(); it throws std::runtime_error when something fails. Called before
// main, to initialise a constant.
bool compare(const std::string& name, const std::string& against, double at_most,
             const row_body& body);

// Throws std::runtime_error unless all went well.
void require(bool well, const char* failure);

// Has the compiler make a value that is not used.
template <class Value>
void keep(const Value& value) {
  asm volatile("" : : "r,m"(value) : "memory");
}

// Measures the rows that the arguments choose and prints the table. The exit status says whether
// all ran, not how fast.
int run(int argc, char** argv);

}  // namespace orv_bench

#endif
