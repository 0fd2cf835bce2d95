// Cascades that never decay, handed straight to the overflow-scaling pass:
// one section with poles on the unit circle (or a not-a-number feedback
// coefficient) behind pass-through sections rings for ever at a constant
// level, so only the pass's cap for cascades that are not strictly stable
// ends it. Each call must return promptly, for the longest cascade a
// designer builds.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>
#include <vector>

#include "quillheron_filterdesign.h"

namespace {

struct RingingCase {
  const char* what;
  float section[5];  // b0, b1, b2, A1, A2 (A negated)
};

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr RingingCase kRinging[] = {
    {"pole pair at +-j", {1.0f, 0.0f, 0.0f, 0.0f, -1.0f}},
    {"pole at +1", {1.0f, 0.0f, 0.0f, 1.0f, 0.0f}},
    {"pole at -1", {1.0f, 0.0f, 0.0f, -1.0f, 0.0f}},
    {"pole pair on the circle at a quarter of the rate", {0.5f, 0.0f, 0.0f, 1.4142135f, -1.0f}},
    {"not-a-number feedback", {1.0f, 0.0f, 0.0f, kNaN, 0.0f}},
};

TEST(HostileScaling, CascadesThatNeverDecayReturnPromptly) {
  constexpr int kSections = 32;  // an order-64 design
  for (const RingingCase& c : kRinging) {
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
  }
}

}  // namespace
