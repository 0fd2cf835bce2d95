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

// Centre (Hz) and Q of a band-pass or all-pass section from its denominator:
// A2 = (alpha - 1) / (1 + alpha), A1 = 2 cos(w0) / (1 + alpha), and
// alpha = sin(w0) / (2 Q).
inline void CentreAndQ(const float* s, int rate, double* hz, double* q) {
  const double a2 = s[4], a1 = s[3];
  const double alpha = (1.0 + a2) / (1.0 - a2);
  const double w0 = std::acos(a1 * (1.0 + alpha) / 2.0);
  *hz = w0 * rate / (2.0 * 3.14159265358979323846);
  *q = std::sin(w0) / (2.0 * alpha);
}

// Designs one record from one block, over a record full of a pattern (the
// designer clears the record itself).
inline int DesignOne(const quillDistprevNotchDesignBlock& blk, quillMBHLDistprevCoeff* rec) {
  quillDistprevDesignHeader h;
  memset(rec, 0x6B, sizeof(*rec));
  return quill_distprev_config_designer(&h, rec, &blk, 1);
}

}  // namespace distprev_test

#endif  // QUILLHERON_TESTS_DISTPREV_TEST_UTIL_H_
