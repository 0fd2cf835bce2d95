// The scaling pass in SIMD lanes (four-lane, eight-lane where the processor has
// them, and the plain fallback) against the section-after-section pass, word
// for word: random stable cascades of every chunk size, near-unstable ones
// (pole radius up to 1 - 1e-4), and cascades that underflow, diverge, ring for
// ever or hold subnormal or non-finite coefficients.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "iir_internal.h"
#include "iir_scale_internal.h"
#include "quillheron_filterdesign.h"

namespace {

using qh::fd::ScalePath;

std::vector<float> Scaled(std::vector<float> cascade, ScalePath path) {
  const int sections = static_cast<int>(cascade.size() - 1) / 5;
  std::vector<float> ws(QH_ScaleWorkspaceFloats(sections));
  qh::fd::ScaleCascade(cascade.data(), sections, ws.data(), path);
  return cascade;
}

uint32_t Bits(float v) {
  uint32_t b;
  std::memcpy(&b, &v, sizeof b);
  return b;
}

// Every lane path gives the words of the section path.
void ExpectSameWords(const std::vector<float>& cascade, const std::string& what) {
  const std::vector<float> want = Scaled(cascade, ScalePath::kSections);
  for (ScalePath path : {ScalePath::kLanes, ScalePath::kWideLanes, ScalePath::kPlainLanes, ScalePath::kAuto}) {
    const std::vector<float> got = Scaled(cascade, path);
    for (size_t i = 0; i < want.size(); ++i) {
      if (Bits(want[i]) != Bits(got[i])) {
        ADD_FAILURE() << what << ": path " << static_cast<int>(path) << " word " << i << " is " << got[i]
                      << ", sections give " << want[i];
        break;
      }
    }
  }
}

// A section with poles r e^{+-i theta} (one real pole r when first order) and
// numerator coefficients drawn from [-amp, amp].
void AddSection(std::vector<float>& c, std::mt19937& rng, double r_min, double r_max, double amp) {
  std::uniform_real_distribution<double> u(0.0, 1.0);
  const double r = r_min + (r_max - r_min) * u(rng);
  const bool first_order = u(rng) < 0.2;
  const double theta = 3.14159265358979 * u(rng);
  c.push_back(static_cast<float>(amp * (2 * u(rng) - 1)));
  c.push_back(static_cast<float>(amp * (2 * u(rng) - 1)));
  c.push_back(first_order ? 0.0f : static_cast<float>(amp * (2 * u(rng) - 1)));
  c.push_back(static_cast<float>(first_order ? (u(rng) < 0.5 ? r : -r) : 2 * r * std::cos(theta)));
  c.push_back(first_order ? 0.0f : static_cast<float>(-r * r));
}

std::vector<float> RandomCascade(std::mt19937& rng, int sections, double r_min, double r_max) {
  std::vector<float> c;
  for (int s = 0; s < sections; ++s) AddSection(c, rng, r_min, r_max, 1.5);
  c.push_back(1.0f);
  return c;
}

TEST(IirScaleLanes, BuildHasVectorLanesWhereExpected) {
#if defined(__x86_64__) || defined(__ARM_NEON)
  EXPECT_TRUE(qh::fd::HasNativeLanes());
#endif
}

// Section counts around every vector and chunk edge, up to the lane limit.
constexpr int kSectionCounts[] = {1, 2, 3, 4, 5, 7, 8, 9, 11, 12, 13, 16, 17, 23, 24, 25, 33, 37, 63, 64, 65};

TEST(IirScaleLanes, RandomStableCascades) {
  std::mt19937 rng(20261123);
  for (int sections : kSectionCounts) {
    for (int trial = 0; trial < 4; ++trial) {
      ExpectSameWords(RandomCascade(rng, sections, 0.0, 0.99),
                      "stable S=" + std::to_string(sections) + " trial " + std::to_string(trial));
    }
  }
}

TEST(IirScaleLanes, NearUnstableCascades) {
  std::mt19937 rng(7);
  for (int trial = 0; trial < 24; ++trial) {
    const int sections = 3 + trial % 6;
    std::vector<float> c = RandomCascade(rng, sections, 0.5, 0.99);
    // One section (a different one each time) gets poles within 1e-3 of the
    // unit circle, at most 1 - 1e-4.
    std::mt19937 one(trial);
    std::vector<float> slow;
    AddSection(slow, one, 1.0 - 1e-3, 1.0 - 1e-4, 1.0);
    std::copy(slow.begin(), slow.end(), c.begin() + 5 * (trial % sections));
    ExpectSameWords(c, "near-unstable trial " + std::to_string(trial));
  }
}

struct EdgeCase {
  const char* what;
  int sections;
  float section[5];  // replaces section `at`; the others are a mild low-pass
  int at;
};

constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

constexpr EdgeCase kEdges[] = {
    {"subnormal b0", 5, {1e-40f, 0.0f, 0.0f, 0.5f, 0.0f}, 2},
    {"tiny b1 and b2", 5, {1.0f, 1e-33f, -1e-35f, 0.9f, -0.5f}, 0},
    {"pure gain", 4, {0.25f, 0.0f, 0.0f, 0.0f, 0.0f}, 1},
    {"all zero section", 6, {0.0f, 0.0f, 0.0f, 0.0f, 0.0f}, 3},
    {"diverging pole", 5, {1.0f, 0.0f, 0.0f, 1.5f, 0.0f}, 4},
    {"diverging pair first", 13, {1.0f, 0.0f, 0.0f, 1.0f, -1.1f}, 0},
    {"pole pair on the circle", 4, {1.0f, 0.0f, 0.0f, 1.0f, -1.0f}, 1},
    {"overflowing gain", 6, {3e38f, 3e38f, 0.0f, 0.5f, 0.0f}, 2},
    {"infinite coefficient", 4, {kInf, 0.0f, 0.0f, 0.0f, 0.0f}, 1},
    {"not-a-number coefficient", 12, {1.0f, kNaN, 0.0f, 0.0f, 0.0f}, 11},
};

TEST(IirScaleLanes, EdgeCascades) {
  for (const EdgeCase& e : kEdges) {
    std::vector<float> c;
    for (int s = 0; s < e.sections; ++s) {
      const float mild[5] = {0.25f, 0.5f, 0.25f, 0.6f, -0.2f};
      const float* src = s == e.at ? e.section : mild;
      c.insert(c.end(), src, src + 5);
    }
    c.push_back(1.0f);
    ExpectSameWords(c, e.what);
  }
}

// Gains of 2^-100 and then 2^-30 carry the impulse response through the
// subnormal range, and 2^60 brings it back: lanes that flushed subnormals to
// zero would measure nothing for the last two sections.
TEST(IirScaleLanes, SignalThroughTheSubnormalRange) {
  const std::vector<float> c = {0x1p-100f, 0.0f, 0.0f, 0.5f, 0.0f,  0x1p-30f, 0.0f, 0.0f, 0.0f, 0.0f,
                                0x1p60f,   0.0f, 0.0f, -0.5f, 0.0f, 1.0f};
  ExpectSameWords(c, "through the subnormal range");
}

// Low corners and high orders: the impulse response underflows into
// subnormals long before the decay threshold is reached.
struct Butterworth {
  int order;
  float fc;
  int fs;
};
constexpr Butterworth kUnderflowing[] = {{8, 20.0f, 192000}, {12, 40.0f, 96000}, {16, 200.0f, 48000},
                                         {10, 5.0f, 8000},   {7, 10.0f, 44100}};

TEST(IirScaleLanes, UnderflowingButterworths) {
  for (const Butterworth& b : kUnderflowing) {
    for (int type : {QH_IIR_LOWPASS, QH_IIR_HIGHPASS}) {
      std::vector<float> c(QH_IirFloatLength(b.order));
      ASSERT_EQ(0, OVA_IirFilterDesignFloat(b.fc, b.order, b.fs, type, c.data()));
      ExpectSameWords(c, "order " + std::to_string(b.order) + " at " + std::to_string(b.fc) + " Hz, type " +
                             std::to_string(type));
    }
  }
}

}  // namespace
