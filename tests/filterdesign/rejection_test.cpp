// Every designer in every format over requests at and beside each rejection
// limit (the result worked out by hand) and over grids of good and bad
// values, in the formats of its catalogue entry and two it may lack: a
// design is rejected (-1000) exactly when the catalogue's contract check
// names a reason, and a rejected design leaves the output exactly as it was
// (the float parametric designer alone keeps the bands before the failing
// one).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

#include "designer_catalogue.h"

namespace {

using qh_design::DesignBuffers;
using qh_design::Family;
using qh_design::Format;

// One request, runnable and checkable in any format.
struct Probe {
  Family family;
  std::function<int(Format, const DesignBuffers&)> run;
  std::function<qh_design::Objection(Format)> contract;
  int float_prefix;  // at most this many floats written before a rejection
};

template <class Request>
Probe Of(Family family, const Request& r, int float_prefix = 0) {
  return {family, [r](Format f, const DesignBuffers& b) { return qh_design::Run(r, f, b); },
          [r](Format f) { return qh_design::CheckContract(r, f); }, float_prefix};
}

Probe Iir(float fc, int fs, int type = QH_IIR_LOWPASS, int order = 4) {
  return Of(Family::kButterworth, qh_design::ButterworthRequest{fc, order, fs, type});
}
Probe Crossover(float fc, int fs) { return Of(Family::kCrossover, qh_design::CrossoverRequest{fc, fs}); }

// A peaking band at 500 Hz (`before` of them), then a notch at `fc`, then one
// more peaking band; the request owns its bands. By default the notch is
// the band expected to fail.
Probe Peq(float fc, int fs, int before = 1, int designed_before_failure = -1) {
  auto bands = std::make_shared<std::vector<OVAParametriceqBandSpec>>();
  for (int i = 0; i < before; ++i) bands->push_back({PEQ_BAND_TYPE_PEAKING, 500.0f, 1.0f, 3.0f, 0});
  bands->push_back({PEQ_BAND_TYPE_NOTCH, fc, 1.0f, 0.0f, 0});
  bands->push_back({PEQ_BAND_TYPE_PEAKING, 800.0f, 1.0f, 3.0f, 0});
  Probe p = Of(Family::kPeq, qh_design::PeqRequest{before + 2, bands->data(), fs},
             5 * (designed_before_failure < 0 ? before : designed_before_failure));
  auto run = p.run;
  auto contract = p.contract;
  p.run = [bands, run](Format f, const DesignBuffers& b) { return run(f, b); };
  p.contract = [bands, contract](Format f) { return contract(f); };
  return p;
}

// The schema defaults with a mid-size speaker, then the changes.
Probe Thumpx(int size, int rate, float bass = 0.3335f, float hp = 0.5f, float ext = 0.8f) {
  qh_design::ThumpxRequest r;
  r.custom_speaker_size = size;
  r.sampling_rate = rate;
  r.bass_ctrl = bass;
  r.hp_ratio = hp;
  r.ext_bass = ext;
  return Of(Family::kThumpx, r);
}

constexpr int kUnknown = 1;  // grid requests: only consistency is checked
constexpr unsigned char kPattern = 0x5A;
constexpr size_t kOutBytes = 1024;  // more than any output here

void Check(const Probe& p, int expected) {
  const auto& entry = qh_design::FindDesigner(p.family)->formats;
  std::vector<Format> formats(entry.begin(), entry.end());
  formats.push_back(Format::kFxp32NoScale);
  formats.push_back(Format::kRecord);
  for (Format format : formats) {
    SCOPED_TRACE(testing::Message() << qh_design::FindDesigner(p.family)->name << " " << qh_design::FormatName(format));
    const bool in_entry = std::find(entry.begin(), entry.end(), format) != entry.end();
    alignas(8) unsigned char out[kOutBytes];
    std::memset(out, kPattern, sizeof out);
    std::vector<unsigned char> workspace(8192);
    const DesignBuffers b{reinterpret_cast<float*>(out), reinterpret_cast<int32_t*>(out),
                          reinterpret_cast<int16_t*>(out), workspace.data()};
    const int result = p.run(format, b);
    const int want = !in_entry ? -1000 : expected;
    if (want != kUnknown) {
      ASSERT_EQ(result, want);
    } else {
      ASSERT_TRUE(result == 0 || result == -1000) << result;
    }
    const qh_design::Objection o = p.contract(format);
    EXPECT_EQ(result == -1000, static_cast<bool>(o)) << o.reason;
    if (result == 0) continue;
    const size_t kept = format == Format::kFloat ? p.float_prefix * sizeof(float) : 0;
    for (size_t i = kept; i < sizeof out; ++i) ASSERT_EQ(out[i], kPattern) << "byte " << i;
    if (kept > 0 && expected == -1000) {
      EXPECT_NE(out[0], kPattern) << "the earlier band is designed";
    }
  }
}

struct Case {
  const char* name;
  Probe probe;
  int expected;
};

// The frequency limit is (float)(rate / 2) with an integer division.
const Case kCases[] = {
    {"iir at half", Iir(24000.0f, 48000), -1000},
    {"iir below half", Iir(23999.998f, 48000), 0},
    {"iir high-pass above", Iir(30000.0f, 48000, QH_IIR_HIGHPASS), -1000},
    {"iir odd rate", Iir(22050.0f, 44101), -1000},
    {"iir below odd half", Iir(22049.998f, 44101), 0},
    {"iir 8001", Iir(4000.0f, 8001), -1000},
    {"iir 192000", Iir(96000.0f, 192000), -1000},
    {"iir below 192000", Iir(95999.99f, 192000), 0},
    {"iir type 2", Iir(1000.0f, 48000, 2), -1000},
    {"iir type -1", Iir(1000.0f, 48000, -1), -1000},
    {"iir type 100", Iir(1000.0f, 48000, 100), -1000},
    {"peq at half", Peq(24000.0f, 48000), -1000},
    {"peq odd rate", Peq(22050.0f, 44101), -1000},
    {"peq above", Peq(40000.0f, 32000), -1000},
    {"peq 8001", Peq(4000.0f, 8001), -1000},
    {"peq below odd half", Peq(22049.998f, 44101), 0},
    {"thumpx size 39", Thumpx(39, 48000), -1000},
    {"thumpx size 40", Thumpx(40, 48000), 0},
    {"thumpx size 600", Thumpx(600, 48000), 0},
    {"thumpx size 601", Thumpx(601, 48000), -1000},
    {"thumpx 44100", Thumpx(150, 44100), 0},
    {"thumpx 32000", Thumpx(150, 32000), 0},
    {"thumpx 96000", Thumpx(150, 96000), -1000},
    {"thumpx 16000", Thumpx(150, 16000), -1000},
    {"thumpx bass 0", Thumpx(150, 48000, 0.0f), 0},
    {"thumpx bass 1", Thumpx(150, 48000, 1.0f), 0},
    {"thumpx bass above 1", Thumpx(150, 48000, 1.0000001f), -1000},
    {"thumpx bass below 0", Thumpx(150, 48000, -1e-7f), -1000},
    {"thumpx bass NaN", Thumpx(150, 48000, NAN), -1000},
    {"thumpx hp 1", Thumpx(150, 48000, 0.3f, 1.0f), 0},
    {"thumpx hp above 1", Thumpx(150, 48000, 0.3f, 1.01f), -1000},
    {"thumpx ext below 0", Thumpx(150, 48000, 0.3f, 0.5f, -0.5f), -1000},
    {"thumpx size and rate", Thumpx(10, 8000, 2.0f), -1000},
    {"crossover at half", Crossover(24000.0f, 48000), -1000},
    {"crossover below half", Crossover(23999.0f, 48000), 0},
    {"crossover odd rate", Crossover(22050.0f, 44101), -1000},
    {"crossover below odd half", Crossover(22049.5f, 44101), 0},
    {"crossover above", Crossover(30000.0f, 32000), -1000},
};

TEST(DesignerRejection, HandWorkedLimits) {
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
    Check(c.probe, c.expected);
  }
}

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

