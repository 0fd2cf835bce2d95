// Crossover designer: both halves against the second-order Butterworth
// response, their shared denominator and numerator symmetry, and the 32-bit
// layout with its low-pass / high-pass iwl asymmetry.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdint>

#include "iir_test_response.h"
#include "quillheron_filterdesign.h"

namespace {

double Mag(const float* s, double f, int rate) {
  return std::abs(qh_test::SectionResponse(s, qh_test::Angle(f, rate)));
}
// Bilinear second-order Butterworth: |H|^2 = 1 / (1 + r^4).
double ButterLp(double f, double fc, int rate) { return qh_test::ButterworthMagnitude(true, 2, fc, f, rate); }
double ButterHp(double f, double fc, int rate) { return qh_test::ButterworthMagnitude(false, 2, fc, f, rate); }

struct Crossover {
  float freq;
  int rate;
};
const Crossover kCrossovers[] = {{300.0f, 48000}, {5000.0f, 48000}, {300.0f, 44100},
                                 {5000.0f, 32000}, {12000.0f, 48000}, {15000.0f, 32000}};

TEST(McDynFloat, HalvesAreComplementaryButterworthSections) {
  for (const Crossover& c : kCrossovers) {
    SCOPED_TRACE(testing::Message() << c.freq << " Hz at " << c.rate);
    float out[QH_MCDYN_FLOAT_LENGTH];
    ASSERT_EQ(QUILL_McDyn_FilterDesignFloat(c.freq, c.rate, out), 0);
    const float* lp = out;
    const float* hp = out + 5;
    EXPECT_EQ(lp[3], hp[3]);  // one denominator for both halves
    EXPECT_EQ(lp[4], hp[4]);
    EXPECT_EQ(lp[1], 2.0f * lp[0]);
    EXPECT_EQ(lp[2], lp[0]);
    EXPECT_EQ(hp[1], -2.0f * hp[0]);
    EXPECT_EQ(hp[2], hp[0]);
    EXPECT_GT(lp[3], -2.0f);  // A1 carries +2 r cos: stored negated
    EXPECT_LT(lp[4], 0.0f);   // A2 = -r^2
    for (double k : {0.1, 0.5, 0.9, 1.0, 1.1, 2.0, 3.0}) {
      const double f = c.freq * k;
      if (f >= c.rate / 2) continue;
      const double l = Mag(lp, f, c.rate), h = Mag(hp, f, c.rate);
      EXPECT_NEAR(l, ButterLp(f, c.freq, c.rate), 2e-3) << f;
      EXPECT_NEAR(h, ButterHp(f, c.freq, c.rate), 2e-3) << f;
      EXPECT_NEAR(l * l + h * h, 1.0, 4e-3) << f;  // power complementary
    }
    EXPECT_NEAR(Mag(lp, c.freq, c.rate), std::sqrt(0.5), 1e-3);
    EXPECT_NEAR(Mag(hp, c.freq, c.rate), std::sqrt(0.5), 1e-3);
  }
}


// Expected iwl of each half per crossover: the smallest number of integer
// bits (sign included) holding the half's largest coefficient, except that
// the low-pass never goes below 1.
struct FixedCase {
  float freq;
  int rate;
  int lp_iwl;
  int hp_iwl;
};
const FixedCase kFixed[] = {
    {300.0f, 48000, 2, 2},      // A1 near 2
    {5000.0f, 48000, 2, 2},
    {10309.0f, 48000, 1, 1},    // low-pass peak 0.46 < 0.5: raised from 0 to 1
    {15016.0f, 48000, 1, 0},    // high-pass peak 0.47 < 0.5: stays 0, scale 2^32
    {15000.0f, 32000, 2, 2},    // near the top: A1 near -2
};

TEST(McDynFixed, LayoutAndPerHalfIwl) {
  for (const FixedCase& c : kFixed) {
    SCOPED_TRACE(testing::Message() << c.freq << " Hz at " << c.rate);
    float ref[QH_MCDYN_FLOAT_LENGTH];
    ASSERT_EQ(QUILL_McDyn_FilterDesignFloat(c.freq, c.rate, ref), 0);
    int32_t w[QH_MCDYN_FIXED_LENGTH + 1];
    w[QH_MCDYN_FIXED_LENGTH] = 0x7E7E7E7E;  // no gain record follows
    ASSERT_EQ(QUILL_McDyn_FilterDesignFxp32(c.freq, c.rate, w), 0);
    EXPECT_EQ(w[QH_MCDYN_FIXED_LENGTH], 0x7E7E7E7E);
    EXPECT_EQ(w[0], c.lp_iwl);
    EXPECT_EQ(w[6], c.hp_iwl);
    for (int i = 0; i < 5; ++i) {
      EXPECT_EQ(w[1 + i], qh_test::RoundSat(std::ldexp(double{ref[i]}, 32 - c.lp_iwl), 32)) << "lp " << i;
      EXPECT_EQ(w[7 + i], qh_test::RoundSat(std::ldexp(double{ref[5 + i]}, 32 - c.hp_iwl), 32)) << "hp " << i;
    }
  }
}

}  // namespace
