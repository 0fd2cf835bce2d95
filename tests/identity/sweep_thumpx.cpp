// Sweep of the bass-enhancement and crossover designers: speaker sizes across
// every size band of the boost, level and shelf rules, several tuning sets
// (including rejected ones), every rate, every width.
#include "sweep_cases.h"

namespace qh_identity {
namespace {

// The tunings as requests; size and rate are set per case.
qh_design::ThumpxRequest Tuning(float bass_ctrl, float hp_ratio, float ext_bass, float lp_ratio, float pre_lp_freq,
                                float harm_hp_freq, float clip_level) {
  return {0, bass_ctrl, hp_ratio, ext_bass, 0, lp_ratio, pre_lp_freq, harm_hp_freq, clip_level, 0};
}

const qh_design::ThumpxRequest kTunings[] = {
    Tuning(0.3335f, 0.5f, 0.8f, 5.5f, 500.0f, 44.0f, 1.5f),   // the schema defaults
    Tuning(0.0f, 0.5f, 0.8f, 5.5f, 500.0f, 44.0f, 1.5f),      // no boost: identity peaks
    Tuning(1.0f, 1.0f, 1.0f, 3.0f, 300.0f, 10.0f, 0.8f),      // full boost, bypassed harmonics high-pass
    Tuning(0.5f, 0.04f, 0.0f, 9.0f, 1200.0f, 80.0f, 1.005f),  // bypassed high-pass, narrow peaks
    Tuning(0.9f, 0.2f, 0.5f, 5.5f, 500.0f, 44.0f, 3.0f),      // boost above 1.818
    Tuning(0.2f, 0.7f, 0.3f, 2.0f, 150.0f, 30.0f, 0.5f),      // level below 1.33
    Tuning(0.3335f, 0.5f, 0.8f, 0.0f, 0.0f, 0.0f, 1.5f),      // zero corners: infinite cotangents
    Tuning(0.6f, 0.5f, 0.8f, -2.0f, 30000.0f, 25000.0f, 1.5f), // corners past the half rate
    Tuning(1.5f, 0.5f, 0.8f, 5.5f, 500.0f, 44.0f, 1.5f),      // rejected: bass_ctrl above 1
    Tuning(0.3f, 0.5f, -0.1f, 5.5f, 500.0f, 44.0f, 1.5f),     // rejected: ext_bass below 0
};

const int kSizes[] = {39,  40,  55,  60,  61,  75,  76,  90,  100, 101, 150,
                      200, 201, 300, 301, 350, 400, 401, 500, 501, 600, 601};
const int kRates[] = {32000, 44100, 48000, 96000};

}  // namespace

void SweepThumpx(SweepSink& sink) {
  using qh_design::Format;
  const Format kWidths[] = {Format::kFloat, Format::kFxp32, Format::kFxp24, Format::kFxp16};
  int t = 0;
  for (const qh_design::ThumpxRequest& tuning : kTunings) {
    for (int rate : kRates) {
      for (int size : kSizes) {
        const std::string what = Fmt("tuning=%g fs=%g size=%g", t, rate, size);
        qh_design::ThumpxRequest r = tuning;
        r.custom_speaker_size = size;
        r.sampling_rate = rate;
        for (qh_design::Format format : kWidths) {
          sink.Begin(std::string("thumpx ") + qh_design::FormatName(format) + " " + what);
          SweepDesign(sink, r, format);
        }
      }
    }
    ++t;
  }
}

void SweepCrossover(SweepSink& sink) {
  const float kFreqs[] = {20.0f,    80.0f,    300.0f,   1000.0f,  5000.0f,
                          12000.0f, 16000.0f, 22049.0f, 22050.0f, 24000.0f};
  const int kCrossRates[] = {32000, 44100, 44101, 48000, 96000};
  for (int rate : kCrossRates) {
    for (float fc : kFreqs) {
      const qh_design::CrossoverRequest r{fc, rate};
      sink.Begin(Fmt("crossover float fs=%g fc=%g", rate, fc));
      SweepDesign(sink, r, qh_design::Format::kFloat);
      sink.Begin(Fmt("crossover fxp32 fs=%g fc=%g", rate, fc));
      SweepDesign(sink, r, qh_design::Format::kFxp32);
    }
  }
}

}  // namespace qh_identity
