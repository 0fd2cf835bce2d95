// The performance budgets and their check: instruction ratios against
// protobuf parsing, zero heap allocations, and wall-clock limits on two
// designers. Threading: single-threaded.
#ifndef QUILLHERON_BENCH_BUDGETS_H_
#define QUILLHERON_BENCH_BUDGETS_H_

#include <map>
#include <string>

namespace qhbench {

// Median time per call over the repetitions, in microseconds.
struct MedianTime {
  double real_us = 0;
  double cpu_us = 0;
};

// Checks every budget, printing one verdict line each. `instructions` holds
// the callgrind counts per call (from the bench-ir step); `median_us` the
// median times per call of the timed operations. A time budget is judged on
// the thread's CPU time, which other work on a shared machine does not
// inflate; the wall-clock median is printed beside it. Returns the number of
// failed budgets.
int CheckBudgets(const std::map<std::string, double>& instructions,
                 const std::map<std::string, MedianTime>& median_us);

// The operations whose wall-clock time is budgeted.
const char* const* TimedOperations(int* count);

}  // namespace qhbench

#endif  // QUILLHERON_BENCH_BUDGETS_H_
