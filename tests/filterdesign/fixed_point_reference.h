// Test helper: the reference quantisation rule, written from the contract
// rather than taken from the library: round half away from zero, then
// saturate to the signed range of `width` bits.
#ifndef QUILLHERON_TESTS_FILTERDESIGN_FIXED_POINT_REFERENCE_H_
#define QUILLHERON_TESTS_FILTERDESIGN_FIXED_POINT_REFERENCE_H_

#include <cmath>
#include <cstdint>

namespace qh_test {

inline int64_t RoundSat(double x, int width) {
  const double top = std::ldexp(1.0, width - 1) - 1, bottom = -std::ldexp(1.0, width - 1);
  const double r = std::round(x);  // halves away from zero
  if (r > top) return static_cast<int64_t>(top);
  if (r < bottom) return static_cast<int64_t>(bottom);
  return static_cast<int64_t>(r);
}

}  // namespace qh_test

#endif  // QUILLHERON_TESTS_FILTERDESIGN_FIXED_POINT_REFERENCE_H_
