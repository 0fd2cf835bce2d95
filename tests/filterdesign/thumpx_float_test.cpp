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

// ---------------------------------------------------------------- validation

struct ValidationCase {
  const char* name;
  Params p;
  int expected;
};

Params With(Params p, int size, int rate) {
  p.size = size;
  p.rate = rate;
  return p;
}
Params WithFractions(float bass, float hp, float ext) {
  Params p = kDefaults;
  p.bass_ctrl = bass;
  p.hp_ratio = hp;
  p.ext_bass = ext;
  return p;
}

const ValidationCase kValidation[] = {
    {"size39", With(kDefaults, 39, 48000), -1000},
    {"size40", With(kDefaults, 40, 48000), 0},
    {"size600", With(kDefaults, 600, 48000), 0},
    {"size601", With(kDefaults, 601, 48000), -1000},
    {"rate44100", With(kDefaults, 150, 44100), 0},
    {"rate32000", With(kDefaults, 150, 32000), 0},
    {"rate96000", With(kDefaults, 150, 96000), -1000},
    {"rate16000", With(kDefaults, 150, 16000), -1000},
    {"bassZero", WithFractions(0.0f, 0.5f, 0.8f), 0},
    {"bassOne", WithFractions(1.0f, 0.5f, 0.8f), 0},
    {"bassAbove", WithFractions(1.0000001f, 0.5f, 0.8f), -1000},
    {"bassBelow", WithFractions(-1e-7f, 0.5f, 0.8f), -1000},
    {"bassNaN", WithFractions(NAN, 0.5f, 0.8f), -1000},
    {"hpOne", WithFractions(0.3f, 1.0f, 0.8f), 0},
    {"hpAbove", WithFractions(0.3f, 1.01f, 0.8f), -1000},
    {"extZero", WithFractions(0.3f, 0.5f, 0.0f), 0},
    {"extBelow", WithFractions(0.3f, 0.5f, -0.5f), -1000},
    // Size is checked before the rate, the rate before the fractions; any
    // failure gives the same code, so the order shows only in no writes.
    {"sizeAndRate", With(WithFractions(2.0f, 0.5f, 0.8f), 10, 8000), -1000},
};

TEST(ThumpxFloat, ValidationBoundariesAndNoWritesOnReject) {
  for (const ValidationCase& c : kValidation) {
    SCOPED_TRACE(c.name);
    float out[QH_THUMPX_FLOAT_LENGTH];
    Fill(out);
    EXPECT_EQ(Design(c.p, out), c.expected);
    if (c.expected != 0) {
      for (int i = 0; i < QH_THUMPX_FLOAT_LENGTH; ++i) EXPECT_EQ(out[i], kSentinel) << i;
    }
  }
}

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
    p.rate = rate;
    float out[QH_THUMPX_FLOAT_LENGTH];
    ASSERT_EQ(Design(p, out), 0);
    const double lp_fc = p.lp_ratio * p.size;               // 825 Hz
    const double hp_fc = p.hp_ratio * EffectiveHz(p.size);  // speaker high-pass
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
  p.harm_hp_freq = 0.04f * static_cast<float>(EffectiveHz(p.size));
  float out[QH_THUMPX_FLOAT_LENGTH];
  ASSERT_EQ(Design(p, out), 0);
  ExpectBypass(out + 11);
  ExpectBypass(out + 27);
  // The first-order harmonics high-pass is designed even so.
  EXPECT_NEAR(Mag1st(out + 8, W(p.harm_hp_freq, p.rate)), std::sqrt(0.5), 1e-4);

  p.hp_ratio = 0.05f;
  ASSERT_EQ(Design(p, out), 0);
  EXPECT_NE(out[11], 1.0f);
  // A corner this low (about 0.0015 of the rate) is only good to ~1% in float.
  EXPECT_NEAR(Mag2nd(out + 11, W(0.05 * EffectiveHz(p.size), p.rate)), std::sqrt(0.5), 1.5e-2);
}

// Peak sections: unity at DC and Nyquist, the peak gain G at the centre.
// G and the centres are worked out by hand for each case from the tuning
// rules (boost mapping by size, level, wide or narrow placement).
struct PeakCase {
  const char* name;
  Params p;
  double gain;  // G
  bool wide;    // level away from 1: both centres moved up by 1.4
};

// size 150: a = 1.3335 * 1.2624519, h = g >= 1.33 so L = clip 1.5; wide.
const double kG150 = 1.5 * 1.3335 * 1.2624519;
// size 60, g = 1.8: a = g * 1.2877009; h = 1.8 * 1.09 * 1.04 > 1.33; L 1.5.
const double kG60 = 1.5 * 1.8 * 1.2877009;
// size 150, g = 1.1: h = 1.1 < 1.33, L = 1.5 / ((1.5*3.030303 + 3.030303)*0.23 + 1).
const double kL150Small = 1.5 / ((1.5 * 3.030303 + 3.030303) * (1.33 - 1.1) + 1.0);
// Level below clip for h under 1.33.
double SmallBoostLevel(double h) { return 1.5 / ((1.5 * 3.030303 + 3.030303) * (1.33 - h) + 1.0); }
// size 400: G gets 10^((400 - 300) * 0.000125).
const double kG400 = 1.5 * 1.3335 * 1.2624519 * std::pow(10.0, 0.0125);

