// qh_bench: times every operation with Google Benchmark (allocations per call
// as a counter), drives the callgrind instruction counts and checks budgets.
//
//   qh_bench [benchmark flags]           timed table (and --benchmark_out JSON)
//   qh_bench --ir [FILTER]               under callgrind --instr-atstart=no
//   qh_bench --ir-report DIR [--ir-out FILE]   table of the callgrind dumps
//   qh_bench --check --ir-in FILE        budgets; exit status 1 when one fails
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "alloc_count.h"
#include "budgets.h"
#include "instruction_counts.h"
#include "operations.h"

namespace {

using qhbench::Operation;

void RunOperation(benchmark::State& state, const Operation* op) {
  const std::uint64_t before = qhbench::AllocationCount();
  for (auto _ : state) benchmark::DoNotOptimize(op->call());
  const std::uint64_t allocations = qhbench::AllocationCount() - before;
  state.counters["allocs_per_call"] =
      benchmark::Counter(static_cast<double>(allocations) / static_cast<double>(state.iterations()));
}

benchmark::internal::Benchmark* Register(const Operation& op) {
  return benchmark::RegisterBenchmark(op.name.c_str(), RunOperation, &op)->Unit(benchmark::kMicrosecond);
}

// Keeps the median aggregate of each repeated benchmark, in microseconds.
class MedianReporter : public benchmark::ConsoleReporter {
 public:
  std::map<std::string, qhbench::MedianTime> median_us;
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& r : runs) {
      if (r.run_type == Run::RT_Aggregate && r.aggregate_name == "median") {
        median_us[r.run_name.function_name] = {r.GetAdjustedRealTime(), r.GetAdjustedCPUTime()};
      }
    }
    ConsoleReporter::ReportRuns(runs);
  }
};

int Usage() {
  std::fprintf(stderr,
               "usage: qh_bench [benchmark flags]\n"
               "       qh_bench --ir [FILTER]\n"
               "       qh_bench --ir-report DIR [--ir-out FILE]\n"
               "       qh_bench --check --ir-in FILE [benchmark flags]\n");
  return 2;
}

int IrReport(const std::string& dir, const std::string& out) {
  const std::map<std::string, double> counts = qhbench::ReadCallgrindDumps(dir);
  if (counts.empty()) {
    std::fprintf(stderr, "qh_bench: no callgrind dumps in %s\n", dir.c_str());
    return 2;
  }
  std::printf("%-46s %16s\n", "operation (callgrind)", "instructions/call");
  for (const Operation& op : qhbench::Operations()) {
    const auto it = counts.find(op.name);
    if (it != counts.end()) std::printf("%-46s %16.0f\n", op.name.c_str(), it->second);
  }
  if (!out.empty() && !qhbench::WriteCounts(counts, out)) {
    std::fprintf(stderr, "qh_bench: cannot write %s\n", out.c_str());
    return 2;
  }
  return 0;
}

int Check(const std::string& ir_in, int argc, char** argv) {
  const std::map<std::string, double> counts = qhbench::ReadCounts(ir_in);
  int timed = 0;
  const char* const* names = qhbench::TimedOperations(&timed);
  for (int i = 0; i < timed; ++i) {
    const Operation* op = qhbench::FindOperation(names[i]);
    if (op != nullptr) Register(*op)->Repetitions(15)->ReportAggregatesOnly(true);
  }
  benchmark::Initialize(&argc, argv);
  MedianReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return qhbench::CheckBudgets(counts, reporter.median_us) == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<char*> rest = {argv[0]};
  std::string mode, ir_filter, ir_dir, ir_out, ir_in;
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    auto value = [&](std::string& dst) {
      if (i + 1 >= argc) return false;
      dst = argv[++i];
      return true;
    };
    if (a == "--ir") {
      mode = "ir";
      if (i + 1 < argc && argv[i + 1][0] != '-') ir_filter = argv[++i];
    } else if (a == "--ir-report") {
      mode = "ir-report";
      if (!value(ir_dir)) return Usage();
    } else if (a == "--ir-out") {
      if (!value(ir_out)) return Usage();
    } else if (a == "--check") {
      mode = "check";
    } else if (a == "--ir-in") {
      if (!value(ir_in)) return Usage();
    } else {
      rest.push_back(argv[i]);
    }
  }
  int rest_argc = static_cast<int>(rest.size());
  rest.push_back(nullptr);

  if (mode == "ir") return qhbench::RunInstrumented(ir_filter);
  if (mode == "ir-report") return IrReport(ir_dir, ir_out);
  if (mode == "check") return Check(ir_in, rest_argc, rest.data());

  for (const Operation& op : qhbench::Operations()) Register(op);
  benchmark::Initialize(&rest_argc, rest.data());
  if (benchmark::ReportUnrecognizedArguments(rest_argc, rest.data())) return Usage();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
