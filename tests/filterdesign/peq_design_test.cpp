// Parametric-EQ designers: every band type against its analogue prototype,
// evaluated at the bilinear-warped frequency Omega = tan(w/2) / tan(w0/2), a
// few sections checked coefficient by coefficient; the gain record, the
// 16-bit numerator repair and the scaled designs' response. Rejected
// requests: rejection_test.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <vector>

#include "iir_test_response.h"
#include "quillheron_filterdesign.h"

namespace {

using cplx = std::complex<double>;
using qh_test::Angle;
using qh_test::kPi;
using qh_test::SectionResponse;
using qh_test::CascadeResponse;

constexpr int kRate = 48000;

// Designs one band through the float designer and returns its section.
void DesignOne(const OVAParametriceqBandSpec& band, float section[6], int rate = kRate) {
  const OVAParametriceqSpec request{1, &band, rate};
  ASSERT_EQ(0, OVA_ParametriceqDesignFloat(&request, section));
  ASSERT_EQ(1.0f, section[5]);
}

// Analogue prototypes, s = j*Omega normalised to the band's centre.
cplx Prototype(const OVAParametriceqBandSpec& b, double w0, double Omega) {
  const cplx s(0.0, Omega);
  const double L = std::pow(10.0, b.gain / 20.0);
  const double q = b.q;
  switch (b.type) {
    case PEQ_BAND_TYPE_TRADITIONAL: {
      // Peak of normalised bandwidth B = 2 tan(w0 / 3q) / sin(w0); a cut is
      // the exact inverse of the boost of the same size.
      const double B = 2.0 * std::tan(w0 / (3.0 * q)) / std::sin(w0);
      const double G = L >= 1.0 ? L : 1.0 / L;
      const cplx boost = (s * s + G * B * s + 1.0) / (s * s + B * s + 1.0);
      return L >= 1.0 ? boost : 1.0 / boost;
    }
    case PEQ_BAND_TYPE_LOWSHELF:
    case PEQ_BAND_TYPE_HIGHSHELF: {
      const double A = std::sqrt(L);
      const double invQ = std::sqrt((A + 1.0 / A) * (1.0 / q - 1.0) + 2.0);  // slope S = q
      const double k = std::sqrt(A) * invQ;
      if (b.type == PEQ_BAND_TYPE_LOWSHELF) return A * (s * s + k * s + A) / (A * s * s + k * s + 1.0);
      return A * (A * s * s + k * s + 1.0) / (s * s + k * s + A);
    }
    case PEQ_BAND_TYPE_LOWPASS:
      return 1.0 / (s * s + s / L + 1.0);  // resonance Q = L
    case PEQ_BAND_TYPE_HIGHPASS:
      return s * s / (s * s + s / L + 1.0);
    case PEQ_BAND_TYPE_BANDPASS:
      return L * (s / q) / (s * s + s / q + 1.0);
    case PEQ_BAND_TYPE_ALLPASS:
      return L * (s * s - s / q + 1.0) / (s * s + s / q + 1.0);
    case PEQ_BAND_TYPE_NOTCH:
      return (s * s + 1.0) / (s * s + s / q + 1.0);
    case PEQ_BAND_TYPE_PEAKING: {
      const double A = std::sqrt(L);
      return (s * s + s * (A / q) + 1.0) / (s * s + s / (A * q) + 1.0);
    }
    case PEQ_BAND_TYPE_GAIN:
      return L;
    default:
      return 0.0;
  }
}

struct BandCase {
  OVAParametriceqBandSpec band;
};

constexpr BandCase kBands[] = {
    {{PEQ_BAND_TYPE_TRADITIONAL, 1000.0f, 1.0f, 6.0f, 0}},
    {{PEQ_BAND_TYPE_TRADITIONAL, 250.0f, 4.0f, -9.0f, 0}},
    {{PEQ_BAND_TYPE_TRADITIONAL, 8000.0f, 0.5f, 12.0f, 0}},
    {{PEQ_BAND_TYPE_TRADITIONAL, 900.0f, 1.3f, 0.0f, 0}},  // 0 dB passes unchanged
    {{PEQ_BAND_TYPE_LOWSHELF, 200.0f, 1.0f, 6.0f, 0}},
    {{PEQ_BAND_TYPE_LOWSHELF, 500.0f, 0.5f, -10.0f, 0}},
    {{PEQ_BAND_TYPE_HIGHSHELF, 4000.0f, 1.0f, 8.0f, 0}},
    {{PEQ_BAND_TYPE_HIGHSHELF, 6000.0f, 0.7f, -4.0f, 0}},
    // Low- and high-pass take their resonance from the gain field; q is unused.
    {{PEQ_BAND_TYPE_LOWPASS, 2000.0f, 0.0f, -3.0103f, 0}},
    {{PEQ_BAND_TYPE_LOWPASS, 500.0f, 5.0f, 6.0f, 0}},
    {{PEQ_BAND_TYPE_HIGHPASS, 100.0f, 0.0f, 0.0f, 0}},
    {{PEQ_BAND_TYPE_HIGHPASS, 3000.0f, 0.7071f, -6.0f, 0}},
    {{PEQ_BAND_TYPE_BANDPASS, 1000.0f, 2.0f, 0.0f, 0}},
    {{PEQ_BAND_TYPE_BANDPASS, 300.0f, 20.0f, 6.0f, 0}},
    {{PEQ_BAND_TYPE_ALLPASS, 700.0f, 1.5f, 0.0f, 0}},
    {{PEQ_BAND_TYPE_ALLPASS, 5000.0f, 0.7f, -6.0f, 0}},
    {{PEQ_BAND_TYPE_NOTCH, 600.0f, 5.0f, 0.0f, 0}},
    {{PEQ_BAND_TYPE_NOTCH, 3000.0f, 2.0f, 0.0f, 0}},
    {{PEQ_BAND_TYPE_PEAKING, 1000.0f, 1.0f, 6.0f, 0}},
    {{PEQ_BAND_TYPE_PEAKING, 12000.0f, 3.0f, -12.0f, 0}},
    {{PEQ_BAND_TYPE_GAIN, 100.0f, 1.0f, -20.0f, 0}},
};

TEST(PeqBand, EveryTypeMatchesItsPrototype) {
  const double kRatios[] = {0.1, 0.5, 0.9, 1.0, 1.1, 2.0, 5.0};
  for (const BandCase& c : kBands) {
    float section[6];
    DesignOne(c.band, section);
    const double w0 = Angle(c.band.center_freq, kRate);
    for (double r : kRatios) {
      const double f = r * c.band.center_freq;
      if (f >= kRate / 2.0) continue;
      const double w = Angle(f, kRate);
      const cplx want = Prototype(c.band, w0, std::tan(w / 2.0) / std::tan(w0 / 2.0));
      const cplx got = SectionResponse(section, w);
      EXPECT_NEAR(0.0, std::abs(got - want), 1e-3 * (1.0 + std::abs(want)))
          << "type " << c.band.type << " fc " << c.band.center_freq << " at " << f << " Hz";
    }
  }
}

TEST(PeqBand, InvertNegatesTheResponse) {
  for (const BandCase& c : kBands) {
    OVAParametriceqBandSpec inverted = c.band;
    inverted.invert = 7;
    float plain[6], flipped[6];
    DesignOne(c.band, plain);
    DesignOne(inverted, flipped);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(-plain[i], flipped[i]) << c.band.type;
    for (int i = 3; i < 5; ++i) EXPECT_EQ(plain[i], flipped[i]) << c.band.type;
  }
}

TEST(PeqBand, ExactOpposites) {
  float s[6];
  DesignOne({PEQ_BAND_TYPE_BANDPASS, 400.0f, 5.0f, 3.0f, 0}, s);
  EXPECT_EQ(0.0f, s[1]);
  EXPECT_EQ(-s[0], s[2]);
  DesignOne({PEQ_BAND_TYPE_NOTCH, 400.0f, 5.0f, 0.0f, 0}, s);
  EXPECT_EQ(-s[3], s[1]);
  EXPECT_EQ(s[0], s[2]);
  DesignOne({PEQ_BAND_TYPE_PEAKING, 400.0f, 5.0f, 3.0f, 0}, s);
  EXPECT_EQ(-s[3], s[1]);
  DesignOne({PEQ_BAND_TYPE_LOWPASS, 400.0f, 0.0f, 0.0f, 0}, s);
  EXPECT_EQ(s[0], s[2]);
  DesignOne({PEQ_BAND_TYPE_ALLPASS, 400.0f, 5.0f, 6.0f, 0}, s);
  EXPECT_EQ(static_cast<float>(std::pow(10.0, 0.3)), s[2]);  // L itself
}

TEST(PeqBand, SteepShelfClampsTheSlopeTerm) {
  // S = 10 makes (1/S - 1)(P + 1) + 2A negative: the term is held at 0.0081.
  float s[6];
  DesignOne({PEQ_BAND_TYPE_LOWSHELF, 300.0f, 10.0f, 12.0f, 0}, s);
  for (int i = 0; i < 5; ++i) EXPECT_TRUE(std::isfinite(s[i])) << i;
  const double A = std::pow(10.0, 12.0 / 40.0);
  const double w0 = Angle(300.0f, kRate), c = std::cos(w0);
  const double beta = std::sin(w0) * 0.09;
  const double a0 = (A + 1.0) + (A - 1.0) * c + beta;
  EXPECT_NEAR(A * ((A + 1.0) - (A - 1.0) * c + beta) / a0, s[0], 1e-6);
  EXPECT_NEAR(-((A + 1.0) + (A - 1.0) * c - beta) / a0, s[4], 1e-6);
}

TEST(PeqBand, UnknownTypeWritesNothingButInvertStillApplies) {
  for (int type : {-1, 10, 1000}) {
    float s[6] = {1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f};
    const OVAParametriceqBandSpec band{type, 1000.0f, 1.0f, 3.0f, 0};
    const OVAParametriceqSpec request{1, &band, kRate};
    ASSERT_EQ(0, OVA_ParametriceqDesignFloat(&request, s));
    const float same[6] = {1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 1.0f};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(same[i], s[i]) << type;
    const OVAParametriceqBandSpec inverted{type, 1000.0f, 1.0f, 3.0f, 1};
    const OVAParametriceqSpec request2{1, &inverted, kRate};
    ASSERT_EQ(0, OVA_ParametriceqDesignFloat(&request2, s));
    const float negated[6] = {-1.0f, -2.0f, -3.0f, 4.0f, 5.0f, 1.0f};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(negated[i], s[i]) << type;
  }
}

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
