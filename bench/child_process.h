// Whole processes as benchmarks' cases and as the crowd around them.
#ifndef ORV_BENCH_CHILD_PROCESS_H
#define ORV_BENCH_CHILD_PROCESS_H

#include <initializer_list>

namespace orv_bench {

// Runs a program, found on PATH, to its end, its standard output to nowhere. The exit status, or
// -1.
int run_program(std::initializer_list<const char*> words);

// Makes the processes that /proc shows so many, by sleeping ones, the first of which has the camera
// application's name. Call it again for another number; they end with this process.
void crowd_to(int processes);

}  // namespace orv_bench

#endif
