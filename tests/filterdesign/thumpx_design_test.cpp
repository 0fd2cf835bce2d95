// Bass-enhancement designers. Float: the 52-float layout (including the
// hole at 24..26) and every section's response against the gain it is meant
// to have. Fixed point (32, 24 and 16 bits): group layout and quantisation
// against the float design, the tuning words with their per-width
// saturation, the 16-bit repairs and the quantised layout hole. Rejected
// requests: rejection_test.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <vector>

#include "design_requests.h"
#include "iir_test_response.h"

namespace {

using qh_test::kPi;
// The request's fields in the designer's argument order.
using Params = qh_design::ThumpxRequest;

// The schema defaults with a mid-size speaker.
constexpr Params kDefaults = {150, 0.3335f, 0.5f, 0.8f, 48000, 5.5f, 500.0f, 44.0f, 1.5f, 0};

int Design(const Params& p, float* out) {
  qh_design::DesignBuffers b;
  b.floats = out;
  return qh_design::Run(p, qh_design::Format::kFloat, b);
}

constexpr float kSentinel = 12345.0f;


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

// ------------------------------------------------------------ fixed point

// Workspace large enough for any alignment, pre-filled with a pattern so the
// float designer's untouched floats 24..26 hold a known value.
struct Workspace {
  alignas(8) unsigned char bytes[QH_THUMPX_WORKSPACE_BYTES + 1];
  void* At(int offset) { return bytes + offset; }
  void FillFloats(float v) {
    for (size_t i = 0; i + sizeof(float) <= sizeof(bytes); i += sizeof(float)) {
      memcpy(bytes + i, &v, sizeof(v));
    }
  }
};

// All three widths as 64-bit values, for one harness.
std::vector<int64_t> DesignFxp(int width, const Params& p, void* ws, int* rc) {
  const qh_design::Format format =
      width == 32 ? qh_design::Format::kFxp32 : width == 24 ? qh_design::Format::kFxp24 : qh_design::Format::kFxp16;
  int32_t out32[QH_THUMPX_FIXED_LENGTH];
  int16_t out16[QH_THUMPX_FIXED_LENGTH];
  for (auto& w : out32) w = 0x5A5A5A5A;
  for (auto& w : out16) w = 0x5A5A;
  qh_design::DesignBuffers b;
  b.words32 = out32;
  b.words16 = out16;
  b.workspace = ws;
  *rc = qh_design::Run(p, format, b);
  std::vector<int64_t> words(QH_THUMPX_FIXED_LENGTH);
  for (int i = 0; i < QH_THUMPX_FIXED_LENGTH; ++i) words[i] = width == 16 ? out16[i] : out32[i];
  return words;
}

const int kWidths[] = {32, 24, 16};



// Low 16 bits of a 32-bit value read as a signed halfword.
int64_t Low16(int64_t v) {
  return static_cast<int16_t>(static_cast<uint16_t>(static_cast<uint64_t>(v) & 0xFFFFu));
}

// Group table: (first float, length, first word).
struct Group {
  int first, length, word;
};
const Group kGroups[] = {{0, 3, 0},   {3, 5, 4},   {8, 3, 10},  {11, 5, 14},
                         {16, 3, 20}, {19, 5, 24}, {24, 3, 30}, {27, 5, 34},
                         {32, 5, 40}, {37, 5, 46}, {42, 3, 52}};

// Every group holds the smallest iwl that fits its largest value, followed by
// the values rounded to W - iwl fraction bits. The 16-bit b1 words of the
// two repaired sections are checked separately.
TEST(ThumpxFixed, GroupsQuantiseTheFloatDesign) {
  const Params kCases[] = {kDefaults,
                           {60, 1.0f, 0.04f, 0.0f, 44100, 3.0f, 300.0f, 20.0f, 1.2f},
                           {600, 0.0f, 1.0f, 1.0f, 32000, 9.0f, 1200.0f, 100.0f, 2.0f}};
  for (const Params& p : kCases) {
    float ref[QH_THUMPX_FLOAT_LENGTH] = {};
    ASSERT_EQ(Design(p, ref), 0);
    for (int width : kWidths) {
      for (int misalign : {0, 3}) {  // the designer aligns the workspace itself
        SCOPED_TRACE(testing::Message() << "size " << p.custom_speaker_size << " width " << width << " offset "
                                        << misalign);
        Workspace ws;
        ws.FillFloats(0.0f);
        int rc = -1;
        const std::vector<int64_t> w = DesignFxp(width, p, ws.At(misalign), &rc);
        ASSERT_EQ(rc, 0);
        for (const Group& g : kGroups) {
          double peak = 0.0;
          for (int i = 0; i < g.length; ++i) peak = std::fmax(peak, std::fabs(ref[g.first + i]));
          const int64_t iwl = w[g.word];
          if (peak > 0.0) {
            // Smallest iwl with the peak inside the signed range.
            EXPECT_LT(peak, std::ldexp(1.0, static_cast<int>(iwl) - 1)) << "group at " << g.word;
            if (iwl > 0) {
              EXPECT_GE(peak, std::ldexp(1.0, static_cast<int>(iwl) - 2) - 1e-12);
            }
          }
          for (int i = 0; i < g.length; ++i) {
            const int word = g.word + 1 + i;
            if (width == 16 && (word == 6 || word == 16)) continue;
            const double scaled = std::ldexp(static_cast<double>(ref[g.first + i]),
                                             width - static_cast<int>(iwl));
            EXPECT_EQ(w[word], qh_test::RoundSat(scaled, width)) << "word " << word;
          }
        }
      }
    }
  }
}

// The b1 of the third-order low-pass's second-order section is twice its b0,
// the speaker high-pass's minus twice; every other word, at every width,
// keeps its own rounding (GroupsQuantiseTheFloatDesign).
TEST(ThumpxFixed, SixteenBitRepairsOnlyTheTwoNamedSections) {
  Workspace ws;
  int rc = -1;
  const std::vector<int64_t> w16 = DesignFxp(16, kDefaults, ws.At(0), &rc);
  ASSERT_EQ(rc, 0);
  EXPECT_EQ(w16[6], Low16(2 * w16[5]));
  EXPECT_EQ(w16[16], Low16(-2 * w16[15]));
}

TEST(ThumpxFixed, UntouchedFloatsAreQuantisedAsFound) {
  // 0.75 needs one integer bit: iwl 1, value 0.75 * 2^(W-1).
  const int64_t kExpected[] = {1610612736, 6291456, 24576};
  for (int i = 0; i < 3; ++i) {
    Workspace ws;
    ws.FillFloats(0.75f);
    int rc = -1;
    const std::vector<int64_t> w = DesignFxp(kWidths[i], kDefaults, ws.At(0), &rc);
    ASSERT_EQ(rc, 0);
    EXPECT_EQ(w[30], 1);
    for (int k = 31; k <= 33; ++k) EXPECT_EQ(w[k], kExpected[i]) << kWidths[i] << " word " << k;
  }
}

// Tuning words 56..62 by width.
struct ParamCase {
  const char* name;
  Params p;
  int64_t words32[7];
  int64_t words24[7];
  int64_t words16[7];
};

const ParamCase kParamCases[] = {
    {"defaults",
     kDefaults,
     // The float 0.3335 is 0.333499997854232788: times 2^31 716185792,
     // times 2^23 2797600.75. The float 0.8 times 2^23 is 6710886.5, which
     // rounds away from zero. lp_ratio 5.5 * 2^22 = 23068672 = 0x1600000.
     {150, 716185792, 1073741824, 1717986944, 23068672, 500, 44},
     {150, 2797601, 4194304, 6710887, 23068672, 500, 44},
     {150, 10928, 16384, 26214, 0, 500, 44}},
    {"fullScale",
     {600, 1.0f, 1.0f, 0.0f, 44100, 600.0f, 70000.75f, -44.9f, 1.5f},
     // lp_ratio 600 * 2^22 saturates to 0x7FFFFFFF; its low half is 0xFFFF.
     {600, 2147483647, 2147483647, 0, 2147483647, 70000, -44},
     {600, 8388607, 8388607, 0, 2147483647, 70000, -44},
     {600, 32767, 32767, 0, -1, 70000 - 65536, -44}},
    {"halves",
     // 1 + 2^-23 in Q22 is 4194304.5: the half rounds away from zero.
     {40, 0.0f, 0.0f, 0.0f, 32000, -1.00000012f, 0.0f, 0.0f, 1.5f},
     {40, 0, 0, 0, -4194305, 0, 0},
     {40, 0, 0, 0, -4194305, 0, 0},
     {40, 0, 0, 0, Low16(-4194305), 0, 0}},
    {"negativeSaturation",
     // -600 in Q22 saturates low; its low half is 0.
     {100, 0.25f, 0.125f, 0.0f, 48000, -600.0f, 1.0f, 1.0f, 1.5f},
     {100, 536870912, 268435456, 0, INT32_MIN, 1, 1},
     {100, 2097152, 1048576, 0, INT32_MIN, 1, 1},
     {100, 8192, 4096, 0, 0, 1, 1}},
    {"unvalidated",
     // Values no caller should send still give defined words: NaN becomes
     // 0, the rest saturate (16 bits keep the low half of the 32-bit word).
     {200, 0.5f, 0.5f, 0.5f, 48000, NAN, 1e12f, -1e12f, INFINITY},
     {200, 1073741824, 1073741824, 1073741824, 0, INT32_MAX, INT32_MIN},
     {200, 4194304, 4194304, 4194304, 0, INT32_MAX, INT32_MIN},
     {200, 16384, 16384, 16384, 0, -1, 0}},
};

TEST(ThumpxFixed, TuningWordsPerWidth) {
  for (const ParamCase& c : kParamCases) {
    for (int width : kWidths) {
      SCOPED_TRACE(testing::Message() << c.name << " width " << width);
      Workspace ws;
      int rc = -1;
      const std::vector<int64_t> w = DesignFxp(width, c.p, ws.At(1), &rc);
      ASSERT_EQ(rc, 0);
      const int64_t* expected = width == 32 ? c.words32 : width == 24 ? c.words24 : c.words16;
      for (int i = 0; i < 7; ++i) EXPECT_EQ(w[56 + i], expected[i]) << "word " << 56 + i;
    }
  }
}

}  // namespace
