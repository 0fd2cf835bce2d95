// The quantisation analysis of a fixed-point design: every section's pole
// radius and stability, saturated words, the largest magnitude error against
// the float design, and the problems among them (a marginal or unstable
// section, saturated words, an error above the tolerance, a silent cascade),
// each of which makes `heron design` exit 4.
#ifndef QUILLHERON_TOOLS_DESIGN_ANALYSIS_H_
#define QUILLHERON_TOOLS_DESIGN_ANALYSIS_H_

#include <optional>
#include <string>
#include <vector>

#include "design_output.h"
#include "poles.h"

namespace heron_tool {

struct DesignAnalysis {
  bool done = false;  // fixed point, designed
  std::optional<double> max_error_db;  // over every analysed cascade
  double at_hz = 0;
  std::string at;  // the cascade it is in, "" for the only one
  int saturated = 0;
  bool silent = false;
  struct SectionResult {
    std::string name;  // "section 0", "harmonics high-pass", ...
    double pole_radius;
    quillheron::analysis::Stability stability;
  };
  std::vector<SectionResult> sections;
  std::vector<std::string> problems;  // one line each
};

constexpr double kDefaultToleranceDb = 0.5;

DesignAnalysis AnalyseDesign(const DesignOutput& d, double tolerance_db);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_DESIGN_ANALYSIS_H_
