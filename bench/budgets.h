// The performance budgets and their check: instruction ratios against
// protobuf parsing, zero heap allocations, and wall-clock limits on two
// designers. Threading: single-threaded.
#ifndef QUILLHERON_BENCH_BUDGETS_H_
#define QUILLHERON_BENCH_BUDGETS_H_

#include <map>
#include <string>

namespace qhbench {

// Checks every budget, printing one verdict line each. `instructions` holds
// the callgrind counts per call (from the bench-ir step); `median_us` the
// median wall-clock time per call of the timed operations. Returns the
// number of failed budgets.
int CheckBudgets(const std::map<std::string, double>& instructions,
                 const std::map<std::string, double>& median_us);

// The operations whose wall-clock time is budgeted.
const char* const* TimedOperations(int* count);

}  // namespace qhbench

#endif  // QUILLHERON_BENCH_BUDGETS_H_
