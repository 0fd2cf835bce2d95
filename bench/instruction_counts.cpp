// Callgrind driver and dump reader. Each operation runs once uninstrumented
// (first-call effects stay out), then `ir_calls` times with instrumentation on;
// the dump is named "qh:<operation>:<calls>" so the reader can divide.
#include "instruction_counts.h"

#include <dirent.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include <valgrind/callgrind.h>

#include "operations.h"

namespace qhbench {
namespace {

constexpr char kDumpPrefix[] = "qh:";

volatile int g_sink;

}  // namespace

int RunInstrumented(const std::string& filter) {
  if (!RUNNING_ON_VALGRIND) {
    std::fprintf(stderr, "qh_bench --ir: run under valgrind --tool=callgrind --instr-atstart=no\n");
    return 2;
  }
  for (const Operation& op : Operations()) {
    if (op.name.find(filter) == std::string::npos) continue;
    g_sink = op.call();
    const std::string dump = kDumpPrefix + op.name + ":" + std::to_string(op.ir_calls);
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_ZERO_STATS;
    for (int i = 0; i < op.ir_calls; ++i) g_sink = op.call();
    CALLGRIND_DUMP_STATS_AT(dump.c_str());
    CALLGRIND_STOP_INSTRUMENTATION;
  }
  return 0;
}

std::map<std::string, double> ReadCallgrindDumps(const std::string& dir) {
  std::map<std::string, double> counts;
  DIR* d = opendir(dir.c_str());
  if (d == nullptr) return counts;
  while (dirent* e = readdir(d)) {
    std::ifstream in(dir + "/" + e->d_name);
    std::string line, name;
    long calls = 0;
    double total = -1;
    const std::string trigger = std::string("desc: Trigger: Client Request: ") + kDumpPrefix;
    while (std::getline(in, line)) {
      if (line.rfind(trigger, 0) == 0) {
        const std::string rest = line.substr(trigger.size());
        const std::size_t colon = rest.rfind(':');
        if (colon == std::string::npos) continue;
        name = rest.substr(0, colon);
        calls = std::atol(rest.c_str() + colon + 1);
      } else if (line.rfind("totals:", 0) == 0 || (total < 0 && line.rfind("summary:", 0) == 0)) {
        std::istringstream fields(line.substr(line.find(':') + 1));
        fields >> total;
      }
    }
    if (!name.empty() && calls > 0 && total >= 0) counts[name] = total / static_cast<double>(calls);
  }
  closedir(d);
  return counts;
}

bool WriteCounts(const std::map<std::string, double>& counts, const std::string& path) {
  std::ofstream out(path);
  for (const auto& [name, ir] : counts) out << name << '\t' << static_cast<long long>(ir + 0.5) << '\n';
  return static_cast<bool>(out);
}

std::map<std::string, double> ReadCounts(const std::string& path) {
  std::map<std::string, double> counts;
  std::ifstream in(path);
  std::string name;
  double ir;
  while (in >> name >> ir) counts[name] = ir;
  return counts;
}

}  // namespace qhbench
