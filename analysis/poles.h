// Poles and zeros of each section of a cascade, and its stability.
#ifndef QUILLHERON_ANALYSIS_POLES_H_
#define QUILLHERON_ANALYSIS_POLES_H_

#include <complex>
#include <vector>

#include "cascade.h"

namespace quillheron::analysis {

enum class Stability { kStable, kMarginal, kUnstable };

// "stable", "marginal" or "unstable".
const char* StabilityName(Stability s);

// Pole radius within this distance of 1 counts as on the unit circle.
constexpr double kMarginalBand = 1e-6;

struct SectionRoots {
  // Roots in z of z^2 - A1 z - A2 (poles) and b0 z^2 + b1 z + b2 (zeros).
  // A section with A2 = 0 keeps its pole at 0; zeros of a numerator of lower
  // degree are fewer; an all-zero numerator has none.
  std::vector<std::complex<double>> poles, zeros;
  double pole_radius = 0;  // the largest
  Stability stability = Stability::kStable;
};

SectionRoots Roots(const Section& section);
std::vector<SectionRoots> Roots(const Cascade& cascade);

}  // namespace quillheron::analysis

#endif  // QUILLHERON_ANALYSIS_POLES_H_
