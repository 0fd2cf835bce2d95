#include "quantisation.h"

#include <algorithm>
#include <cmath>

#include "response.h"

namespace quillheron::analysis {
namespace {

constexpr int kErrorGridPoints = 512;

}  // namespace

bool IsSaturated(int64_t word, int width) {
  const int64_t max = (int64_t{1} << (width - 1)) - 1;
  return word >= max || word <= -max - 1;
}

QuantisationReport Quantisation(const Cascade& reference, const Cascade& quantised, double rate,
                                const std::vector<int64_t>& coefficient_words,
                                const std::vector<int64_t>& numerator_words, int width) {
  QuantisationReport r;
  for (int64_t w : coefficient_words) r.saturated += IsSaturated(w, width);
  r.silent = std::all_of(numerator_words.begin(), numerator_words.end(), [](int64_t w) { return w == 0; });
  r.sections = Roots(quantised);
  const std::vector<SectionRoots> before = Roots(reference);
  for (size_t s = 0; s < r.sections.size() && s < before.size(); ++s) {
    if (r.sections[s].stability != before[s].stability) r.stability_changed.push_back(static_cast<int>(s));
  }
  if (r.silent) return r;

  const double high = std::min(20000.0, 0.45 * rate);
  if (high <= 20.0) return r;
  const std::vector<double> grid = LogGrid(20.0, high, kErrorGridPoints);
  const auto ref = Response(reference, rate, grid);
  const auto got = Response(quantised, rate, grid);
  for (size_t i = 0; i < grid.size(); ++i) {
    if (!(ref[i].magnitude_db > kErrorFloorDb)) continue;
    double error = std::abs(got[i].magnitude_db - ref[i].magnitude_db);
    if (std::isnan(error)) error = INFINITY;  // a not-a-number response is as far off as it gets
    if (!r.max_error_db || error > *r.max_error_db) {
      r.max_error_db = error;
      r.at_hz = grid[i];
    }
  }
  return r;
}

}  // namespace quillheron::analysis
