// Every designer in every format of its catalogue entry over one table of
// requests at and beside each rejection limit: the result code, and for a
// rejected design an output buffer left exactly as it was (the float
// parametric designer alone keeps the bands before the failing one).
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <memory>
#include <vector>

#include "designer_catalogue.h"

namespace {

using qh_design::DesignBuffers;
using qh_design::Family;
using qh_design::Format;

using Runner = std::function<int(Format, const DesignBuffers&)>;

template <class Request>
Runner Of(const Request& r) {
  return [r](Format f, const DesignBuffers& b) { return qh_design::Run(r, f, b); };
}

Runner Iir(float fc, int fs, int type = QH_IIR_LOWPASS) { return Of(qh_design::ButterworthRequest{fc, 4, fs, type}); }
Runner Crossover(float fc, int fs) { return Of(qh_design::CrossoverRequest{fc, fs}); }

// Three bands, the middle one at `fc`; the request owns its bands.
Runner Peq(float fc, int fs) {
  auto bands = std::make_shared<std::vector<OVAParametriceqBandSpec>>(std::vector<OVAParametriceqBandSpec>{
      {PEQ_BAND_TYPE_PEAKING, 500.0f, 1.0f, 3.0f, 0},
      {PEQ_BAND_TYPE_NOTCH, fc, 1.0f, 0.0f, 0},
      {PEQ_BAND_TYPE_PEAKING, 800.0f, 1.0f, 3.0f, 0}});
  return [bands, fs](Format f, const DesignBuffers& b) {
    return qh_design::Run(qh_design::PeqRequest{3, bands->data(), fs}, f, b);
  };
}

// The schema defaults with a mid-size speaker, then the changes.
Runner Thumpx(int size, int rate, float bass = 0.3335f, float hp = 0.5f, float ext = 0.8f) {
  qh_design::ThumpxRequest r;
  r.custom_speaker_size = size;
  r.sampling_rate = rate;
  r.bass_ctrl = bass;
  r.hp_ratio = hp;
  r.ext_bass = ext;
  return Of(r);
}

struct Case {
  const char* name;
  Family family;
  Runner run;
  int expected;
  int float_prefix;  // floats the float designer writes before rejecting
};

// The frequency limit is (float)(rate / 2) with an integer division.
const Case kCases[] = {
    {"iir at half", Family::kButterworth, Iir(24000.0f, 48000), -1000, 0},
    {"iir below half", Family::kButterworth, Iir(23999.998f, 48000), 0, 0},
    {"iir high-pass above", Family::kButterworth, Iir(30000.0f, 48000, QH_IIR_HIGHPASS), -1000, 0},
    {"iir odd rate", Family::kButterworth, Iir(22050.0f, 44101), -1000, 0},
    {"iir below odd half", Family::kButterworth, Iir(22049.998f, 44101), 0, 0},
    {"iir 8001", Family::kButterworth, Iir(4000.0f, 8001), -1000, 0},
    {"iir 192000", Family::kButterworth, Iir(96000.0f, 192000), -1000, 0},
    {"iir below 192000", Family::kButterworth, Iir(95999.99f, 192000), 0, 0},
    {"iir type 2", Family::kButterworth, Iir(1000.0f, 48000, 2), -1000, 0},
    {"iir type -1", Family::kButterworth, Iir(1000.0f, 48000, -1), -1000, 0},
    {"iir type 100", Family::kButterworth, Iir(1000.0f, 48000, 100), -1000, 0},
    {"peq at half", Family::kPeq, Peq(24000.0f, 48000), -1000, 5},
    {"peq odd rate", Family::kPeq, Peq(22050.0f, 44101), -1000, 5},
    {"peq above", Family::kPeq, Peq(40000.0f, 32000), -1000, 5},
    {"peq 8001", Family::kPeq, Peq(4000.0f, 8001), -1000, 5},
    {"peq below odd half", Family::kPeq, Peq(22049.998f, 44101), 0, 0},
    {"thumpx size 39", Family::kThumpx, Thumpx(39, 48000), -1000, 0},
    {"thumpx size 40", Family::kThumpx, Thumpx(40, 48000), 0, 0},
    {"thumpx size 600", Family::kThumpx, Thumpx(600, 48000), 0, 0},
    {"thumpx size 601", Family::kThumpx, Thumpx(601, 48000), -1000, 0},
    {"thumpx 44100", Family::kThumpx, Thumpx(150, 44100), 0, 0},
    {"thumpx 32000", Family::kThumpx, Thumpx(150, 32000), 0, 0},
    {"thumpx 96000", Family::kThumpx, Thumpx(150, 96000), -1000, 0},
    {"thumpx 16000", Family::kThumpx, Thumpx(150, 16000), -1000, 0},
    {"thumpx bass 0", Family::kThumpx, Thumpx(150, 48000, 0.0f), 0, 0},
    {"thumpx bass 1", Family::kThumpx, Thumpx(150, 48000, 1.0f), 0, 0},
    {"thumpx bass above 1", Family::kThumpx, Thumpx(150, 48000, 1.0000001f), -1000, 0},
    {"thumpx bass below 0", Family::kThumpx, Thumpx(150, 48000, -1e-7f), -1000, 0},
    {"thumpx bass NaN", Family::kThumpx, Thumpx(150, 48000, NAN), -1000, 0},
    {"thumpx hp 1", Family::kThumpx, Thumpx(150, 48000, 0.3f, 1.0f), 0, 0},
    {"thumpx hp above 1", Family::kThumpx, Thumpx(150, 48000, 0.3f, 1.01f), -1000, 0},
    {"thumpx ext below 0", Family::kThumpx, Thumpx(150, 48000, 0.3f, 0.5f, -0.5f), -1000, 0},
    {"thumpx size and rate", Family::kThumpx, Thumpx(10, 8000, 2.0f), -1000, 0},
    {"crossover at half", Family::kCrossover, Crossover(24000.0f, 48000), -1000, 0},
    {"crossover below half", Family::kCrossover, Crossover(23999.0f, 48000), 0, 0},
    {"crossover odd rate", Family::kCrossover, Crossover(22050.0f, 44101), -1000, 0},
    {"crossover below odd half", Family::kCrossover, Crossover(22049.5f, 44101), 0, 0},
    {"crossover above", Family::kCrossover, Crossover(30000.0f, 32000), -1000, 0},
};

constexpr unsigned char kPattern = 0x5A;
constexpr size_t kOutBytes = 1024;  // more than any output here

TEST(DesignerRejection, ResultAndNothingWrittenInEveryFormat) {
  for (const Case& c : kCases) {
    for (Format format : qh_design::FindDesigner(c.family)->formats) {
      SCOPED_TRACE(testing::Message() << c.name << ", " << qh_design::FormatName(format));
      alignas(8) unsigned char out[kOutBytes];
      std::memset(out, kPattern, sizeof out);
      std::vector<unsigned char> workspace(8192);
      DesignBuffers b;
      b.floats = reinterpret_cast<float*>(out);
      b.words32 = reinterpret_cast<int32_t*>(out);
      b.words16 = reinterpret_cast<int16_t*>(out);
      b.workspace = workspace.data();
      ASSERT_EQ(c.run(format, b), c.expected);
      if (c.expected == 0) continue;
      const size_t kept = format == Format::kFloat ? c.float_prefix * sizeof(float) : 0;
      for (size_t i = kept; i < sizeof out; ++i) ASSERT_EQ(out[i], kPattern) << "byte " << i;
      if (kept > 0) {
        EXPECT_NE(out[0], kPattern) << "the earlier band is designed";
      }
    }
  }
}

// A format that is not in the family's entry is refused the same way.
TEST(DesignerRejection, FormatOutsideTheEntry) {
  alignas(8) unsigned char out[64];
  std::memset(out, kPattern, sizeof out);
  DesignBuffers b;
  b.words32 = reinterpret_cast<int32_t*>(out);
  EXPECT_EQ(Crossover(300.0f, 48000)(Format::kFxp24, b), -1000);
  EXPECT_EQ(Iir(300.0f, 48000)(Format::kFxp32NoScale, b), -1000);
  for (unsigned char byte : out) EXPECT_EQ(byte, kPattern);
}

}  // namespace
