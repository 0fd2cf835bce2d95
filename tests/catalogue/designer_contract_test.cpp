// The designer catalogue against the library: its contract check must name a
// reason exactly when the designer returns -1000, over a grid of good and bad
// requests in every format (and one the family lacks); and its did-not-mean
// check must object to exactly the band fields each band type uses.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "designer_catalogue.h"

namespace {

using qh_design::Family;
using qh_design::Format;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

// Every format of the family, then two it may lack.
std::vector<Format> FormatsToTry(Family family) {
  std::vector<Format> formats(qh_design::FindDesigner(family)->formats.begin(),
                              qh_design::FindDesigner(family)->formats.end());
  formats.push_back(Format::kFxp32NoScale);
  formats.push_back(Format::kRecord);
  return formats;
}

template <class Request>
void ExpectPredicted(const Request& request, Family family) {
  for (Format format : FormatsToTry(family)) {
    std::vector<float> floats(512);
    std::vector<int32_t> words32(512);
    std::vector<int16_t> words16(512);
    std::vector<unsigned char> workspace(8192);
    qh_design::DesignBuffers b{floats.data(), words32.data(), words16.data(), workspace.data()};
    const int result = qh_design::Run(request, format, b);
    const qh_design::Objection o = qh_design::CheckContract(request, format);
    EXPECT_EQ(result == -1000, static_cast<bool>(o)) << qh_design::FormatName(format) << ": " << o.reason;
    EXPECT_TRUE(result == 0 || result == -1000) << result;
  }
}

const float kFreqs[] = {-1.0f, 0.0f, 1000.0f, 22049.998f, 22050.0f, 23999.998f, 24000.0f, 30000.0f, kNaN, kInf};
const int kRates[] = {-48000, 0, 1, 44100, 44101, 48000};

TEST(DesignerContract, Butterworth) {
  for (float fc : kFreqs) {
    for (int rate : kRates) {
      for (int type : {-1, 0, 1, 2}) {
        SCOPED_TRACE(testing::Message() << fc << " Hz, " << rate << ", type " << type);
        ExpectPredicted(qh_design::ButterworthRequest{fc, 3, rate, type}, Family::kButterworth);
      }
    }
  }
}

TEST(DesignerContract, ParametricEq) {
  for (float fc : kFreqs) {
    for (int rate : kRates) {
      SCOPED_TRACE(testing::Message() << fc << " Hz, " << rate);
      const OVAParametriceqBandSpec bands[2] = {{PEQ_BAND_TYPE_PEAKING, 300.0f, 1.0f, 3.0f, 0},
                                                {PEQ_BAND_TYPE_NOTCH, fc, 2.0f, 0.0f, 0}};
      ExpectPredicted(qh_design::PeqRequest{2, bands, rate}, Family::kPeq);
      ExpectPredicted(qh_design::PeqRequest{1, bands + 1, rate}, Family::kPeq);
    }
  }
}

TEST(DesignerContract, Crossover) {
  for (float fc : kFreqs) {
    for (int rate : kRates) {
      SCOPED_TRACE(testing::Message() << fc << " Hz, " << rate);
      ExpectPredicted(qh_design::CrossoverRequest{fc, rate}, Family::kCrossover);
    }
  }
}

TEST(DesignerContract, Thumpx) {
  const float kFractions[] = {-1e-7f, -0.0f, 0.0f, 0.5f, 1.0f, 1.0000001f, kNaN, kInf};
  for (int size : {-100, 39, 40, 300, 600, 601}) {
    for (int rate : {0, 16000, 32000, 44100, 48000, 96000}) {
      for (float x : kFractions) {
        SCOPED_TRACE(testing::Message() << "size " << size << ", " << rate << " Hz, " << x);
        qh_design::ThumpxRequest r;
        r.custom_speaker_size = size;
        r.sampling_rate = rate;
        qh_design::ThumpxRequest each[3] = {r, r, r};
        each[0].bass_ctrl = x;
        each[1].hp_ratio = x;
        each[2].ext_bass = x;
        for (const auto& request : each) ExpectPredicted(request, Family::kThumpx);
      }
    }
  }
}

// Which band fields each type uses: all but gain use the frequency; the
// traditional, shelf (slope), band-pass, all-pass, notch and peaking types
// use Q; every type uses the gain (the low- and high-pass as resonance).
TEST(DesignerIntent, BandFieldsByType) {
  struct Row {
    int type;
    bool uses_freq, uses_q;
  } const kRows[] = {{0, true, true},  {1, true, true},  {2, true, true}, {3, true, false}, {4, true, false},
                     {5, true, true},  {6, true, true},  {7, true, true}, {8, true, true},  {9, false, false}};
  for (const Row& row : kRows) {
    for (float bad : {0.0f, -1.0f, kNaN, kInf}) {
      SCOPED_TRACE(testing::Message() << "type " << row.type << ", value " << bad);
      const OVAParametriceqBandSpec good = {row.type, 1000.0f, 1.0f, 3.0f, 0};
      OVAParametriceqBandSpec band[3] = {good, good, good};
      band[0].center_freq = bad;
      band[1].q = bad;
      band[2].gain = bad;
      const bool objects[3] = {row.uses_freq, row.uses_q, !std::isfinite(bad)};
      for (int field = 0; field < 3; ++field) {
        const OVAParametriceqBandSpec pair[2] = {good, band[field]};
        const qh_design::Objection o = qh_design::CheckIntent(qh_design::PeqRequest{2, pair, 48000});
        EXPECT_EQ(static_cast<bool>(o), objects[field]) << "field " << field << ": " << o.reason;
        if (o) {
          EXPECT_EQ(o.band, 1);
          EXPECT_EQ(o.reason.rfind("band 1 (", 0), 0u) << o.reason;
        }
      }
    }
  }
}

}  // namespace
