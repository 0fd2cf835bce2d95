// Instruction counts per call under valgrind's callgrind tool: a driver that
// runs each operation a few times between client requests (one stats dump
// per operation), and a reader of those dumps.
// Threading: single-threaded, process-wide.
#ifndef QUILLHERON_BENCH_INSTRUCTION_COUNTS_H_
#define QUILLHERON_BENCH_INSTRUCTION_COUNTS_H_

#include <map>
#include <string>

namespace qhbench {

// Runs every operation whose name contains `filter` under callgrind
// instrumentation (start the process with --instr-atstart=no). Returns 0, or
// 2 when not running under callgrind.
int RunInstrumented(const std::string& filter);

// Instructions per call by operation name, read from the dumps in `dir`.
std::map<std::string, double> ReadCallgrindDumps(const std::string& dir);

// Writes and reads "name<TAB>instructions per call" lines.
bool WriteCounts(const std::map<std::string, double>& counts, const std::string& path);
std::map<std::string, double> ReadCounts(const std::string& path);

}  // namespace qhbench

#endif  // QUILLHERON_BENCH_INSTRUCTION_COUNTS_H_
