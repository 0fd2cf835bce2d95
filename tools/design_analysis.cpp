#include "design_analysis.h"

#include <cmath>
#include <cstdio>

#include "quantisation.h"

namespace heron_tool {
namespace {

using quillheron::analysis::QuantisationReport;
using quillheron::analysis::Stability;

std::string Fixed(const char* format, double v) {
  char buf[48];
  std::snprintf(buf, sizeof buf, format, v);
  return buf;
}

// "harmonics high-pass: " or "" for a design's only cascade.
std::string Prefix(const Analysed& a) { return a.name.empty() ? "" : a.name + ": "; }

std::string SectionName(const Analysed& a, size_t s) {
  if (a.quantised.sections.size() == 1 && !a.name.empty()) return a.name;
  return Prefix(a) + "section " + std::to_string(s);
}

}  // namespace

DesignAnalysis AnalyseDesign(const DesignOutput& d, double tolerance_db) {
  DesignAnalysis out;
  out.done = d.result == 0 && !d.analysed.empty();
  if (!out.done) return out;
  for (const Analysed& a : d.analysed) {
    const QuantisationReport r = quillheron::analysis::Quantisation(a.reference, a.quantised, a.rate,
                                                                  a.coefficient_words, a.numerator_words, a.width);
    for (size_t s = 0; s < r.sections.size(); ++s) {
      const auto& roots = r.sections[s];
      out.sections.push_back({SectionName(a, s), roots.pole_radius, roots.stability});
      if (roots.stability != Stability::kStable) {
        out.problems.push_back(SectionName(a, s) + ": " + quillheron::analysis::StabilityName(roots.stability) +
                               ", pole radius " + Fixed("%.9g", roots.pole_radius) +
                               (roots.stability == Stability::kMarginal ? " (a pole on the unit circle)" : ""));
      }
    }
    out.saturated += r.saturated;
    if (r.saturated > 0) {
      out.problems.push_back(Prefix(a) + std::to_string(r.saturated) + " saturated word" +
                             (r.saturated == 1 ? "" : "s"));
    }
    if (r.silent) {
      out.silent = true;
      out.problems.push_back(Prefix(a) + "silent: every stored numerator word is zero");
      continue;
    }
    if (!r.max_error_db) continue;
    if (!out.max_error_db || *r.max_error_db > *out.max_error_db) {
      out.max_error_db = r.max_error_db;
      out.at_hz = r.at_hz;
      out.at = a.name;
    }
    if (!(*r.max_error_db <= tolerance_db)) {
      out.problems.push_back(Prefix(a) + "magnitude error " + Fixed("%.3g", *r.max_error_db) + " dB at " +
                             Fixed("%.0f", r.at_hz) + " Hz, above the tolerance of " + Fixed("%g", tolerance_db) +
                             " dB");
    }
  }
  return out;
}

}  // namespace heron_tool
