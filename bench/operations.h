// The measured operations, each one call of the library (or of protobuf, or
// memcpy) on a prepared input, shared by the timed benchmarks, the
// instruction-count driver and the budget check.
// Threading: run operations from one thread; they reuse their buffers.
#ifndef QUILLHERON_BENCH_OPERATIONS_H_
#define QUILLHERON_BENCH_OPERATIONS_H_

#include <functional>
#include <string>
#include <vector>

namespace qhbench {

struct Operation {
  std::string name;          // "group/what/variant"
  std::function<int()> call;  // one call; the result keeps it from being elided
  bool must_not_allocate;    // designers and populates
  int ir_calls;              // calls per instruction count (fewer for big inputs)
};

// Builds the scenarios and every operation over them (takes about a second).
const std::vector<Operation>& Operations();

// The operation called `name`, or null.
const Operation* FindOperation(const std::string& name);

}  // namespace qhbench

#endif  // QUILLHERON_BENCH_OPERATIONS_H_
