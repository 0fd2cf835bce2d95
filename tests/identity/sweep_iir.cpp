// Sweep of the IIR core: integer word lengths, quantisers and their inverses
// on hand-picked awkward values, and the Butterworth designers over rates,
// cut-offs, orders and types in every width.
#include <cmath>
#include <cstring>
#include <limits>

#include "quillheron_filterdesign.h"
#include "sweep_cases.h"

namespace qh_identity {
namespace {

constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

// Values around every rounding and saturation edge of the quantisers.
const float kAwkward[] = {
    0.0f,  -0.0f,      1.0f,        -1.0f,       0.5f,     -0.5f,      0.49f,  0.9f,
    0.9999999f, -0.9999999f, 2.0f, -2.0f, 1.9999999f, 3.0f, 1e-3f, -1e-3f, 1e-20f,
    1e-40f, -1e-40f,  123.456f,   -8388607.5f, 65535.5f, 1e10f, -1e10f, 3.4e38f, kInf,
    -kInf, kNan,    0.70710677f, 1.4142135f,  -1.9999f, 0.25f,  0.125f, 1.0f / 3.0f};
constexpr int kAwkwardCount = sizeof kAwkward / sizeof kAwkward[0];

// A deterministic stream of float bit patterns (finite, moderate magnitudes).
class Lcg {
 public:
  float Next() {
    state_ = state_ * 1664525u + 1013904223u;
    const uint32_t bits = (state_ & 0x807FFFFFu) | ((100u + (state_ >> 24) % 50u) << 23);
    float f;
    std::memcpy(&f, &bits, sizeof f);
    return f;
  }

