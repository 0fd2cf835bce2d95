// Overflow scaling: hand-computed single sections, the preserved overall
// response and unit L1 bound of designed cascades, and termination on
// cascades that diverge or ring for ever.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "iir_test_response.h"
#include "quillheron_filterdesign.h"

namespace {

using qh_test::Angle;
using qh_test::CascadeResponse;

struct HandCase {
  const char* what;
  float section[5];
  float scaled_b[3];
  float gain;
};

// A pure gain of 0.5: only the output node is non-zero, peak 0.5.
// A pole at 0.5 (y = 0.5^n): output L1 2, state L1 1, peak 2.
// A pole at -0.5 with b1 = 1: output 0, 1, -0.5, ... (L1 2), state 1 = 1 - 0.5... (L1 2).
constexpr HandCase kHand[] = {
    {"pure gain", {0.5f, 0.0f, 0.0f, 0.0f, 0.0f}, {1.0f, 0.0f, 0.0f}, 0.5f},
    {"first-order pole", {1.0f, 0.0f, 0.0f, 0.5f, 0.0f}, {0.5f, 0.0f, 0.0f}, 2.0f},
    {"delayed pole", {0.0f, 1.0f, 0.0f, -0.5f, 0.0f}, {0.0f, 0.5f, 0.0f}, 2.0f},
};

TEST(IirScale, HandComputedSections) {
  for (const HandCase& c : kHand) {
    std::vector<float> ws(QH_ScaleWorkspaceFloats(1));
    float cascade[6];
    std::memcpy(cascade, c.section, sizeof c.section);
    cascade[5] = 3.0f;  // replaced, not multiplied
    ScaleCascadedTransposedDirectForm2IIR(cascade, 1, ws.data());
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(c.scaled_b[i], cascade[i], 1e-6) << c.what << " b" << i;
    EXPECT_EQ(c.section[3], cascade[3]) << c.what;
    EXPECT_EQ(c.section[4], cascade[4]) << c.what;
    EXPECT_NEAR(c.gain, cascade[5], 1e-6) << c.what;
  }
}

// L1 norm of the output of the first `sections` sections of a cascade
// (gain excluded), by direct-form-I recursion in double.
double OutputL1(const float* cascade, int sections, int length) {
  std::vector<double> x(length, 0.0);
  x[0] = 1.0;
  for (int s = 0; s < sections; ++s) {
    const float* c = cascade + 5 * s;
    std::vector<double> y(length, 0.0);
    for (int n = 0; n < length; ++n) {
      double v = c[0] * x[n];
      if (n >= 1) v += c[1] * x[n - 1] + c[3] * y[n - 1];
      if (n >= 2) v += c[2] * x[n - 2] + c[4] * y[n - 2];
      y[n] = v;
    }
    x.swap(y);
  }
  double sum = 0.0;
  for (double v : x) sum += std::fabs(v);
  return sum;
}

struct ScaledDesign {
  int type;
  int order;
  float fc;
  int fs;
};

constexpr ScaledDesign kScaled[] = {
    {QH_IIR_LOWPASS, 2, 1000.0f, 48000}, {QH_IIR_LOWPASS, 5, 300.0f, 44100},
    {QH_IIR_HIGHPASS, 4, 100.0f, 48000}, {QH_IIR_HIGHPASS, 3, 5000.0f, 32000},
    {QH_IIR_LOWPASS, 8, 3000.0f, 16000},
};

TEST(IirScale, KeepsResponseAndBoundsEveryOutputNode) {
  for (const ScaledDesign& d : kScaled) {
    const int S = QH_IirSectionCount(d.order);
    std::vector<float> design(5 * S + 1);
    ASSERT_EQ(0, OVA_IirFilterDesignFloat(d.fc, d.order, d.fs, d.type, design.data()));
    std::vector<float> scaled = design;
    std::vector<unsigned char> ws(QH_ScaleWorkspaceBytesUnaligned(d.order) + 1);
    OVA_ScaleCascadedTransposedDirectForm2IIR(scaled.data(), d.order, ws.data() + 1);  // odd address
    for (double f : {0.0, 0.5 * d.fc, double(d.fc), 2.0 * d.fc}) {
      if (f >= d.fs / 2.0) continue;
      const double w = Angle(f, d.fs);
      const double want = std::abs(CascadeResponse(design.data(), S, w));
      EXPECT_NEAR(want, std::abs(CascadeResponse(scaled.data(), S, w)), 1e-4 * (1.0 + want)) << d.order;
    }
    // Each section's output L1 gain from the cascade input is at most 1 (its
    // states may be the larger node); the last section's is the gain's inverse.
    for (int s = 1; s <= S; ++s) {
      EXPECT_LE(OutputL1(scaled.data(), s, 200000), 1.0 + 1e-3) << d.order << " section " << s;
    }
    EXPECT_NEAR(OutputL1(design.data(), S, 200000) / scaled[5 * S],
                OutputL1(scaled.data(), S, 200000), 1e-4);
  }
}

TEST(IirScale, NoSectionsLeavesCascadeAlone) {
  float cascade[1] = {0.75f};
  float ws[QH_IIR_SCALE_BLOCK_LENGTH * 3];
  ScaleCascadedTransposedDirectForm2IIR(cascade, 0, ws);
  EXPECT_EQ(0.75f, cascade[0]);
}

// Cascades that never decay, for the longest cascade a designer builds (32
// sections): the bad section last, behind pass-through sections. Diverging
// ones end with a gain that is not finite; ones that ring for ever at a
// constant level (poles on the unit circle, a not-a-number feedback) are
// ended only by the pass's cap for cascades that are not strictly stable.
struct NeverDecaysCase {
  const char* what;
  float section[5];  // b0, b1, b2, A1, A2 (A negated)
  bool diverges;
};

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr NeverDecaysCase kNeverDecays[] = {
    {"real pole above one", {1.0f, 0.0f, 0.0f, 1.5f, 0.0f}, true},
    {"pole pair outside the unit circle", {1.0f, 0.0f, 0.0f, 1.0f, -1.1f}, true},
    {"barely unstable", {1.0f, 0.0f, 0.0f, 1.001f, 0.0f}, true},
    {"pole pair at +-j", {1.0f, 0.0f, 0.0f, 0.0f, -1.0f}, false},
    {"pole at +1", {1.0f, 0.0f, 0.0f, 1.0f, 0.0f}, false},
    {"pole at -1", {1.0f, 0.0f, 0.0f, -1.0f, 0.0f}, false},
    {"pole pair on the circle at a quarter of the rate", {0.5f, 0.0f, 0.0f, 1.4142135f, -1.0f}, false},
    {"not-a-number feedback", {1.0f, 0.0f, 0.0f, kNaN, 0.0f}, false},
};

TEST(IirScale, CascadesThatNeverDecayReturnPromptly) {
  constexpr int kSections = 32;
  for (const NeverDecaysCase& c : kNeverDecays) {
    std::vector<float> cascade;
    const float pass_through[5] = {1.0f, 0.0f, 0.0f, 0.0f, 0.0f};
    for (int s = 0; s + 1 < kSections; ++s) cascade.insert(cascade.end(), pass_through, pass_through + 5);
    cascade.insert(cascade.end(), c.section, c.section + 5);
    cascade.push_back(1.0f);
    std::vector<float> ws(QH_ScaleWorkspaceFloats(kSections));
    const auto start = std::chrono::steady_clock::now();
    ScaleCascadedTransposedDirectForm2IIR(cascade.data(), kSections, ws.data());
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    EXPECT_LT(seconds, 5.0) << c.what;
    if (c.diverges) {
      EXPECT_FALSE(std::isfinite(cascade.back())) << c.what;
    }
  }
}

}  // namespace