TEST(DesignerRejection, GridsAgreeWithTheContractCheck) {
  const float kFreqs[] = {-1.0f, 0.0f, 1000.0f, 22049.998f, 22050.0f, 23999.998f, 24000.0f, 30000.0f, kNaN, kInf};
  for (float fc : kFreqs) {
    for (int rate : {-48000, 0, 1, 44100, 44101, 48000}) {
      SCOPED_TRACE(testing::Message() << fc << " Hz, " << rate);
      for (int type : {-1, 0, 1, 2}) Check(Iir(fc, rate, type, 3), kUnknown);
      Check(Peq(fc, rate, 1, 2), kUnknown);  // any band may be the failing one
      Check(Peq(fc, rate, 0, 1), kUnknown);
      Check(Crossover(fc, rate), kUnknown);
    }
  }
  const float kFractions[] = {-1e-7f, -0.0f, 0.0f, 0.5f, 1.0f, 1.0000001f, kNaN, kInf};
  for (int size : {-100, 39, 40, 300, 600, 601}) {
    for (int rate : {0, 16000, 32000, 44100, 48000, 96000}) {
      for (float x : kFractions) {
        SCOPED_TRACE(testing::Message() << "size " << size << ", " << rate << " Hz, " << x);
        Check(Thumpx(size, rate, x), kUnknown);
        Check(Thumpx(size, rate, 0.3335f, x), kUnknown);
        Check(Thumpx(size, rate, 0.3335f, 0.5f, x), kUnknown);
      }
    }
  }
}

}  // namespace
