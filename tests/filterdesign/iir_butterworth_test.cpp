// Butterworth designers: the float design against the analogue prototype at
// pre-warped frequencies and the cascade layout; the fixed-point designs read
// back at their width against the float design, and the 16-bit numerator
// symmetry. Rejected requests: rejection_test.
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

struct FxpDesign {
  int type;
  int order;
  float fc;
  int fs;
};

constexpr FxpDesign kFxp[] = {
    {QH_IIR_LOWPASS, 1, 2000.0f, 48000}, {QH_IIR_LOWPASS, 2, 1000.0f, 48000},
    {QH_IIR_LOWPASS, 3, 250.0f, 44100},  {QH_IIR_LOWPASS, 6, 4000.0f, 32000},
    {QH_IIR_HIGHPASS, 1, 60.0f, 48000},  {QH_IIR_HIGHPASS, 2, 300.0f, 48000},
    {QH_IIR_HIGHPASS, 5, 150.0f, 44100}, {QH_IIR_HIGHPASS, 4, 800.0f, 8000},
};

// The fixed-point design, read back at its width, has the float design's
// response (scaling moves gain between the sections and the gain record).
template <typename Word, typename Design>
void CheckResponse(Design design, int width, double tolerance_db) {
  for (const FxpDesign& d : kFxp) {
    const int S = QH_IirSectionCount(d.order);
    std::vector<Word> out(6 * S + 3, 0x55);
    std::vector<unsigned char> ws(QH_IirDesignWorkspaceBytes(S) + 3);
    ASSERT_EQ(0, design(d.fc, d.order, d.fs, d.type, out.data(), ws.data() + 3));
    EXPECT_EQ(Word(0x55), out[6 * S + 2]) << "wrote past the cascade";
    std::vector<float> readback(5 * S + 1), reference(5 * S + 1);
    qh_test::ReadFixedCascade(out.data(), S, width, readback.data());
    ASSERT_EQ(0, OVA_IirFilterDesignFloat(d.fc, d.order, d.fs, d.type, reference.data()));
    for (double r : {0.25, 0.5, 1.0, 1.5}) {
      const double w = Angle(r * d.fc, d.fs);
      const double want = std::abs(CascadeResponse(reference.data(), S, w));
      const double got = std::abs(CascadeResponse(readback.data(), S, w));
      EXPECT_NEAR(Db(want), Db(got), tolerance_db) << d.type << " order " << d.order << " at " << r;
    }
  }
}

TEST(IirDesignFxp, EveryWidthReadsBackToTheFloatDesign) {
  CheckResponse<int32_t>(OVA_IirFilterDesignFxp32, 32, 1e-3);
  CheckResponse<int32_t>(OVA_IirFilterDesignFxp24, 24, 0.1);
  CheckResponse<int16_t>(OVA_IirFilterDesignFxp16, 16, 1.5);
}

TEST(IirDesignFxp, SixteenBitNumeratorsAreExactlySymmetric) {
  const float kCutoffs[] = {37.0f, 120.0f, 999.0f, 4321.0f, 11000.0f};
  const int kRates[] = {8000, 44100, 48000, 96000};
  for (int type : {QH_IIR_LOWPASS, QH_IIR_HIGHPASS}) {
    for (int order = 1; order <= 8; ++order) {
      for (float fc : kCutoffs) {
        for (int fs : kRates) {
          if (fc >= fs / 2) continue;
          const int S = QH_IirSectionCount(order);
          std::vector<int16_t> out(6 * S + 2);
          std::vector<unsigned char> ws(QH_IirDesignWorkspaceBytes(S));
          ASSERT_EQ(0, OVA_IirFilterDesignFxp16(fc, order, fs, type, out.data(), ws.data()));
          for (int s = order % 2; s < S; ++s) {
            const int16_t* rec = out.data() + 6 * s;
            const int16_t want = static_cast<int16_t>(static_cast<uint16_t>((type == QH_IIR_LOWPASS ? 2 : -2) * rec[1]));
            EXPECT_EQ(want, rec[2]) << type << " " << order << " " << fc << " " << fs << " section " << s;
            EXPECT_EQ(rec[1], rec[3]);
          }
        }
      }
    }
  }
}

}  // namespace
