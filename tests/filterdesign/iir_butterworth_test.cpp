// Butterworth designers against the analogue prototype at pre-warped
// frequencies, the cascade layout, and what a rejected design leaves alone.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "iir_test_response.h"
#include "quillheron_filterdesign.h"

namespace {

using qh_test::Angle;
using qh_test::CascadeResponse;
using qh_test::Db;
using qh_test::kPi;

struct DesignCase {
  int type;
  int order;
  float fc;
  int fs;
  double tolerance_db;  // float coefficients lose accuracy as fc/fs shrinks
};

constexpr DesignCase kDesigns[] = {
    {QH_IIR_LOWPASS, 1, 1000.0f, 48000, 0.01},   {QH_IIR_LOWPASS, 2, 1000.0f, 48000, 0.01},
    {QH_IIR_LOWPASS, 3, 300.0f, 44100, 0.01},    {QH_IIR_LOWPASS, 4, 5000.0f, 32000, 0.01},
    {QH_IIR_LOWPASS, 5, 120.0f, 96000, 0.05},    {QH_IIR_LOWPASS, 8, 2000.0f, 8000, 0.01},
    {QH_IIR_LOWPASS, 7, 400.0f, 192000, 0.05},    {QH_IIR_HIGHPASS, 1, 80.0f, 48000, 0.01},
    {QH_IIR_HIGHPASS, 2, 300.0f, 48000, 0.01},   {QH_IIR_HIGHPASS, 3, 150.0f, 44100, 0.01},
    {QH_IIR_HIGHPASS, 4, 20.0f, 16000, 0.05},    {QH_IIR_HIGHPASS, 6, 10000.0f, 44100, 0.01},
    {QH_IIR_HIGHPASS, 9, 1000.0f, 192000, 0.01}, {QH_IIR_LOWPASS, 6, 11000.0f, 22050, 0.01},
};

TEST(IirButterworth, MagnitudeMatchesPrewarpedPrototype) {
  const double kRatios[] = {0.05, 0.3, 0.7, 0.95, 1.0, 1.05, 1.5, 3.0, 10.0};
  for (const DesignCase& d : kDesigns) {
    const int S = QH_IirSectionCount(d.order);
    std::vector<float> out(5 * S + 1, -7.0f);
    ASSERT_EQ(0, OVA_IirFilterDesignFloat(d.fc, d.order, d.fs, d.type, out.data()));
    EXPECT_EQ(1.0f, out[5 * S]);
    for (double r : kRatios) {
      const double f = d.fc * r;
      if (f >= d.fs / 2.0) continue;
      const double expected = qh_test::ButterworthMagnitude(d.type == QH_IIR_LOWPASS, d.order, d.fc, f, d.fs);
      if (expected < 1e-6) continue;  // beyond float coefficient resolution
      const double got = std::abs(CascadeResponse(out.data(), S, Angle(f, d.fs)));
      EXPECT_NEAR(Db(expected), Db(got), d.tolerance_db)
          << "type " << d.type << " order " << d.order << " fc " << d.fc << " fs " << d.fs << " f " << f;
    }
  }
}

TEST(IirButterworth, OddOrderPutsFirstOrderSectionFirst) {
  for (int type : {QH_IIR_LOWPASS, QH_IIR_HIGHPASS}) {
    float out[16];
    std::memset(out, 0x5A, sizeof out);
    ASSERT_EQ(0, OVA_IirFilterDesignFloat(500.0f, 5, 48000, type, out));
    EXPECT_EQ(0.0f, out[2]);  // b2
    EXPECT_EQ(0.0f, out[4]);  // A2
    EXPECT_EQ(type == QH_IIR_LOWPASS ? out[0] : -out[0], out[1]);
    for (int s = 1; s < 3; ++s) EXPECT_NE(0.0f, out[5 * s + 4]) << s;
    EXPECT_EQ(1.0f, out[15]);
  }
  // Order 1: one section plus the gain, six floats in all.
  float one[7];
  std::memset(one, 0x5A, sizeof one);
  ASSERT_EQ(0, OVA_IirFilterDesignFloat(1000.0f, 1, 48000, QH_IIR_LOWPASS, one));
  EXPECT_EQ(1.0f, one[5]);
  float sentinel;
  std::memset(&sentinel, 0x5A, sizeof sentinel);
  EXPECT_EQ(0, std::memcmp(&sentinel, &one[6], sizeof sentinel));
}

TEST(IirButterworth, SecondOrderLowPassByHand) {
  float out[6];
  ASSERT_EQ(0, OVA_IirFilterDesignFloat(1000.0f, 2, 48000, QH_IIR_LOWPASS, out));
  const double K = std::tan(kPi * 1000.0 / 48000.0);
  // Poles of the prewarped prototype at s = K * exp(+-j 3pi/4), mapped by the
  // bilinear transform z = (1 + s) / (1 - s).
  const std::complex<double> s = K * std::polar(1.0, 3.0 * kPi / 4.0);
  const std::complex<double> z = (1.0 + s) / (1.0 - s);
  const double radius = std::abs(z);
  const double r = 1.0 / ((K * K + 1.0) - 2.0 * K * std::cos(3.0 * kPi / 4.0));
  EXPECT_NEAR(K * K * r, out[0], 1e-7);
  EXPECT_EQ(out[0], out[2]);
  EXPECT_EQ(2.0f * out[0], out[1]);
  EXPECT_GT(out[3], 0.0f);
  EXPECT_LT(out[4], 0.0f);
  EXPECT_NEAR(2.0 * z.real(), out[3], 1e-6);  // A1 = 2 r cos(angle), stored negated
  EXPECT_NEAR(-radius * radius, out[4], 1e-6);
}

}  // namespace
