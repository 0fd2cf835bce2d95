#include "report_curves.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "poles.h"
#include "quantisation.h"
#include "response.h"

namespace heron_tool {

namespace an = quillheron::analysis;
using Complex = std::complex<double>;

namespace {
constexpr double kPi = 3.14159265358979323846;
}  // namespace

ReportCurve CurveOf(const std::string& label, int rate, const std::vector<double>& grid,
                    const std::function<Complex(double hz)>& h) {
  ReportCurve c;
  c.label = label;
  c.rate = rate;
  const double nan = std::nan("");
  for (double hz : grid) {
    if (hz >= 0.5 * rate) {
      c.magnitude_db.push_back(nan);
      c.phase_deg.push_back(nan);
      c.group_delay_ms.push_back(nan);
      continue;
    }
    const Complex v = h(hz);
    const double dhz = hz * 1e-4;
    const double turn = std::arg(h(hz + dhz) / v);  // the phase step, free of wrapping
    c.magnitude_db.push_back(20 * std::log10(std::abs(v)));
    c.phase_deg.push_back(std::arg(v) * 180 / kPi);
    c.group_delay_ms.push_back(-turn / (2 * kPi * dhz) * 1000);
  }
  return c;
}

ReportCurve CascadeCurve(const std::string& label, int rate, const std::vector<double>& grid, const an::Cascade& c) {
  return CurveOf(label, rate, grid, [&](double hz) { return an::Evaluate(c, hz, rate); });
}

std::string AnalysisLine(const std::vector<an::Cascade>& stored, const std::vector<an::Cascade>& reference,
                         const std::vector<std::string>& names, int rate, const std::string& against) {
  std::optional<double> worst;
  double at = 0;
  std::string where;
  for (size_t i = 0; i < stored.size() && i < reference.size(); ++i) {
    const an::QuantisationReport r = an::Quantisation(reference[i], stored[i], rate, {}, {1}, 32);
    if (r.max_error_db && (!worst || *r.max_error_db > *worst)) {
      worst = r.max_error_db;
      at = r.at_hz;
      where = stored.size() > 1 && i < names.size() ? " (" + names[i] + ")" : "";
    }
  }
  double radius = 0;
  an::Stability stability = an::Stability::kStable;
  for (const an::Cascade& c : stored) {
    for (const an::SectionRoots& s : an::Roots(c)) {
      radius = std::max(radius, s.pole_radius);
      stability = std::max(stability, s.stability);
    }
  }
  char buf[256];
  std::string line;
  if (worst) {
    std::snprintf(buf, sizeof buf, "largest quantisation error %.3g dB at %.0f Hz%s against %s; ", *worst, at,
                  where.c_str(), against.c_str());
    line = buf;
  } else {
    line = "no float design to compare with; ";
  }
  std::snprintf(buf, sizeof buf, "%s, largest pole radius %.6f", an::StabilityName(stability), radius);
  return line + buf;
}

namespace {

an::Section FloatSection(const float* v, int values) {
  an::Section s;
  if (values == 3) {
    s.b0 = v[0], s.b1 = v[1], s.a1 = v[2];
  } else {
    s.b0 = v[0], s.b1 = v[1], s.b2 = v[2], s.a1 = v[3], s.a2 = v[4];
  }
  return s;
}

}  // namespace

std::vector<an::Cascade> FloatGroups(qh_design::Family family, const std::vector<float>& f) {
  std::vector<an::Cascade> out;
  if (f.empty()) return out;
  for (const qh_design::OutputGroup& g : qh_design::FindDesigner(family)->groups) {
    out.push_back({{FloatSection(&f[g.float_first], g.values)}, 1.0});
  }
  return out;
}

std::vector<std::string> GroupNames(qh_design::Family family) {
  std::vector<std::string> names;
  for (const qh_design::OutputGroup& g : qh_design::FindDesigner(family)->groups) names.push_back(g.name);
  return names;
}

std::optional<an::Cascade> FloatButterworth(bool has_cutoff, int cutoff, int order, int rate, int type) {
  if (!has_cutoff || order <= 0) return std::nullopt;
  const std::vector<float> f = RunFloat(qh_design::ButterworthRequest{static_cast<float>(cutoff), order, rate, type});
  if (f.empty()) return std::nullopt;
  return an::FromFloatLayout(f.data(), (order + 1) / 2);
}

}  // namespace heron_tool