const PeakCase kPeaks[] = {
    {"size150", kDefaults, kG150, true},
    {"size60", {60, 0.8f, 0.5f, 0.8f, 48000, 5.5f, 500.0f, 44.0f, 1.5f}, kG60, true},
    {"size150small", {150, 0.1f, 0.5f, 0.8f, 44100, 5.5f, 500.0f, 44.0f, 1.5f},
     kL150Small * 1.1 * 1.2624519, true},
    // 76..100: h = g below 1.5; 75 and below: h = 1.005 g up to g = 1.32.
    {"size90", {90, 0.2f, 0.5f, 0.8f, 48000, 5.5f, 500.0f, 44.0f, 1.5f},
     SmallBoostLevel(1.2) * 1.2 * 1.2877009, true},
    {"size50", {50, 0.3f, 0.5f, 0.8f, 48000, 5.5f, 500.0f, 44.0f, 1.5f},
     SmallBoostLevel(1.3 * 1.005) * 1.3 * 1.2877009, true},
    {"size400", {400, 0.3335f, 0.5f, 0.8f, 32000, 5.5f, 500.0f, 44.0f, 1.5f}, kG400, true},
    // Level 1 exactly: narrow placement.
    {"narrow", {150, 0.3335f, 0.5f, 0.8f, 48000, 5.5f, 500.0f, 44.0f, 1.0f},
     1.0 * 1.3335 * 1.2624519, false},
};

TEST(ThumpxFloat, PeakSectionsHaveTheirGainAtTheCentreAndUnityOutside) {
  for (const PeakCase& c : kPeaks) {
    SCOPED_TRACE(c.name);
    float out[QH_THUMPX_FLOAT_LENGTH];
    ASSERT_EQ(Design(c.p, out), 0);
    const double feff = EffectiveHz(c.p.size);
    // Centres: pi * f_eff * 1.232 and f_eff * 6.047566 radians per second.
    const double spread = c.wide ? 1.4 : 1.0;
    const double w1 = kPi * feff * 1.232 / c.p.rate * spread;
    const double w2 = feff * 6.047566 / c.p.rate * spread;
    // Unity at DC is limited by float coefficients of poles near z = 1.
    for (const float* s : {out + 32, out + 37}) {
      EXPECT_NEAR(Mag2nd(s, 0.0), 1.0, 5e-3);
      EXPECT_NEAR(Mag2nd(s, kPi), 1.0, 1e-5);
    }
    EXPECT_NEAR(Mag2nd(out + 32, w1), c.gain, 2e-4 * c.gain);
    EXPECT_NEAR(Mag2nd(out + 37, w2), c.gain, 2e-4 * c.gain);
    // The centre is the extremum: a little to either side is nearer unity.
    for (const float* s : {out + 32, out + 37}) {
      const double w = s == out + 32 ? w1 : w2;
      const double centre = std::abs(std::log(Mag2nd(s, w)));
      EXPECT_LT(std::abs(std::log(Mag2nd(s, w * 0.97))), centre);
      EXPECT_LT(std::abs(std::log(Mag2nd(s, w * 1.03))), centre);
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

// High shelf: unity at DC, p*g at Nyquist, p from the quadratic in g times
// the size factor.
struct ShelfCase {
  int size;
  float bass_ctrl;
  double factor;
};
const ShelfCase kShelves[] = {{40, 0.0f, 1.377},   {60, 0.5f, 1.377},   {61, 0.5f, 1.262},
                              {100, 1.0f, 1.262},  {101, 0.3f, 1.187},  {250, 0.3f, 1.04},
                              {350, 0.3f, 0.972},  {450, 0.3f, 0.9826}, {501, 0.3f, 1.07},
                              {600, 0.0f, 1.07}};

TEST(ThumpxFloat, ShelfRisesFromUnityToItsHighFrequencyGain) {
  for (const ShelfCase& c : kShelves) {
    SCOPED_TRACE(c.size);
    Params p = kDefaults;
    p.size = c.size;
    p.bass_ctrl = c.bass_ctrl;
    float out[QH_THUMPX_FLOAT_LENGTH];
    ASSERT_EQ(Design(p, out), 0);
    const double g = 1.0 + c.bass_ctrl;
    const double pg = (g * g * 0.22138274 - g * 0.0067901528 + 1.1869731) * c.factor * g;
    ASSERT_GT(pg, 1.0);
    EXPECT_NEAR(Mag1st(out + 42, 0.0), 1.0, 1e-4);
    EXPECT_NEAR(Mag1st(out + 42, kPi), pg, 1e-4 * pg);
  }
}

}  // namespace
