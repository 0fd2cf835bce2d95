// Sweep of the parametric-EQ designers: every band type (and two unknown
// ones) over frequencies, q values, gains and polarities, single bands and
// mixed chains, in float, unscaled 32-bit and scaled 32/24/16-bit form.
#include "quillheron_filterdesign.h"
#include "sweep_cases.h"

namespace qh_identity {
namespace {

constexpr int kMaxBands = 8;

void DesignAll(SweepSink& sink, const std::string& label, const OVAParametriceqBandSpec* bands,
               int count, int rate) {
  using qh_design::Format;
  const qh_design::PeqRequest request = {count, bands, rate};
  sink.Begin("peq float " + label);
  SweepDesign(sink, request, Format::kFloat);
  sink.Begin("peq fxp32 noscale " + label);
  SweepDesign(sink, request, Format::kFxp32NoScale);
  if (count <= 0) return;  // the scaled designers leave band_count 0 open
  const struct {
    const char* name;
    Format format;
  } kScaled[] = {{"fxp32", Format::kFxp32}, {"fxp24", Format::kFxp24}, {"fxp16", Format::kFxp16}};
  for (const auto& scaled : kScaled) {
    sink.Begin(std::string("peq ") + scaled.name + " " + label);
    SweepDesign(sink, request, scaled.format);
  }
}

const int kRates[] = {32000, 44100, 48000, 12347};
const int kTypes[] = {-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
const float kFreqs[] = {31.5f, 1000.0f, 9000.0f};
const float kQs[] = {0.5f, 0.70710677f, 4.0f};
const float kGains[] = {-24.0f, -3.0103f, 0.0f, 6.0f, 15.5f};

}  // namespace

void SweepParametricEq(SweepSink& sink) {
  for (int rate : kRates) {
    for (int type : kTypes) {
      for (float fc : kFreqs) {
        for (float q : kQs) {
          for (float gain : kGains) {
            const OVAParametriceqBandSpec band = {type, fc, q, gain, 0};
            DesignAll(sink, Fmt("fs=%g type=%g fc=%g q=%g gain=%g", rate, type, fc, q, gain),
                      &band, 1, rate);
          }
        }
      }
      // Polarity, a high band (0.45 of the rate), the band at the half rate
      // (rejected), steep shelves (slope clamp), q 0 and negative q.
      const float near_half = 0.45f * static_cast<float>(rate);
      const OVAParametriceqBandSpec extra[] = {
          {type, 1000.0f, 0.70710677f, 6.0f, 1},   {type, 440.0f, 2.0f, -9.0f, -7},
          {type, near_half, 1.0f, 3.0f, 0},        {type, static_cast<float>(rate / 2), 1.0f, 3.0f, 0},
          {type, 150.0f, 8.0f, 12.0f, 0},          {type, 150.0f, 8.0f, -12.0f, 1},
          {type, 2000.0f, 0.0f, 6.0f, 0},          {type, 2000.0f, -1.0f, -6.0f, 0},
          {type, 5000.0f, 20.0f, 24.0f, 0},
      };
      int i = 0;
      for (const OVAParametriceqBandSpec& band : extra) {
        const std::string label = Fmt("fs=%g type=%g extra=%g", rate, type, i++);
        DesignAll(sink, label, &band, 1, rate);
        // The float design through the exported scaling pass, not-a-number
        // and infinite coefficients included.
        Scratch& s = SharedScratch();
        const qh_design::PeqRequest request = {1, &band, rate};
        qh_design::DesignBuffers out;
        float* f = out.floats = s.FloatOut();
        if (qh_design::Run(request, qh_design::Format::kFloat, out) != 0) continue;
        sink.Begin("peq scaled " + label);
        OVA_ScaleCascadedTransposedDirectForm2IIR(f, 2, s.Work());
        sink.F32s(f, 6);
      }
    }

    // Mixed chains, including one that fails part-way and the empty chain.
    const OVAParametriceqBandSpec chain[kMaxBands] = {
        {4, 40.0f, 0.0f, -3.0103f, 0}, {1, 120.0f, 0.8f, 4.0f, 0},  {0, 1000.0f, 1.5f, -5.0f, 0},
        {8, 3000.0f, 3.0f, 7.0f, 1},   {7, 6000.0f, 10.0f, 0.0f, 0}, {2, 9000.0f, 1.2f, -2.0f, 0},
        {3, 15000.0f, 0.0f, 1.0f, 0},  {9, 0.0f, 0.0f, -1.5f, 0},
    };
    for (int count = 0; count <= kMaxBands; ++count) {
      DesignAll(sink, Fmt("fs=%g chain=%g", rate, count), chain, count, rate);
    }
    OVAParametriceqBandSpec failing[3] = {chain[1], chain[2], chain[3]};
    failing[1].center_freq = 30000.0f;
    DesignAll(sink, Fmt("fs=%g chain failing at band 1", rate), failing, 3, rate);
  }
}

}  // namespace qh_identity
