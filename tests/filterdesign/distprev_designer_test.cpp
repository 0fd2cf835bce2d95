// Distortion-prevention configuration designer, record by record: the
// sense bank, the scalar fields, the per-band attenuations and gain scalars
// and the smoothers field by field; the notch bank's band placement for every
// spacing and width (checked through each all-pass section's own centre and
// Q), with bands at or above half a design rate left zero; the stamped header
// byte for byte, the count handling, and that nothing is written past the
// records given, for any band count.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>

#include "iir_test_response.h"
#include "quillHeronDistprev.h"
#include "quillheron_filterdesign.h"

namespace {

using qh_test::kPi;
using qh_test::SectionResponse;

// The defaults of the settings message: attack 200 ms, release 50 ms, base
// 100 Hz, base q 10, everything else 0.
quillDistprevNotchDesignBlock DefaultBlock() {
  quillDistprevNotchDesignBlock b;
  memset(&b, 0, sizeof(b));
  b.nf_attk_ms = 200.0f;
  b.nf_rel_ms = 50.0f;
  b.nf_base_freq = 100.0f;
  b.nf_base_q = 10.0f;
  return b;
}

// x * (2^31 - 1) in double, toward zero, saturating.
int32_t RefQ31(float x) {
  const double v = static_cast<double>(x) * 2147483647.0;
  if (v >= 2147483647.0) return INT32_MAX;
  if (v <= -2147483648.0) return INT32_MIN;
  return static_cast<int32_t>(v);
}

// The smoother time constant from its bit pattern.
float SmootherK() {
  const uint32_t bits = 0xC479FFFFu;
  float k;
  memcpy(&k, &bits, sizeof(k));
  return k;
}

const int kRates[3] = {48000, 44100, 32000};

// Centre (Hz) and Q of a band-pass or all-pass section from its denominator:
// A2 = (alpha - 1) / (1 + alpha), A1 = 2 cos(w0) / (1 + alpha), and
// alpha = sin(w0) / (2 Q).
void CentreAndQ(const float* s, int rate, double* hz, double* q) {
  const double a2 = s[4], a1 = s[3];
  const double alpha = (1.0 + a2) / (1.0 - a2);
  const double w0 = std::acos(a1 * (1.0 + alpha) / 2.0);
  *hz = w0 * rate / (2.0 * 3.14159265358979323846);
  *q = std::sin(w0) / (2.0 * alpha);
}

// Designs one record from one block, over a record full of a pattern (the
// designer clears the record itself).
void DesignOne(const quillDistprevNotchDesignBlock& blk, quillMBHLDistprevCoeff* rec) {
  quillDistprevDesignHeader h;
  memset(rec, 0x6B, sizeof(*rec));
  ASSERT_EQ(quill_distprev_config_designer(&h, rec, &blk, 1), 0);
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

// The header is stamped on every call; a count below one touches no record.
TEST(DistprevHeader, StampedByteForByteWithThreeBytesLeftAlone) {
  for (int32_t count : {0, -5, 1}) {
    SCOPED_TRACE(count);
    unsigned char raw[sizeof(quillDistprevDesignHeader)];
    memset(raw, 0xAA, sizeof(raw));
    quillDistprevDesignHeader h;
    memcpy(&h, raw, sizeof(h));
    quillMBHLDistprevCoeff rec;
    memset(&rec, 0x3C, sizeof(rec));
    const quillDistprevNotchDesignBlock blk = DefaultBlock();
    EXPECT_EQ(quill_distprev_config_designer(&h, &rec, &blk, count), 0);
    unsigned char got[sizeof(h)];
    memcpy(got, &h, sizeof(h));

    unsigned char want[168] = {0x50, 0xAA, 0xAA, 0xAA,  // kind, three untouched bytes
                               0, 0, 0, 0,              // reserved1
                               0, 0, 0, 0,              // reserved2
                               0xF0, 0x11, 0, 0,        // size 4592, little-endian
                               'D', 'I', 'S', 'T',      // tag, no terminator
                               0, 0, 0, 0};             // reserved3
    for (int i = 0; i < 16; ++i) want[24 + i] = static_cast<unsigned char>(i);
    memcpy(want + 40, "HP:P9+:Portrait", 15);  // rest of the 128 bytes zero
    for (int i = 0; i < 168; ++i) EXPECT_EQ(got[i], want[i]) << "byte " << i;
    const unsigned char* p = reinterpret_cast<const unsigned char*>(&rec);
    if (count < 1) {
      for (size_t i = 0; i < sizeof(rec); ++i) ASSERT_EQ(p[i], 0x3C) << "byte " << i;
    }
  }
}

// Two records in an exactly sized area followed by a guard pattern.
struct Guarded {
  quillMBHLDistprevCoeff rec[2];
  unsigned char guard[512];
};

TEST(DistprevHeader, BandCountsAboveSixWriteNothingPastTheRecords) {
  quillDistprevNotchDesignBlock six = DefaultBlock();
  six.nf_band_ct = 6;
  six.nf_spacing = 1;
  six.nf_base_attn_max = -6.0f;
  six.nf_slope = -2.0f;
  quillMBHLDistprevCoeff want[2];
  const quillDistprevNotchDesignBlock want_blocks[2] = {six, six};
  quillDistprevDesignHeader h;
  ASSERT_EQ(quill_distprev_config_designer(&h, want, want_blocks, 2), 0);

  for (int32_t band_ct : {7, 100, 0x7FFFFFFF}) {
    SCOPED_TRACE(band_ct);
    quillDistprevNotchDesignBlock many = six;
    many.nf_band_ct = band_ct;
    const quillDistprevNotchDesignBlock blocks[2] = {many, many};
    Guarded* g = new Guarded;
    memset(g->guard, 0xA5, sizeof(g->guard));
    EXPECT_EQ(quill_distprev_config_designer(&h, g->rec, blocks, 2), 0);
    for (size_t i = 0; i < sizeof(g->guard); ++i) ASSERT_EQ(g->guard[i], 0xA5) << i;
    // Cut at six bands: the same record as six bands except the count itself.
    for (int k = 0; k < 2; ++k) {
      EXPECT_EQ(g->rec[k].notch_band_count, band_ct);
      g->rec[k].notch_band_count = 6;
      EXPECT_EQ(memcmp(&g->rec[k], &want[k], sizeof(want[k])), 0) << "record " << k;
    }
    delete g;
  }
}

}  // namespace
