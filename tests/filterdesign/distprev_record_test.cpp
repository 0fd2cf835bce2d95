// Distortion-prevention records field by field: the sense bank, the scalar
// fields, the per-band attenuations and gain scalars, and the smoothers.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>

#include "distprev_test_util.h"

namespace {

using distprev_test::DefaultBlock;
using distprev_test::kRates;
using distprev_test::RefQ31;
using distprev_test::SmootherK;

using distprev_test::CentreAndQ;

void DesignOne(const quillDistprevNotchDesignBlock& blk, quillMBHLDistprevCoeff* rec) {
  ASSERT_EQ(distprev_test::DesignOne(blk, rec), 0);
}

TEST(DistprevRecord, DefaultBlockFieldByField) {
  quillMBHLDistprevCoeff r;
  DesignOne(DefaultBlock(), &r);
  EXPECT_EQ(r.sense_band_count, 6);
  for (int b = 0; b < 6; ++b) EXPECT_EQ(r.sense_band_sos_count[b], 2);
  EXPECT_EQ(r.notch_mode, 0);
  EXPECT_EQ(r.notch_threshold_db, 0);
  EXPECT_EQ(r.notch_sensitivity_db, 0);
  EXPECT_EQ(r.notch_band_count, 0);
  for (int b = 0; b < 6; ++b) EXPECT_EQ(r.notch_band_sos_count[b], 0);
  // Attenuations, gain scalars and smoothers: the "defaults" rows below; the
  // first attack smoother, 1 - exp(-999.99994 / 150000), is about 0.0066445.
  EXPECT_NEAR(r.notch_smoothers[1] / 2147483647.0, 0.0066445, 1e-6);
  for (int i = 0; i < 144; ++i) EXPECT_EQ(r.notch_band_coeffs[i], 0) << i;
  for (int i = 0; i < 108; ++i) EXPECT_EQ(r.notch_band_coeffs_float32[i], 0.0f) << i;
}

TEST(DistprevRecord, SenseBankIsSixNarrowBandPassesPerRate) {
  const double kCentres[6] = {196, 262, 312, 392, 471, 523};
  quillMBHLDistprevCoeff r;
  DesignOne(DefaultBlock(), &r);
  for (int ri = 0; ri < 3; ++ri) {
    for (int b = 0; b < 6; ++b) {
      SCOPED_TRACE(testing::Message() << kRates[ri] << " band " << b);
      const float* s = &r.sense_band_coeffs_float32[ri * 36 + b * 6];
      const int32_t* w = &r.sense_band_coeffs[ri * 48 + b * 8];
      double hz = 0, q = 0;
      CentreAndQ(s, kRates[ri], &hz, &q);
      EXPECT_NEAR(hz, kCentres[b], 0.05);
      EXPECT_NEAR(q, 20.0, 0.02);
      EXPECT_EQ(s[1], 0.0f);     // band-pass numerator: b0, 0, -b0
      EXPECT_EQ(s[2], -s[0]);
      EXPECT_EQ(s[5], 1.0f);     // gain
      // Unit peak gain: b0 = alpha / (1 + alpha) = (1 + A2) / 2.
      EXPECT_NEAR(s[0], (1.0 + s[4]) / 2.0, 1e-7);
      // Fixed point: unscaled 32-bit section, gain record iwl 2 and 2^30.
      for (int i = 0; i < 5; ++i) {
        EXPECT_NEAR(std::ldexp(static_cast<double>(w[1 + i]), -(32 - w[0])), s[i],
                    std::ldexp(1.0, -(32 - w[0]))) << i;
      }
      EXPECT_EQ(w[6], 2);
      EXPECT_EQ(w[7], 1073741824);
    }
  }
}

TEST(DistprevRecord, SenseBankIsTheSameInEveryRecordAndCall) {
  quillDistprevNotchDesignBlock a = DefaultBlock(), b = DefaultBlock();
  b.nf_band_ct = 5;
  b.nf_base_freq = 3000.0f;
  b.nf_mode = 2;
  const quillDistprevNotchDesignBlock blocks[2] = {a, b};
  quillMBHLDistprevCoeff r1[2], r2[2];
  quillDistprevDesignHeader h;
  ASSERT_EQ(quill_distprev_config_designer(&h, r1, blocks, 2), 0);
  ASSERT_EQ(quill_distprev_config_designer(&h, r2, blocks + 1, 1), 0);
  const size_t sense = offsetof(quillMBHLDistprevCoeff, notch_mode);
  EXPECT_EQ(memcmp(&r1[0], &r1[1], sense), 0);
  EXPECT_EQ(memcmp(&r1[0], &r2[0], sense), 0);
  // Each record follows its own block.
  EXPECT_EQ(r1[0].notch_mode, 0);
  EXPECT_EQ(r1[1].notch_mode, 2);
  EXPECT_EQ(r1[1].notch_band_count, 5);
  EXPECT_EQ(memcmp(&r1[1], &r2[0], sizeof(r2[0])), 0);
}

TEST(DistprevRecord, ScalarsTruncateTowardZero) {
  quillDistprevNotchDesignBlock blk = DefaultBlock();
  blk.nf_mode = -7;
  blk.nf_thld = -3.7f;
  blk.nf_sense = 2.9f;
  blk.nf_band_ct = 3;
  quillMBHLDistprevCoeff r;
  DesignOne(blk, &r);
  EXPECT_EQ(r.notch_mode, -7);
  EXPECT_EQ(r.notch_threshold_db, -3);
  EXPECT_EQ(r.notch_sensitivity_db, 2);
  EXPECT_EQ(r.notch_band_count, 3);
  // Only the bands inside the count get a section count and coefficients.
  for (int b = 0; b < 6; ++b) {
    EXPECT_EQ(r.notch_band_sos_count[b], b < 3 ? 1 : 0) << b;
    for (int ri = 0; ri < 3; ++ri) {
      EXPECT_EQ(r.notch_band_coeffs_float32[ri * 36 + b * 6] != 0.0f, b < 3) << b;
      EXPECT_EQ(r.notch_band_coeffs[ri * 48 + b * 8 + 7] != 0, b < 3) << b;
    }
  }
}

// Whole-dB attenuation per band, worked by hand from the stepping rule.
struct AttnCase {
  const char* name;
  float base, slope;
  int32_t band_ct;
  int32_t a[6];
};
const AttnCase kAttn[] = {
    {"slopeDown", -12.0f, -3.0f, 4, {-12, -15, -18, -21, 0, 0}},
    {"halfRoundsUp", -2.0f, 1.5f, 6, {-2, 0, 0, 0, 0, 0}},      // t = -0.5 -> 0
    {"halfStaysPut", -2.0f, -0.5f, 6, {-2, -2, -2, -2, -2, -2}},  // t = -2.5 -> -2
    {"nearest", -10.0f, -1.6f, 3, {-10, -12, -14, 0, 0, 0}},     // -11.6, -13.6
    {"nearestUp", -10.0f, -1.4f, 3, {-10, -11, -12, 0, 0, 0}},   // -11.4, -12.4
    {"positiveBase", 3.7f, -1.0f, 6, {3, 0, -1, -2, -3, -4}},   // band 1 clamped to 0 dB
    {"fractionalBase", -12.7f, 0.0f, 1, {-12, 0, 0, 0, 0, 0}},
    {"noBands", -9.9f, -1.0f, 0, {-9, 0, 0, 0, 0, 0}},
    {"negativeCount", -9.0f, -1.0f, -4, {-9, 0, 0, 0, 0, 0}},
    {"defaults", 0.0f, 0.0f, 0, {0, 0, 0, 0, 0, 0}},  // 0 dB: full scale and 32767
};

TEST(DistprevRecord, AttenuationsAndGainScalars) {
  for (const AttnCase& c : kAttn) {
    SCOPED_TRACE(c.name);
    quillDistprevNotchDesignBlock blk = DefaultBlock();
    blk.nf_base_attn_max = c.base;
    blk.nf_slope = c.slope;
    blk.nf_band_ct = c.band_ct;
    quillMBHLDistprevCoeff r;
    DesignOne(blk, &r);
    for (int b = 0; b < 6; ++b) {
      const float a = static_cast<float>(c.a[b]);
      EXPECT_EQ(r.notch_band_attenuation_max[b], RefQ31(std::pow(10.0f, 0.05f * a))) << b;
      const double rel = std::pow(10.0f, 0.05f * (a - c.base));
      EXPECT_EQ(r.notch_band_gain_scalars[b], static_cast<int32_t>(rel * 32767.0)) << b;
    }
  }
}

struct SmootherCase {
  const char* name;
  float attk_thld, attk_ms, rel_ms;
};
const SmootherCase kSmoothers[] = {
    {"defaults", 0.0f, 200.0f, 50.0f},  // level 0 dB: full scale
    {"fast", 6.0f, 10.0f, 1000.0f},
    {"slow", -3.0f, 2000.0f, 5.0f},
};

TEST(DistprevRecord, SmoothersPerRate) {
  const float k = SmootherK();
  const float kControlRates[3] = {750.0f, 689.0f, 500.0f};  // 48000, 44100, 32000 over 64
  for (const SmootherCase& c : kSmoothers) {
    SCOPED_TRACE(c.name);
    quillDistprevNotchDesignBlock blk = DefaultBlock();
    blk.nf_attk_thld = c.attk_thld;
    blk.nf_attk_ms = c.attk_ms;
    blk.nf_rel_ms = c.rel_ms;
    quillMBHLDistprevCoeff r;
    DesignOne(blk, &r);
    for (int i = 0; i < 3; ++i) {
      const float n = kControlRates[i];
      EXPECT_EQ(r.notch_smoothers[3 * i], RefQ31(std::pow(10.0f, -(c.attk_thld * 0.05f))));
      EXPECT_EQ(r.notch_smoothers[3 * i + 1], RefQ31(1.0f - std::exp(k / (n * c.attk_ms))));
      EXPECT_EQ(r.notch_smoothers[3 * i + 2], RefQ31(1.0f - std::exp(k / (n * c.rel_ms))));
    }
  }
  quillDistprevNotchDesignBlock blk = DefaultBlock();
  blk.nf_attk_ms = 0.0f;     // exp(-inf) = 0: full scale
  blk.nf_rel_ms = -100.0f;   // coefficient above 1: negative
  quillMBHLDistprevCoeff r;
  DesignOne(blk, &r);
  EXPECT_EQ(r.notch_smoothers[1], 2147483647);
  EXPECT_LT(r.notch_smoothers[2], 0);
}

// Values no caller should send still give defined words: conversions
// saturate and not-a-number becomes 0.
TEST(DistprevRecord, OutOfRangeValuesSaturate) {
  quillDistprevNotchDesignBlock blk = DefaultBlock();
  blk.nf_thld = 1e20f;
  blk.nf_sense = NAN;
  blk.nf_base_attn_max = -1e20f;
  blk.nf_slope = NAN;
  blk.nf_band_ct = 6;
  blk.nf_base_freq = NAN;
  blk.nf_base_q = 0.0f;
  quillMBHLDistprevCoeff r;
  DesignOne(blk, &r);
  EXPECT_EQ(r.notch_threshold_db, INT32_MAX);
  EXPECT_EQ(r.notch_sensitivity_db, 0);
  EXPECT_EQ(r.notch_band_attenuation_max[0], 0);   // 10^(huge negative) = 0
  EXPECT_EQ(r.notch_band_gain_scalars[1], INT32_MAX);  // 0 dB over a huge cut
}

}  // namespace
