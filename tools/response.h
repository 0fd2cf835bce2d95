// Magnitude responses of biquad cascades, for `heron design --response/--plot`.
#ifndef QUILLHERON_TOOLS_RESPONSE_H_
#define QUILLHERON_TOOLS_RESPONSE_H_

#include <utility>
#include <vector>

namespace heron_tool {

// One section in the library's float convention: A1 and A2 are stored
// negated, so y = b0 x + b1 x1 + b2 x2 + A1 y1 + A2 y2.
struct Biquad {
  double b0, b1, b2, a1, a2;
};

// Points of a log-spaced grid from 10 Hz to half the rate (inclusive).
std::vector<double> LogFrequencyGrid(int sample_rate, int points = 200);

// 20·log10 |gain · Π H_s(e^jω)| at each frequency.
std::vector<std::pair<double, double>> MagnitudeResponseDb(const std::vector<Biquad>& sections,
                                                           double gain, int sample_rate,
                                                           const std::vector<double>& grid);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_RESPONSE_H_
