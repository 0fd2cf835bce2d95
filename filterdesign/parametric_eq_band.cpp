// One parametric-equaliser band as one biquad section. Every coefficient is
// computed in double precision and rounded to float when stored; A1 and A2
// are stored negated (the section adds A1*y[n-1] + A2*y[n-2]).
#include <cmath>

#include "iir_internal.h"

namespace qh {
namespace fd {
namespace {

// Quantities shared by the band formulas.
struct BandTerms {
  double L;      // linear amplitude of the gain field
  double w0;     // centre angle in radians per sample
  double c;      // cos(w0)
  double q;      // the band's q field
  double A;      // sqrt(P)
  double alpha;  // sin(w0) / (2Q)
  double beta;   // shelf term, sin(w0) * sqrt(clamped t)
};

BandTerms ComputeTerms(const OVAParametriceqBandSpec& band, int sample_rate) {
  BandTerms t{};
  t.L = std::pow(10.0, 0.05 * static_cast<double>(band.gain));
  t.w0 = static_cast<double>(band.center_freq) * 6.283185307179586 / static_cast<double>(sample_rate);
  t.c = std::cos(t.w0);
  t.q = band.q;
  // Low- and high-pass take their resonance from the gain field.
  const bool pass = band.type == PEQ_BAND_TYPE_LOWPASS || band.type == PEQ_BAND_TYPE_HIGHPASS;
  const double Q = pass ? t.L : t.q;
  const double P = pass ? t.q : t.L;
  t.A = std::sqrt(P);
  t.alpha = std::sin(t.w0) / (2.0 * Q);
  // Shelf slope S = q; the slope term is clamped so it never goes negative.
  const double S = t.q;
  double slope = (1.0 / S) * (P + 1.0) - (P + 1.0) + 2.0 * t.A;
  if (slope < 0.0081) slope = 0.0081;
  t.beta = t.alpha * 2.0 * S * std::sqrt(slope);
  return t;
}

void Store(float* s, double b0, double b1, double b2, double A1, double A2) {
  s[0] = CanonicalNan(static_cast<float>(b0));
  s[1] = CanonicalNan(static_cast<float>(b1));
  s[2] = CanonicalNan(static_cast<float>(b2));
  s[3] = CanonicalNan(static_cast<float>(A1));
  s[4] = CanonicalNan(static_cast<float>(A2));
}

// Boost/cut peak; the bandwidth divides w0 by 3q, and min(L, 1) puts a cut's
// gain in the denominator so that boost and cut mirror each other.
void Traditional(const BandTerms& t, float* s) {
  const double t0 = std::tan(t.w0 / (3.0 * t.q));
  const double m = t.L < 1.0 ? t.L : 1.0;
  const double a0 = t0 + m;
  Store(s, (t0 * t.L + m) / a0, 0.0, (m - t0 * t.L) / a0, 2.0 * m * t.c / a0, (t0 - m) / a0);
  s[1] = -s[3];
}

void LowShelf(const BandTerms& t, float* s) {
  const double A = t.A, c = t.c, beta = t.beta;
  const double a0 = (A + 1.0) + (A - 1.0) * c + beta;
  Store(s, A * ((A + 1.0) - (A - 1.0) * c + beta) / a0, 2.0 * A * ((A - 1.0) - (A + 1.0) * c) / a0,
        A * ((A + 1.0) - (A - 1.0) * c - beta) / a0, 2.0 * ((A - 1.0) + (A + 1.0) * c) / a0,
        -((A + 1.0) + (A - 1.0) * c - beta) / a0);
}

void HighShelf(const BandTerms& t, float* s) {
  const double A = t.A, c = t.c, beta = t.beta;
  const double a0 = (A + 1.0) - (A - 1.0) * c + beta;
  Store(s, A * ((A + 1.0) + (A - 1.0) * c + beta) / a0, -2.0 * A * ((A - 1.0) + (A + 1.0) * c) / a0,
        A * ((A + 1.0) + (A - 1.0) * c - beta) / a0, -2.0 * ((A - 1.0) - (A + 1.0) * c) / a0,
        -((A + 1.0) - (A - 1.0) * c - beta) / a0);
}

// The common resonant denominator 1 + alpha of types 3 to 7.
double PoleA1(const BandTerms& t, double a0) { return 2.0 * t.c / a0; }
double PoleA2(const BandTerms& t, double a0) { return (t.alpha - 1.0) / a0; }

void LowPass(const BandTerms& t, float* s) {
  const double a0 = 1.0 + t.alpha;
  Store(s, 0.5 * (1.0 - t.c) / a0, (1.0 - t.c) / a0, 0.0, PoleA1(t, a0), PoleA2(t, a0));
  s[2] = s[0];
}

void HighPass(const BandTerms& t, float* s) {
  const double a0 = 1.0 + t.alpha;
  Store(s, 0.5 * (1.0 + t.c) / a0, -(1.0 + t.c) / a0, 0.0, PoleA1(t, a0), PoleA2(t, a0));
  s[2] = s[0];
}

void BandPass(const BandTerms& t, float* s) {
  const double a0 = 1.0 + t.alpha;
  Store(s, t.alpha * t.L / a0, 0.0, 0.0, PoleA1(t, a0), PoleA2(t, a0));
  s[2] = -s[0];
}

void AllPass(const BandTerms& t, float* s) {
  const double a0 = 1.0 + t.alpha;
  Store(s, t.L * (1.0 - t.alpha) / a0, -2.0 * t.L * t.c / a0, t.L, PoleA1(t, a0), PoleA2(t, a0));
}

void Notch(const BandTerms& t, float* s) {
  const double a0 = 1.0 + t.alpha;
  Store(s, 1.0 / a0, 0.0, 1.0 / a0, PoleA1(t, a0), PoleA2(t, a0));
  s[1] = -s[3];
}

void Peaking(const BandTerms& t, float* s) {
  const double a0 = 1.0 + t.alpha / t.A;
  Store(s, (1.0 + t.L * t.alpha / t.A) / a0, 0.0, (1.0 - t.L * t.alpha / t.A) / a0, 2.0 * t.c / a0,
        (t.alpha / t.A - 1.0) / a0);
  s[1] = -s[3];
}

void Gain(const BandTerms& t, float* s) { Store(s, t.L, 0.0, 0.0, 0.0, 0.0); }

using BandFormula = void (*)(const BandTerms&, float*);

// Indexed by band type 0 to 9.
constexpr BandFormula kBandFormulas[] = {
    Traditional, LowShelf, HighShelf, LowPass, HighPass, BandPass, AllPass, Notch, Peaking, Gain,
};
constexpr int kBandTypeCount = static_cast<int>(sizeof(kBandFormulas) / sizeof(kBandFormulas[0]));

}  // namespace
}  // namespace fd
}  // namespace qh

extern "C" void ParametricEqBandDesign(const OVAParametriceqBandSpec* band, int sample_rate,
                                       float* section) {
  using namespace qh::fd;
  if (band->type >= 0 && band->type < kBandTypeCount) {
    kBandFormulas[band->type](ComputeTerms(*band, sample_rate), section);
  }
  if (band->invert != 0) {
    for (int i = 0; i < 3; ++i) section[i] = -section[i];
  }
}
