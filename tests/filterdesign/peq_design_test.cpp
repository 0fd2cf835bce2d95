// Parametric-EQ designers: rejection and what stays unwritten, the gain
// record, the 16-bit numerator repair and the scaled designs' response.
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

const OVAParametriceqBandSpec kMixed[] = {
    {PEQ_BAND_TYPE_LOWPASS, 9000.0f, 0.0f, 2.0f, 0},     {PEQ_BAND_TYPE_HIGHPASS, 70.0f, 0.0f, -3.0f, 0},
    {PEQ_BAND_TYPE_BANDPASS, 1000.0f, 3.0f, -2.0f, 0},   {PEQ_BAND_TYPE_TRADITIONAL, 2500.0f, 1.5f, 9.0f, 0},
    {PEQ_BAND_TYPE_LOWSHELF, 150.0f, 0.8f, 5.0f, 0},     {PEQ_BAND_TYPE_HIGHPASS, 1234.0f, 0.0f, 3.0f, 1},
    {PEQ_BAND_TYPE_LOWPASS, 333.0f, 0.0f, -1.0f, 1},     {PEQ_BAND_TYPE_BANDPASS, 77.0f, 9.0f, 4.0f, 1},
};
constexpr int kMixedCount = sizeof(kMixed) / sizeof(kMixed[0]);

// A misaligned workspace of exactly the documented size.
struct Workspace {
  explicit Workspace(int bytes) : storage(bytes + 1) {}
  void* get() { return storage.data() + 1; }
  std::vector<unsigned char> storage;
};

TEST(PeqDesign, NoBandsWritesOnlyTheGain) {
  const OVAParametriceqSpec request{0, nullptr, 48000};
  float f[2] = {-5.0f, -5.0f};
  EXPECT_EQ(0, OVA_ParametriceqDesignFloat(&request, f));
  EXPECT_EQ(1.0f, f[0]);
  EXPECT_EQ(-5.0f, f[1]);
  int32_t w[3] = {7, 7, 7};
  Workspace ws(QH_PeqNoScaleWorkspaceBytes(0));
  EXPECT_EQ(0, OVA_ParametriceqDesignFxp32NoScale(&request, w, ws.get()));
  EXPECT_EQ(2, w[0]);
  EXPECT_EQ(1073741824, w[1]);
  EXPECT_EQ(7, w[2]);
}

TEST(PeqDesign, NoScaleKeepsUnitGainRecord) {
  const OVAParametriceqSpec request{kMixedCount, kMixed, 48000};
  std::vector<int32_t> out(6 * kMixedCount + 2);
  Workspace ws(QH_PeqNoScaleWorkspaceBytes(kMixedCount));
  ASSERT_EQ(0, OVA_ParametriceqDesignFxp32NoScale(&request, out.data(), ws.get()));
  EXPECT_EQ(2, out[6 * kMixedCount]);
  EXPECT_EQ(1073741824, out[6 * kMixedCount + 1]);
  // A 0 dB gain band is the section (1, 0, 0, 0, 0): iwl 2 and 2^30.
  const OVAParametriceqBandSpec unit{PEQ_BAND_TYPE_GAIN, 100.0f, 0.0f, 0.0f, 0};
  const OVAParametriceqSpec one{1, &unit, 48000};
  int32_t w[8];
  ASSERT_EQ(0, OVA_ParametriceqDesignFxp32NoScale(&one, w, ws.get()));
  const int32_t expected[8] = {2, 1073741824, 0, 0, 0, 0, 2, 1073741824};
  for (int i = 0; i < 8; ++i) EXPECT_EQ(expected[i], w[i]) << i;
}

TEST(PeqDesign, SixteenBitNumeratorRepair) {
  for (int rate : {32000, 44100, 48000}) {
    const OVAParametriceqSpec request{kMixedCount, kMixed, rate};
    std::vector<int16_t> out(6 * kMixedCount + 2);
    Workspace ws(QH_IirDesignWorkspaceBytes(kMixedCount));
    ASSERT_EQ(0, OVA_ParametriceqDesignFxp16(&request, out.data(), ws.get()));
    for (int b = 0; b < kMixedCount; ++b) {
      const int16_t* rec = out.data() + 6 * b;
      const int b0 = rec[1];
      switch (kMixed[b].type) {
        case PEQ_BAND_TYPE_LOWPASS:
          EXPECT_EQ(static_cast<int16_t>(static_cast<uint16_t>(2 * b0)), rec[2]) << b;
          break;
        case PEQ_BAND_TYPE_HIGHPASS:
          EXPECT_EQ(static_cast<int16_t>(static_cast<uint16_t>(-2 * b0)), rec[2]) << b;
          break;
        case PEQ_BAND_TYPE_BANDPASS:
          EXPECT_EQ(0, rec[2]) << b;
          EXPECT_EQ(static_cast<int16_t>(-b0), rec[3]) << b;
          break;
        default:
          break;
      }
    }
  }
}

// The scaled designs, read back, keep the float design's overall response.
template <typename Word, typename Design>
void CheckScaledResponse(Design design, int width, double tolerance) {
  const int n = kMixedCount;
  const OVAParametriceqSpec request{n, kMixed, 48000};
  std::vector<float> reference(5 * n + 1);
  ASSERT_EQ(0, OVA_ParametriceqDesignFloat(&request, reference.data()));
  std::vector<Word> out(6 * n + 2);
  Workspace ws(QH_IirDesignWorkspaceBytes(n));
  ASSERT_EQ(0, design(&request, out.data(), ws.get()));
  std::vector<float> readback(5 * n + 1);
  qh_test::ReadFixedCascade(out.data(), n, width, readback.data());
  for (double f : {50.0, 200.0, 1000.0, 2500.0, 8000.0, 15000.0}) {
    const double w = Angle(f, 48000);
    const double want = std::abs(CascadeResponse(reference.data(), n, w));
    EXPECT_NEAR(want, std::abs(CascadeResponse(readback.data(), n, w)), tolerance * (1.0 + want)) << f;
  }
}

TEST(PeqDesign, ScaledDesignsKeepTheResponse) {
  CheckScaledResponse<int32_t>(OVA_ParametriceqDesignFxp32, 32, 1e-4);
  CheckScaledResponse<int32_t>(OVA_ParametriceqDesignFxp24, 24, 1e-2);
  CheckScaledResponse<int16_t>(OVA_ParametriceqDesignFxp16, 16, 0.3);
}

}  // namespace
