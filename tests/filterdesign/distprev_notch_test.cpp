// Distortion-prevention notch bank: band placement for every spacing and
// width (checked through each all-pass section's own centre and Q), and
// bands at or above half a design rate left zero.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>

#include "distprev_test_util.h"
#include "iir_test_response.h"

namespace {

using distprev_test::DefaultBlock;
using distprev_test::kRates;

using distprev_test::CentreAndQ;
using qh_test::kPi;
using qh_test::SectionResponse;
constexpr double kQ0 = 10.0 * 2.0 / 13.0;  // base q 10 scaled by 2/13

struct PlacementCase {
  const char* name;
  int32_t spacing, width;
  float base_freq, base_q;
  double hz[6];
  double q[6];
};

const PlacementCase kPlacements[] = {
    {"harmonicConstantQ", 0, 0, 100.0f, 10.0f,
     {100, 200, 300, 400, 500, 600}, {kQ0, kQ0, kQ0, kQ0, kQ0, kQ0}},
    {"harmonicConstantWidth", 0, 1, 100.0f, 10.0f,
     {100, 200, 300, 400, 500, 600}, {kQ0, 2 * kQ0, 3 * kQ0, 4 * kQ0, 5 * kQ0, 6 * kQ0}},
    {"harmonicCeiling", 0, 7, 150.0f, 50.0f,  // q0 7.69: 15.4, then the ceiling
     {150, 300, 450, 600, 750, 900}, {50 * 2.0 / 13, 100 * 2.0 / 13, 20, 20, 20, 20}},
    {"octaveConstantQ", 1, 0, 100.0f, 10.0f,
     {100, 200, 400, 800, 1600, 3200}, {kQ0, kQ0, kQ0, kQ0, kQ0, kQ0}},
    {"octaveConstantWidth", 1, -1, 100.0f, 10.0f,
     {100, 200, 400, 800, 1600, 3200}, {kQ0, 2 * kQ0, 4 * kQ0, 8 * kQ0, 20, 20}},
    {"sameFrequency", 2, 0, 250.0f, 10.0f,
     {250, 250, 250, 250, 250, 250}, {kQ0, kQ0, kQ0, kQ0, kQ0, kQ0}},
    {"sameFrequencyWidth", -3, 1, 250.0f, 10.0f,
     {250, 250, 250, 250, 250, 250}, {kQ0, kQ0, kQ0, kQ0, kQ0, kQ0}},
    // No ceiling without nf_width: q0 = 200 * 2/13 = 30.8 stays.
    {"highQNoCeiling", 2, 0, 1000.0f, 200.0f,
     {1000, 1000, 1000, 1000, 1000, 1000}, {400.0 / 13, 400.0 / 13, 400.0 / 13, 400.0 / 13,
                                            400.0 / 13, 400.0 / 13}},
    {"highQCeiling", 2, 1, 1000.0f, 200.0f,
     {1000, 1000, 1000, 1000, 1000, 1000}, {20, 20, 20, 20, 20, 20}},
};

TEST(DistprevNotch, PlacementForEverySpacingAndWidth) {
  for (const PlacementCase& c : kPlacements) {
    quillDistprevNotchDesignBlock blk = DefaultBlock();
    blk.nf_band_ct = 6;
    blk.nf_spacing = c.spacing;
    blk.nf_width = c.width;
    blk.nf_base_freq = c.base_freq;
    blk.nf_base_q = c.base_q;
    quillMBHLDistprevCoeff r;
    quillDistprevDesignHeader h;
    ASSERT_EQ(quill_distprev_config_designer(&h, &r, &blk, 1), 0);
    for (int ri = 0; ri < 3; ++ri) {
      for (int b = 0; b < 6; ++b) {
        SCOPED_TRACE(testing::Message() << c.name << " rate " << kRates[ri] << " band " << b);
        const float* s = &r.notch_band_coeffs_float32[ri * 36 + b * 6];
        double hz = 0, q = 0;
        CentreAndQ(s, kRates[ri], &hz, &q);
        EXPECT_NEAR(hz, c.hz[b], 2e-3 * c.hz[b]);
        EXPECT_NEAR(q, c.q[b], 5e-3 * c.q[b]);
        // Unity all-pass: flat magnitude, phase -pi at the centre.
        const double w0 = 2.0 * kPi * c.hz[b] / kRates[ri];
        for (double k : {0.3, 1.0, 2.0}) EXPECT_NEAR(std::abs(SectionResponse(s, w0 * k)), 1.0, 1e-3);
        EXPECT_NEAR(SectionResponse(s, w0).real(), -1.0, 1e-2);
        EXPECT_EQ(s[2], 1.0f);  // b2 is the linear gain itself
        EXPECT_EQ(s[5], 1.0f);
        const int32_t* w = &r.notch_band_coeffs[ri * 48 + b * 8];
        EXPECT_EQ(w[6], 2);
        EXPECT_EQ(w[7], 1073741824);
      }
    }
  }
}

// Base 5000 Hz, harmonic: 5, 10, 15, 20, 25, 30 kHz. A band at or above half
// a design rate is refused and its slots stay zero.
TEST(DistprevNotch, BandsAtOrAboveHalfTheRateStayZero) {
  quillDistprevNotchDesignBlock blk = DefaultBlock();
  blk.nf_band_ct = 6;
  blk.nf_base_freq = 5000.0f;
  quillMBHLDistprevCoeff r;
  quillDistprevDesignHeader h;
  ASSERT_EQ(quill_distprev_config_designer(&h, &r, &blk, 1), 0);
  const int kDesigned[3] = {4, 4, 3};  // bands below 24000, 22050, 16000 Hz
  for (int ri = 0; ri < 3; ++ri) {
    for (int b = 0; b < 6; ++b) {
      SCOPED_TRACE(testing::Message() << kRates[ri] << " band " << b);
      bool zero = true;
      for (int i = 0; i < 6; ++i) zero = zero && r.notch_band_coeffs_float32[ri * 36 + b * 6 + i] == 0.0f;
      for (int i = 0; i < 8; ++i) zero = zero && r.notch_band_coeffs[ri * 48 + b * 8 + i] == 0;
      EXPECT_EQ(zero, b >= kDesigned[ri]);
    }
  }
}

}  // namespace
