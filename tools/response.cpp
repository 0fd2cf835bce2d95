#include "response.h"

#include <cmath>
#include <complex>

namespace heron_tool {

std::vector<double> LogFrequencyGrid(int sample_rate, int points) {
  std::vector<double> grid;
  const double lo = 10.0;
  const double hi = sample_rate / 2.0;
  if (points < 2 || hi <= lo) return grid;
  const double step = std::log(hi / lo) / (points - 1);
  for (int i = 0; i < points; ++i) grid.push_back(lo * std::exp(step * i));
  grid.back() = hi;
  return grid;
}

std::vector<std::pair<double, double>> MagnitudeResponseDb(const std::vector<Biquad>& sections,
                                                           double gain, int sample_rate,
                                                           const std::vector<double>& grid) {
  std::vector<std::pair<double, double>> out;
  out.reserve(grid.size());
  for (double hz : grid) {
    const double w = 2.0 * M_PI * hz / sample_rate;
    const std::complex<double> z1 = std::polar(1.0, -w);
    const std::complex<double> z2 = z1 * z1;
    std::complex<double> h = gain;
    for (const Biquad& s : sections) {
      h *= (s.b0 + s.b1 * z1 + s.b2 * z2) / (1.0 - s.a1 * z1 - s.a2 * z2);
    }
    out.emplace_back(hz, 20.0 * std::log10(std::abs(h)));
  }
  return out;
}

}  // namespace heron_tool
