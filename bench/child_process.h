// Whole processes as benchmarks' cases and as the crowd around them.
#ifndef ORV_BENCH_CHILD_PROCESS_H
#define ORV_BENCH_CHILD_PROCESS_H

#include <sys/types.h>

#include <initializer_list>
#include <vector>

namespace orv_bench {

// Runs a program, found on PATH, to its end, its standard output to nowhere. The exit status, or
// -1.
int run_program(std::initializer_list<const char*> words);

// While it lives, /proc shows so many processes, by sleeping ones, the first of which has the
// camera application's name. One at a time.
class crowd {
 public:
  explicit crowd(int processes);
  crowd(const crowd&) = delete;
  crowd& operator=(const crowd&) = delete;
  ~crowd();

 private:
  std::vector<pid_t> sleepers_;
};

}  // namespace orv_bench

#endif
