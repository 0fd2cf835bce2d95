// The analysis component against scipy.signal (reference_responses.h, made by
// make_reference.py) and against closed forms for stability and quantisation.
#include <algorithm>
#include <cmath>
#include <complex>

#include <gtest/gtest.h>

#include "cascade.h"
#include "poles.h"
#include "quantisation.h"
#include "reference_responses.h"
#include "response.h"

namespace quillheron::analysis {
namespace {

Cascade FromReference(const reference::Case& c) {
  Cascade cascade;
  for (int s = 0; s < c.sections; ++s) {
    const double* v = c.sos[s];
    cascade.sections.push_back({v[0], v[1], v[2], v[3], v[4]});
  }
  cascade.gain = c.gain;
  return cascade;
}

bool ByPart(const std::complex<double>& a, const std::complex<double>& b) {
  if (std::abs(a.real() - b.real()) > 1e-9) return a.real() < b.real();
  return a.imag() < b.imag();
}

TEST(AnalysisTest, ResponseMatchesScipy) {
  for (const reference::Case& c : reference::kCases) {
    SCOPED_TRACE(c.name);
    std::vector<double> hz;
    for (const reference::Point& p : c.points) hz.push_back(p.hz);
    const auto got = Response(FromReference(c), c.rate, hz);
    for (size_t i = 0; i < hz.size(); ++i) {
      const reference::Point& want = c.points[i];
      EXPECT_NEAR(got[i].magnitude_db, want.magnitude_db, 1e-9) << want.hz;
      EXPECT_NEAR(std::remainder(got[i].phase - want.phase, 2 * M_PI), 0.0, 1e-9) << want.hz;
      EXPECT_NEAR(got[i].group_delay, want.group_delay, 1e-6 * std::max(1.0, std::abs(want.group_delay))) << want.hz;
    }
  }
}

TEST(AnalysisTest, RootsMatchScipy) {
  for (const reference::Case& c : reference::kCases) {
    SCOPED_TRACE(c.name);
    const auto roots = Roots(FromReference(c));
    for (int s = 0; s < c.sections; ++s) {
      auto poles = roots[s].poles, zeros = roots[s].zeros;
      std::sort(poles.begin(), poles.end(), ByPart);
      std::sort(zeros.begin(), zeros.end(), ByPart);
      ASSERT_EQ(poles.size(), 2u);
      ASSERT_EQ(zeros.size(), 2u);
      for (int k = 0; k < 2; ++k) {
        EXPECT_NEAR(std::abs(poles[k] - std::complex<double>(c.poles[s][k].re, c.poles[s][k].im)), 0.0, 1e-7);
        // Double zeros at -1 or 1 split by about the square root of the rounding.
        EXPECT_NEAR(std::abs(zeros[k] - std::complex<double>(c.zeros[s][k].re, c.zeros[s][k].im)), 0.0, 1e-7);
      }
      EXPECT_EQ(roots[s].stability, Stability::kStable);
    }
  }
}

TEST(AnalysisTest, StabilityFromThePoleRadius) {
  // z^2 - A1 z - A2: poles {1, 0.5} for A1 1.5, A2 -0.5; radius sqrt(-A2) for complex pairs.
  const struct {
    Section section;
    double radius;
    Stability stability;
  } kRows[] = {
      {{1, 0, 0, 1.5, -0.5}, 1.0, Stability::kMarginal},
      {{1, 0, 0, 0.0, -(1 - 1e-7) * (1 - 1e-7)}, 1 - 1e-7, Stability::kMarginal},
      {{1, 0, 0, 0.0, -(1 - 1e-5) * (1 - 1e-5)}, 1 - 1e-5, Stability::kStable},
      {{1, 0, 0, 0.0, -1.21}, 1.1, Stability::kUnstable},
      {{1, 0, 0, -2.5, -1.0}, 2.0, Stability::kUnstable},
      {{1, 0, 0, 0.9, 0.0}, 0.9, Stability::kStable},  // first order: pole 0.9 and 0
  };
  for (const auto& row : kRows) {
    const SectionRoots r = Roots(row.section);
    EXPECT_NEAR(r.pole_radius, row.radius, 1e-12) << row.section.a1 << " " << row.section.a2;
    EXPECT_EQ(r.stability, row.stability) << row.section.a1 << " " << row.section.a2;
  }
  EXPECT_EQ(Roots(Section{1, 0, 0, NAN, 0}).stability, Stability::kUnstable);
}

TEST(AnalysisTest, FixedLayoutReadsRealValues) {
  // One section with iwl 2 in 16 bits: v * 2^(2 - 16); gain word 0x4000 at iwl 1 is 0.5.
  const int16_t words[] = {2, 4096, -8192, 0, 16384, -4096, 1, 16384};
  const Cascade c = FromFixedLayout(words, 1);
  EXPECT_DOUBLE_EQ(c.sections[0].b0, 0.25);
  EXPECT_DOUBLE_EQ(c.sections[0].b1, -0.5);
  EXPECT_DOUBLE_EQ(c.sections[0].a1, 1.0);
  EXPECT_DOUBLE_EQ(c.sections[0].a2, -0.25);
  EXPECT_DOUBLE_EQ(c.gain, 0.5);
  EXPECT_DOUBLE_EQ(WordValue(-8388608, 24, 1), -1.0);
}

TEST(AnalysisTest, QuantisationReport) {
  const Cascade reference = FromReference(reference::kCases[0]);
  // The same cascade with A2 of section 1 moved onto the unit circle
  // (A1 + A2 = 1 puts a pole at z = 1) and its b0 off by 1%.
  Cascade quantised = reference;
  quantised.sections[1].a2 = 1 - quantised.sections[1].a1;
  quantised.sections[1].b0 *= 1.01;
  const QuantisationReport r = Quantisation(reference, quantised, 48000, {32767, -32768, 5, 0}, {1, 2, 3}, 16);
  EXPECT_EQ(r.saturated, 2);
  EXPECT_FALSE(r.silent);
  ASSERT_EQ(r.stability_changed, std::vector<int>{1});
  EXPECT_EQ(r.sections[1].stability, Stability::kMarginal);
  ASSERT_TRUE(r.max_error_db.has_value());
  EXPECT_GT(*r.max_error_db, 1.0);  // a pole at DC lifts the low band by tens of dB
  EXPECT_EQ(r.at_hz, 20.0);

  // An unchanged cascade has no error; an all-zero numerator is silent.
  const QuantisationReport same = Quantisation(reference, reference, 48000, {}, {1}, 32);
  EXPECT_NEAR(*same.max_error_db, 0.0, 1e-12);
  const QuantisationReport silent = Quantisation(reference, reference, 48000, {}, {0, 0, 0}, 32);
  EXPECT_TRUE(silent.silent);
  EXPECT_FALSE(silent.max_error_db.has_value());
}

}  // namespace
}  // namespace quillheron::analysis
