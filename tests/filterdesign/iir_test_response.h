// Test helpers: frequency response of float biquad cascades, evaluated
// directly from H(z) = (b0 + b1 z^-1 + b2 z^-2) / (1 - A1 z^-1 - A2 z^-2)
// (A1 and A2 are stored negated) in double precision.
// Also the reference quantisation rule, written from the contract rather
// than taken from the library.
#ifndef QUILLHERON_TESTS_FILTERDESIGN_IIR_TEST_RESPONSE_H_
#define QUILLHERON_TESTS_FILTERDESIGN_IIR_TEST_RESPONSE_H_

#include <cmath>
#include <cstdint>
#include <complex>

namespace qh_test {

constexpr double kPi = 3.14159265358979323846;

// Response of one section at normalised angle w (radians per sample).
inline std::complex<double> SectionResponse(const float* s, double w) {
  const std::complex<double> z1 = std::polar(1.0, -w);  // z^-1
  const std::complex<double> z2 = z1 * z1;
  const std::complex<double> num = double(s[0]) + double(s[1]) * z1 + double(s[2]) * z2;
  const std::complex<double> den = 1.0 - double(s[3]) * z1 - double(s[4]) * z2;
  return num / den;
}

// Response of a cascade of `sections` sections followed by its gain float.
inline std::complex<double> CascadeResponse(const float* cascade, int sections, double w) {
  std::complex<double> h = double(cascade[5 * sections]);
  for (int s = 0; s < sections; ++s) h *= SectionResponse(cascade + 5 * s, w);
  return h;
}

// Plain reading of a fixed-point cascade of `sections` sections at word
// width `width`: every word is value / 2^(width - iwl) of its record. Unlike
// the engine's read-back this handles iwl 0 and 1 at 32 bits.
template <typename Word>
void ReadFixedCascade(const Word* fixed, int sections, int width, float* out) {
  for (int s = 0; s <= sections; ++s) {
    const Word* rec = fixed + 6 * s;
    const int count = s < sections ? 5 : 1;
    for (int i = 0; i < count; ++i) {
      out[5 * s + i] = static_cast<float>(std::ldexp(static_cast<double>(rec[1 + i]), int(rec[0]) - width));
    }
  }
}

// |H| of the order-n Butterworth prototype after the bilinear transform, at
// f for the corner fc (the high-pass inverts the prewarped ratio).
inline double ButterworthMagnitude(bool lowpass, int n, double fc, double f, double fs) {
  const double ratio = std::tan(kPi * f / fs) / std::tan(kPi * fc / fs);
  return 1.0 / std::sqrt(1.0 + std::pow(lowpass ? ratio : 1.0 / ratio, 2.0 * n));
}

inline double Angle(double freq_hz, double sample_rate) { return 2.0 * kPi * freq_hz / sample_rate; }

inline double Db(double magnitude) { return 20.0 * std::log10(magnitude); }

// Rounds half away from zero, then saturates to the signed range of `width`
// bits.
inline int64_t RoundSat(double x, int width) {
  const double top = std::ldexp(1.0, width - 1) - 1, bottom = -std::ldexp(1.0, width - 1);
  const double r = std::round(x);  // halves away from zero
  if (r > top) return static_cast<int64_t>(top);
  if (r < bottom) return static_cast<int64_t>(bottom);
  return static_cast<int64_t>(r);
}

}  // namespace qh_test

#endif  // QUILLHERON_TESTS_FILTERDESIGN_IIR_TEST_RESPONSE_H_
