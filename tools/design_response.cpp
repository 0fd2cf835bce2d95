#include "design_response.h"

#include <cmath>
#include <complex>

#include "design_output.h"

namespace heron_tool {

std::vector<double> LogFrequencyGrid(int sample_rate, int points) {
  const double lo = 10.0, hi = sample_rate / 2.0;
  if (points < 2 || hi <= lo) return {};
  return quillheron::analysis::LogGrid(lo, hi, points);
}

namespace {

quillheron::analysis::Cascade CascadeOf(const Curve& c) { return {c.sections, c.gain}; }

// The sum of curves' complex responses (group delay from the phase slope of
// the sum is not defined point by point here: left out as not a number).
Response SumResponse(const DesignOutput& d, const Curve& c, const std::vector<double>& grid) {
  Response out;
  for (double hz : grid) {
    std::complex<double> h = 0;
    for (int i : c.sum_of) h += quillheron::analysis::Evaluate(CascadeOf(d.curves[i]), hz, d.rate);
    out.push_back({hz, 20 * std::log10(std::abs(h)), std::arg(h), std::nan("")});
  }
  return out;
}

}  // namespace

std::vector<Response> CurveResponses(const DesignOutput& d) {
  const std::vector<double> grid = LogFrequencyGrid(d.rate);
  std::vector<Response> out;
  for (const Curve& c : d.curves) {
    out.push_back(c.sum_of.empty() ? quillheron::analysis::Response(CascadeOf(c), d.rate, grid)
                                   : SumResponse(d, c, grid));
  }
  return out;
}

}  // namespace heron_tool
