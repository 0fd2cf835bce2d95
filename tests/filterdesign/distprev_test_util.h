// Shared pieces of the distortion-prevention designer tests: the schema's
// default design block and reference conversions.
#ifndef QUILLHERON_TESTS_DISTPREV_TEST_UTIL_H_
#define QUILLHERON_TESTS_DISTPREV_TEST_UTIL_H_

#include <cmath>
#include <cstdint>
#include <cstring>

#include "quillHeronDistprev.h"
#include "quillheron_filterdesign.h"

namespace distprev_test {

// The defaults of the settings message: attack 200 ms, release 50 ms, base
// 100 Hz, base q 10, everything else 0.
inline quillDistprevNotchDesignBlock DefaultBlock() {
  quillDistprevNotchDesignBlock b;
  memset(&b, 0, sizeof(b));
  b.nf_attk_ms = 200.0f;
  b.nf_rel_ms = 50.0f;
  b.nf_base_freq = 100.0f;
  b.nf_base_q = 10.0f;
  return b;
}

// x * (2^31 - 1) in double, toward zero, saturating.
inline int32_t RefQ31(float x) {
  const double v = static_cast<double>(x) * 2147483647.0;
  if (v >= 2147483647.0) return INT32_MAX;
  if (v <= -2147483648.0) return INT32_MIN;
  return static_cast<int32_t>(v);
}

// The smoother time constant from its bit pattern.
inline float SmootherK() {
  const uint32_t bits = 0xC479FFFFu;
  float k;
  memcpy(&k, &bits, sizeof(k));
  return k;
}

const int kRates[3] = {48000, 44100, 32000};

}  // namespace distprev_test

#endif  // QUILLHERON_TESTS_DISTPREV_TEST_UTIL_H_
