#include "poles.h"

#include <algorithm>
#include <cmath>

namespace quillheron::analysis {
namespace {

using Complex = std::complex<double>;

// Roots of a z^2 + b z + c, fewer when the leading coefficients are zero.
std::vector<Complex> QuadraticRoots(double a, double b, double c) {
  if (a == 0) {
    if (b == 0) return {};
    return {Complex(-c / b, 0)};
  }
  const Complex root = std::sqrt(Complex(b * b - 4 * a * c, 0));
  // The larger-magnitude root first, the other from the product, so a tiny
  // root is not lost to cancellation.
  const Complex q = -0.5 * (b >= 0 ? Complex(b) + root : Complex(b) - root);
  if (q == Complex(0, 0)) return {Complex(0, 0), Complex(0, 0)};
  return {q / a, c / q};
}

}  // namespace

const char* StabilityName(Stability s) {
  switch (s) {
    case Stability::kStable: return "stable";
    case Stability::kMarginal: return "marginal";
    case Stability::kUnstable: return "unstable";
  }
  return "?";
}

SectionRoots Roots(const Section& s) {
  SectionRoots r;
  r.poles = QuadraticRoots(1.0, -s.a1, -s.a2);
  r.zeros = QuadraticRoots(s.b0, s.b1, s.b2);
  for (const Complex& p : r.poles) {
    const double radius = std::abs(p);
    r.pole_radius = std::isnan(radius) ? radius : std::max(r.pole_radius, radius);
    if (std::isnan(radius)) break;
  }
  if (!std::isfinite(r.pole_radius) || r.pole_radius > 1 + kMarginalBand) {
    r.stability = Stability::kUnstable;
  } else if (r.pole_radius >= 1 - kMarginalBand) {
    r.stability = Stability::kMarginal;
  }
  return r;
}

std::vector<SectionRoots> Roots(const Cascade& cascade) {
  std::vector<SectionRoots> out;
  for (const Section& s : cascade.sections) out.push_back(Roots(s));
  return out;
}

}  // namespace quillheron::analysis