 private:
  uint32_t state_ = 12345u;
};

void SweepIwl(SweepSink& sink) {
  sink.Begin("MinimalIwl awkward values");
  for (float x : kAwkward) sink.I32(MinimalIwl(x));
  sink.Begin("MinimalIwl powers of two and neighbours");
  for (int e = -40; e <= 40; ++e) {
    const float p = std::ldexp(1.0f, e);
    for (float x : {p, -p, std::nextafter(p, 0.0f), std::nextafter(p, kInf)}) {
      sink.I32(MinimalIwl(x));
    }
  }
  sink.Begin("MinimalIwl pseudo-random");
  Lcg lcg;
  for (int i = 0; i < 4000; ++i) sink.I32(MinimalIwl(lcg.Next()));
  sink.Begin("MaxAbs prefixes of the awkward values");
  for (int n = 0; n <= kAwkwardCount; ++n) sink.F32(MaxAbs(kAwkward, n));
}

// Quantises `cascade` into the scratch words `q`, appends the words, then
// converts a copy of them back and appends the floats.
template <class Word, class Quantise, class Inverse>
void QuantiseAndBack(SweepSink& sink, const float* cascade, int order, Word* q, Quantise quantise,
                     Inverse inverse) {
  const int words = QH_IirFixedLength(order);
  quantise(cascade, order, q);
  if constexpr (sizeof(Word) == 2) {
    sink.I16s(q, words);
  } else {
    sink.I32s(q, words);
  }
  Word fixed[26];
  std::memcpy(fixed, q, sizeof fixed);
  float* back = SharedScratch().FloatOut();
  inverse(fixed, order, back);
  sink.F32s(back, QH_IirFloatLength(order));
}

// Cascades of order 1..6 filled from the awkward values, then quantised in
// all three widths and converted back.
void SweepQuantizers(SweepSink& sink) {
  Scratch& s = SharedScratch();
  float cascade[5 * 4 + 1];
  for (int start = 0; start < kAwkwardCount; ++start) {
    for (int i = 0; i < 21; ++i) cascade[i] = kAwkward[(start + 7 * i) % kAwkwardCount];
    for (int order = 1; order <= 7; order += 2) {
      sink.Begin(Fmt("quantise fxp32 start=%g order=%g", start, order));
      QuantiseAndBack(sink, cascade, order, s.I32Out(), OVA_QuantizeIIR_Fxp32, OVA_Fxp32IIRToFloat);
      sink.Begin(Fmt("quantise fxp24 start=%g order=%g", start, order));
      QuantiseAndBack(sink, cascade, order, s.I32Out(), OVA_QuantizeIIR_Fxp24, OVA_Fxp24IIRToFloat);
      sink.Begin(Fmt("quantise fxp16 start=%g order=%g", start, order));
      QuantiseAndBack(sink, cascade, order, s.I16Out(), OVA_QuantizeIIR_Fxp16, OVA_Fxp16IIRToFloat);
    }
  }
}

// Fixed-point records with every iwl from -2 to 40 (0 and 1 give the
// infinite, not-a-number and sign-reversed results of the inverse).
void SweepInverses(SweepSink& sink) {
  Scratch& s = SharedScratch();
  const int32_t kWords[] = {0, 1, -1, 1073741824, -1073741824, 2147483647, -2147483647 - 1,
                            8388607, -8388608, 0x00FFFFFF, 0x00800000, 12345, -32768, 32767};
  constexpr int kWordCount = sizeof kWords / sizeof kWords[0];
  for (int iwl = -2; iwl <= 40; ++iwl) {
    int32_t fixed32[14];
    int16_t fixed16[14];
    for (int i = 0; i < 14; ++i) {
      fixed32[i] = kWords[(i + iwl + 2) % kWordCount];
      fixed16[i] = static_cast<int16_t>(fixed32[i]);
    }
    fixed32[0] = fixed32[6] = fixed32[12] = iwl;
    fixed16[0] = fixed16[6] = fixed16[12] = static_cast<int16_t>(iwl);
    sink.Begin(Fmt("inverse fxp32/24/16 iwl=%g", iwl));
    float* out = s.FloatOut();
    OVA_Fxp32IIRToFloat(fixed32, 4, out);
    sink.F32s(out, 11);
    out = s.FloatOut();
    OVA_Fxp24IIRToFloat(fixed32, 4, out);
    sink.F32s(out, 11);
    out = s.FloatOut();
    OVA_Fxp16IIRToFloat(fixed16, 4, out);
    sink.F32s(out, 11);
  }
}

const int kRates[] = {8000, 11025, 12347, 32000, 44100, 44101, 48000, 96000};
const float kCutoffs[] = {20.0f,   63.5f,   200.0f,  1000.0f, 3150.0f,
                          10000.0f, 15999.9f, 20000.0f, 22050.0f, 24000.0f};

void SweepButterworthOne(SweepSink& sink, int rate, float fc, int order, int type) {
  using qh_design::Format;
  Scratch& s = SharedScratch();
  const int floats = QH_IirFloatLength(order);
  const std::string what = Fmt("fs=%g fc=%g order=%g type=%g", rate, fc, order, type);
  const qh_design::ButterworthRequest request{fc, order, rate, type};

  sink.Begin("butterworth float " + what);
  const int designed = SweepDesign(sink, request, Format::kFloat).result;
  float design[5 * 4 + 1];
  std::memcpy(design, s.out, sizeof design);

  sink.Begin("butterworth fxp32 " + what);
  int32_t fixed[26];
  std::memcpy(fixed, SweepDesign(sink, request, Format::kFxp32).out.words32, sizeof fixed);
  float* f = s.FloatOut();
  OVA_Fxp32IIRToFloat(fixed, order, f);
  sink.F32s(f, floats);

  sink.Begin("butterworth fxp24 " + what);
  SweepDesign(sink, request, Format::kFxp24);
  sink.Begin("butterworth fxp16 " + what);
  SweepDesign(sink, request, Format::kFxp16);

  // The float design scaled by itself (the exported scaling entry).
  if (designed != 0) return;
  sink.Begin("butterworth scaled " + what);
  std::memcpy(f = s.FloatOut(), design, sizeof design);
  OVA_ScaleCascadedTransposedDirectForm2IIR(f, order, s.Work());
  sink.F32s(f, floats);
}

}  // namespace

Scratch& SharedScratch() {
  static Scratch scratch;
  return scratch;
}

void SweepIirCore(SweepSink& sink) {
  SweepIwl(sink);
  SweepQuantizers(sink);
  SweepInverses(sink);
}

void SweepButterworth(SweepSink& sink) {
  for (int rate : kRates) {
    for (float fc : kCutoffs) {
      // Cut-offs closer to the half rate put a pole so near the unit circle
      // that the scaling pass runs for minutes; they add nothing here.
      if (fc > 0.45f * static_cast<float>(rate)) continue;
      for (int order = 1; order <= 8; ++order) {
        for (int type = 0; type <= 1; ++type) SweepButterworthOne(sink, rate, fc, order, type);
      }
    }
    // Rejected designs: the cut-off at the integer half rate, an unknown type.
    SweepButterworthOne(sink, rate, static_cast<float>(rate / 2), 3, 0);
    SweepButterworthOne(sink, rate, static_cast<float>(rate / 2) + 0.5f, 3, 1);
    SweepButterworthOne(sink, rate, 1000.0f, 4, 2);
  }

  // Joining cascades: every pair of orders, low-pass then high-pass.
  Scratch& s = SharedScratch();
  for (int a = 1; a <= 4; ++a) {
    for (int b = 1; b <= 4; ++b) {
      float lo[5 * 2 + 1], hi[5 * 2 + 1];
      OVA_IirFilterDesignFloat(300.0f, a, 44100, 0, lo);
      OVA_IirFilterDesignFloat(3000.0f, b, 44100, 1, hi);
      lo[5 * ((a + 1) / 2)] = 0.75f;  // non-unit gains multiply
      hi[5 * ((b + 1) / 2)] = -1.5f;
      sink.Begin(Fmt("concatenate orders %g and %g", a, b));
      float* out = s.FloatOut();
      int out_order = -1;
      OVA_ConcatenateIIRs(lo, a, hi, b, out, &out_order);
      sink.I32(out_order);
      sink.F32s(out, QH_IirFloatLength(out_order));
    }
  }
}

}  // namespace qh_identity
