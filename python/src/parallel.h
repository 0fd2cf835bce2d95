// A parallel loop over [0, n) for the design sweeps: `workers` threads (0:
// one per core) take chunks of indexes from a shared counter. The body gets
// the index and the worker number, so each worker can keep its own scratch
// buffers. Called with the interpreter lock released.
#ifndef QUILLHERON_PYTHON_PARALLEL_H_
#define QUILLHERON_PYTHON_PARALLEL_H_

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <thread>
#include <vector>

namespace qh_python {

inline int WorkerCount(int workers, std::ptrdiff_t n) {
  int w = workers > 0 ? workers : static_cast<int>(std::thread::hardware_concurrency());
  if (w < 1) w = 1;
  return static_cast<int>(std::min<std::ptrdiff_t>(w, std::max<std::ptrdiff_t>(n, 1)));
}

template <class Body>
void ParallelFor(std::ptrdiff_t n, int worker_count, Body body) {
  if (worker_count <= 1) {
    for (std::ptrdiff_t i = 0; i < n; ++i) body(i, 0);
    return;
  }
  constexpr std::ptrdiff_t kChunk = 64;
  std::atomic<std::ptrdiff_t> next{0};
  auto run = [&](int worker) {
    for (;;) {
      const std::ptrdiff_t first = next.fetch_add(kChunk);
      if (first >= n) return;
      const std::ptrdiff_t last = std::min(n, first + kChunk);
      for (std::ptrdiff_t i = first; i < last; ++i) body(i, worker);
    }
  };
  std::vector<std::thread> threads;
  for (int w = 1; w < worker_count; ++w) threads.emplace_back(run, w);
  run(0);
  for (std::thread& t : threads) t.join();
}

}  // namespace qh_python

#endif  // QUILLHERON_PYTHON_PARALLEL_H_
