// Fixed-point Butterworth designers: response of the dequantised result,
// 16-bit numerator symmetry, and what a rejected design leaves alone.
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
