// Bass-enhancement float designer: input validation, the 52-float layout
// (including the hole at 24..26), and every section's response against the
// gain it is meant to have.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstring>

#include "iir_test_response.h"
#include "thumpx_test_util.h"

namespace {

using qh_test::kPi;
using thumpx_test::kDefaults;
using thumpx_test::Params;
constexpr float kSentinel = 12345.0f;

int Design(const Params& p, float* out) { return thumpx_test::DesignFloat(p, out); }

void Fill(float* out) {
  for (int i = 0; i < QH_THUMPX_FLOAT_LENGTH; ++i) out[i] = kSentinel;
}

// |H| of one section at w radians per sample. Second-order: b0, b1, b2, A1,
// A2; first-order: b0, b1, A1. A values are negated (added feedback).
double Mag2nd(const float* s, double w) { return std::abs(qh_test::SectionResponse(s, w)); }
double Mag1st(const float* s, double w) {
  const std::complex<double> z1 = std::polar(1.0, -w);
  const double b0 = s[0], b1 = s[1], a1 = s[2];
  return std::abs((b0 + b1 * z1) / (1.0 - a1 * z1));
}
double W(double hz, int rate) { return qh_test::Angle(hz, rate); }
double ButterLp(double f, double fc, int rate, int n) { return qh_test::ButterworthMagnitude(true, n, fc, f, rate); }
double ButterHp(double f, double fc, int rate, int n) { return qh_test::ButterworthMagnitude(false, n, fc, f, rate); }

double EffectiveHz(int size) { return (0.7368902 + 0.00033211955 * size) * size; }

TEST(ThumpxFloat, LeavesFloats24To26AloneAndWritesEverythingElse) {
  float out[QH_THUMPX_FLOAT_LENGTH];
  Fill(out);
  ASSERT_EQ(Design(kDefaults, out), 0);
  for (int i = 0; i < QH_THUMPX_FLOAT_LENGTH; ++i) {
    if (i >= 24 && i <= 26) {
      EXPECT_EQ(out[i], kSentinel) << i;
    } else {
      EXPECT_NE(out[i], kSentinel) << i;
    }
  }
}

TEST(ThumpxFloat, TailCarriesSizeAndTuningValuesUnchanged) {
  float out[QH_THUMPX_FLOAT_LENGTH];
  const Params p = {333, 0.25f, 0.75f, 0.125f, 44100, 4.75f, 612.5f, 37.25f, 1.25f};
  ASSERT_EQ(Design(p, out), 0);
  const float tail[7] = {333.0f, 0.25f, 0.75f, 0.125f, 4.75f, 612.5f, 37.25f};
  for (int i = 0; i < 7; ++i) EXPECT_EQ(out[45 + i], tail[i]) << 45 + i;
}

// ---------------------------------------------------------------- responses

// The "third-order" low-passes are a first-order Butterworth times a
// second-order Butterworth at the same corner (Q 0.7071, not the poles of a
// true third-order Butterworth), so they are half amplitude at the corner.
// Float coefficients of poles this close to z = 1 limit the agreement to
// about a part in a thousand at the lowest frequencies.
TEST(ThumpxFloat, ButterworthSectionsMatchThePrototype) {
  const int kRates[] = {48000, 44100, 32000};
  for (int rate : kRates) {
    SCOPED_TRACE(rate);
    Params p = kDefaults;
    p.sampling_rate = rate;
    float out[QH_THUMPX_FLOAT_LENGTH];
    ASSERT_EQ(Design(p, out), 0);
    const double lp_fc = p.lp_ratio * p.custom_speaker_size;               // 825 Hz
    const double hp_fc = p.hp_ratio * EffectiveHz(p.custom_speaker_size);  // speaker high-pass
    const double fs[] = {20.0, 60.0, 200.0, 500.0, 825.0, 1600.0, 5000.0};
    for (double f : fs) {
      SCOPED_TRACE(f);
      const double w = W(f, rate);
      const double lp = ButterLp(f, lp_fc, rate, 1) * ButterLp(f, lp_fc, rate, 2);
      const double pre = ButterLp(f, 500.0, rate, 1) * ButterLp(f, 500.0, rate, 2);
      const double hp = ButterHp(f, hp_fc, rate, 2);
      const double harm2 = ButterHp(f, 44.0, rate, 2);
      const double harm1 = ButterHp(f, 44.0, rate, 1);
      EXPECT_NEAR(Mag1st(out + 0, w) * Mag2nd(out + 3, w), lp, 5e-3 * lp);
      EXPECT_NEAR(Mag1st(out + 16, w) * Mag2nd(out + 19, w), pre, 5e-3 * pre);
      EXPECT_NEAR(Mag2nd(out + 11, w), hp, 5e-3 * hp);
      EXPECT_NEAR(Mag2nd(out + 27, w), harm2, 5e-3 * harm2);
      EXPECT_NEAR(Mag1st(out + 8, w), harm1, 5e-3 * harm1);
    }
    const double wc = W(lp_fc, rate);
    EXPECT_NEAR(Mag1st(out, wc) * Mag2nd(out + 3, wc), 0.5, 1e-4);
    EXPECT_NEAR(Mag2nd(out + 11, W(hp_fc, rate)), std::sqrt(0.5), 2e-3);
  }
}

void ExpectBypass(const float* s) {
  EXPECT_EQ(s[0], 1.0f);
  EXPECT_EQ(s[1], 0.0f);
  EXPECT_EQ(s[2], 0.0f);
  EXPECT_EQ(s[3], 0.0f);
  EXPECT_EQ(s[4], 0.0f);
  EXPECT_FALSE(std::signbit(s[1]));
  EXPECT_FALSE(std::signbit(s[2]));
  EXPECT_TRUE(std::signbit(s[3]));  // the bypass stores negative zeros
  EXPECT_TRUE(std::signbit(s[4]));
}

TEST(ThumpxFloat, HighPassesBelowOneTwentiethOfTheSpeakerAreBypassed) {
  Params p = kDefaults;
  p.hp_ratio = 0.04f;
  p.harm_hp_freq = 0.04f * static_cast<float>(EffectiveHz(p.custom_speaker_size));
  float out[QH_THUMPX_FLOAT_LENGTH];
  ASSERT_EQ(Design(p, out), 0);
  ExpectBypass(out + 11);
  ExpectBypass(out + 27);
  // The first-order harmonics high-pass is designed even so.
  EXPECT_NEAR(Mag1st(out + 8, W(p.harm_hp_freq, p.sampling_rate)), std::sqrt(0.5), 1e-4);

  p.hp_ratio = 0.05f;
  ASSERT_EQ(Design(p, out), 0);
  EXPECT_NE(out[11], 1.0f);
  // A corner this low (about 0.0015 of the rate) is only good to ~1% in float.
  EXPECT_NEAR(Mag2nd(out + 11, W(0.05 * EffectiveHz(p.custom_speaker_size), p.sampling_rate)), std::sqrt(0.5), 1.5e-2);
}

// The largest |H| of a second-order section over (0, pi): a log grid, then a
// golden-section search around the grid's best point.
double PeakGain(const float* s, double* where) {
  constexpr int kPoints = 2000;
  double best_w = 0, best = 0;
  for (int i = 0; i < kPoints; ++i) {
    const double w = kPi * std::pow(1e-5, 1.0 - i / (kPoints - 1.0));
    if (Mag2nd(s, w) > best) best = Mag2nd(s, w), best_w = w;
  }
  double lo = best_w / 1.01, hi = best_w * 1.01;
  for (int i = 0; i < 60; ++i) {
    const double m1 = hi - (hi - lo) * 0.618, m2 = lo + (hi - lo) * 0.618;
    (Mag2nd(s, m1) < Mag2nd(s, m2) ? lo : hi) = Mag2nd(s, m1) < Mag2nd(s, m2) ? m1 : m2;
  }
  *where = (lo + hi) / 2;
  return Mag2nd(s, *where);
}

// The bass path by its responses, for speakers across the size rules: both
// peaks are unity at DC and half the rate and rise to one common peak gain,
// the first peak below the second; the shelf rises monotonically from unity
// at DC; more bass control gives more of both.
TEST(ThumpxFloat, BassPeaksAndShelfByResponse) {
  for (int size : {60, 90, 150, 250, 400, 600}) {
    double last_peak = 1.0, last_shelf = 0.0;
    for (float bass : {0.4f, 0.7f, 1.0f}) {
      SCOPED_TRACE(testing::Message() << "size " << size << ", bass_ctrl " << bass);
      Params p = kDefaults;
      p.custom_speaker_size = size;
      p.bass_ctrl = bass;
      float out[QH_THUMPX_FLOAT_LENGTH];
      ASSERT_EQ(Design(p, out), 0);
      double w1 = 0, w2 = 0;
      const double g1 = PeakGain(out + 32, &w1), g2 = PeakGain(out + 37, &w2);
      for (const float* s : {out + 32, out + 37}) {
        EXPECT_NEAR(Mag2nd(s, 0.0), 1.0, 5e-3);  // float poles near z = 1
        EXPECT_NEAR(Mag2nd(s, kPi), 1.0, 1e-5);
      }
      EXPECT_GT(g1, last_peak);
      EXPECT_NEAR(g1, g2, 1e-4 * g1);
      EXPECT_LT(w1, w2);
      last_peak = g1;
      EXPECT_NEAR(Mag1st(out + 42, 0.0), 1.0, 1e-4);
      double previous = 1.0 - 1e-4;
      for (double w = 0.001; w < kPi; w *= 1.2) {
        EXPECT_GE(Mag1st(out + 42, w), previous) << w;
        previous = Mag1st(out + 42, w);
      }
      EXPECT_GT(Mag1st(out + 42, kPi), last_shelf);
      last_shelf = Mag1st(out + 42, kPi);
    }
  }
}

TEST(ThumpxFloat, NoBassBoostMakesBothPeaksIdentity) {
  Params p = kDefaults;
  p.bass_ctrl = 0.0f;
  float out[QH_THUMPX_FLOAT_LENGTH];
  ASSERT_EQ(Design(p, out), 0);
  const float identity[10] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0};
  for (int i = 0; i < 10; ++i) EXPECT_EQ(out[32 + i], identity[i]) << 32 + i;
}

}  // namespace
