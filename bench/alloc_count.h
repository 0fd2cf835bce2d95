// Heap allocation counting for the benchmark binary: every malloc-family call
// and every global operator new in the process (the library, protobuf and the
// C++ runtime alike) adds one to a process-wide counter.
// Threading: the counter is atomic; read it around single-threaded work.
#ifndef QUILLHERON_BENCH_ALLOC_COUNT_H_
#define QUILLHERON_BENCH_ALLOC_COUNT_H_

#include <cstdint>

namespace qhbench {

// Allocations (malloc, calloc, realloc, the aligned allocators and every
// operator new) since the process started. Frees are not counted.
std::uint64_t AllocationCount();

}  // namespace qhbench

#endif  // QUILLHERON_BENCH_ALLOC_COUNT_H_
