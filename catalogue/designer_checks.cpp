// The designer catalogue's argument checks: the designers' own rejections,
// restated so that a caller can say why, and the designs a person did not mean.
#include <cmath>
#include <cstdio>

#include "designer_catalogue.h"

namespace qh_design {
namespace {

// A value as a person would write it ("1000", "0.5", "nan").
std::string Num(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%g", v);
  return buf;
}

Objection Object(const char* parameter, std::string reason, int band = -1) {
  Objection o;
  o.parameter = parameter;
  o.band = band;
  o.reason = std::move(reason);
  return o;
}

// Every designer's frequency limit: (float)(sample_rate / 2), an integer
// division, so an odd rate rounds the limit down. NaN passes, as in the library.
bool AtOrAboveHalfRate(float hz, int rate) { return hz >= static_cast<float>(rate / 2); }
std::string HalfRate(int rate) { return "half the rate (" + std::to_string(rate / 2) + " Hz)"; }

Objection UnknownFormat(Family family, Format format) {
  return Object("format", std::string("the format ") + FormatName(format) + " is not one of " +
                              FindDesigner(family)->name + "'s");
}

bool FinitePositive(double v) { return std::isfinite(v) && v > 0; }

}  // namespace

// ---- (a) what the designers reject ----

Objection CheckContract(const ButterworthRequest& r, Format f) {
  if (!HasFormat(*FindDesigner(Family::kButterworth), f)) return UnknownFormat(Family::kButterworth, f);
  if (r.filter_type != QH_IIR_LOWPASS && r.filter_type != QH_IIR_HIGHPASS) {
    return Object("filter_type", "the filter type " + std::to_string(r.filter_type) +
                                     " is not 0 (low-pass) or 1 (high-pass)");
  }
  if (AtOrAboveHalfRate(r.cutoff_hz, r.sample_rate)) {
    return Object("cutoff_hz", "the cut-off " + Num(r.cutoff_hz) + " Hz is not below " + HalfRate(r.sample_rate));
  }
  return {};
}

Objection CheckContract(const PeqRequest& r, Format f) {
  if (!HasFormat(*FindDesigner(Family::kPeq), f)) return UnknownFormat(Family::kPeq, f);
  for (int b = 0; b < r.band_count; ++b) {
    if (AtOrAboveHalfRate(r.bands[b].center_freq, r.sample_rate)) {
      return Object("center_freq", "band " + std::to_string(b) + ": the frequency " + Num(r.bands[b].center_freq) +
                                       " Hz is not below " + HalfRate(r.sample_rate), b);
    }
  }
  return {};
}

Objection CheckContract(const ThumpxRequest& r, Format f) {
  if (!HasFormat(*FindDesigner(Family::kThumpx), f)) return UnknownFormat(Family::kThumpx, f);
  if (r.custom_speaker_size < 40 || r.custom_speaker_size > 600) {
    return Object("custom_speaker_size",
                  "the speaker size " + std::to_string(r.custom_speaker_size) + " is outside 40 to 600");
  }
  if (r.sampling_rate != 44100 && r.sampling_rate != 32000 && r.sampling_rate != 48000) {
    return Object("sampling_rate", "the rate " + std::to_string(r.sampling_rate) + " Hz is not 44100, 32000 or 48000");
  }
  const struct {
    const char* name;
    float value;
  } kRatios[] = {{"bass_ctrl", r.bass_ctrl}, {"hp_ratio", r.hp_ratio}, {"ext_bass", r.ext_bass}};
  for (const auto& ratio : kRatios) {
    if (!(ratio.value >= 0.0f && ratio.value <= 1.0f)) {
      return Object(ratio.name, std::string(ratio.name) + " " + Num(ratio.value) + " is outside 0 to 1");
    }
  }
  return {};
}

Objection CheckContract(const CrossoverRequest& r, Format f) {
  if (!HasFormat(*FindDesigner(Family::kCrossover), f)) return UnknownFormat(Family::kCrossover, f);
  if (AtOrAboveHalfRate(r.crossover_freq, r.sample_rate)) {
    return Object("crossover_freq", "the crossover frequency " + Num(r.crossover_freq) + " Hz is not below " +
                                        HalfRate(r.sample_rate));
  }
  return {};
}

// ---- (b) designs a person did not mean ----

namespace {

// "the cut-off nan Hz is not finite and positive"
Objection NotFinitePositive(const char* parameter, const std::string& what, double v, const char* unit,
                            const std::string& prefix = "", int band = -1) {
  const std::string value = Num(v) + (unit[0] ? std::string(" ") + unit : "");
  return Object(parameter, prefix + what + " " + value + " is not finite and positive", band);
}

Objection NotFinite(const char* parameter, const std::string& what, double v, const char* unit,
                    const std::string& prefix = "", int band = -1) {
  return Object(parameter, prefix + what + " " + Num(v) + " " + unit + " is not finite", band);
}

constexpr int kMaxButterworthOrder = 16;
constexpr int kMaxNotchBands = 6;

}  // namespace

Objection CheckIntent(const ButterworthRequest& r) {
  if (!FinitePositive(r.cutoff_hz)) return NotFinitePositive("cutoff_hz", "the cut-off", r.cutoff_hz, "Hz");
  if (r.order < 1 || r.order > kMaxButterworthOrder) {
    return Object("order", "the order " + std::to_string(r.order) + " is outside 1 to " +
                               std::to_string(kMaxButterworthOrder));
  }
  return {};
}

Objection CheckIntent(const PeqRequest& r) {
  for (int b = 0; b < r.band_count; ++b) {
    const OVAParametriceqBandSpec& band = r.bands[b];
    const char* name = BandTypeName(band.type);
    if (name == nullptr) continue;  // no section is designed for it
    const std::string prefix = "band " + std::to_string(b) + " (" + name + "): ";
    const bool uses_q = BandTypes().items[band.type].q_means != nullptr;
    if (band.type != PEQ_BAND_TYPE_GAIN && !FinitePositive(band.center_freq)) {
      return NotFinitePositive("center_freq", "the frequency", band.center_freq, "Hz", prefix, b);
    }
    if (uses_q && !FinitePositive(band.q)) {
      const bool slope = band.type == PEQ_BAND_TYPE_LOWSHELF || band.type == PEQ_BAND_TYPE_HIGHSHELF;
      return NotFinitePositive("q", slope ? "the shelf slope (Q)" : "the Q", band.q, "", prefix, b);
    }
    if (!std::isfinite(band.gain)) {
      const bool resonance = band.type == PEQ_BAND_TYPE_LOWPASS || band.type == PEQ_BAND_TYPE_HIGHPASS;
      return NotFinite("gain", resonance ? "the resonance (gain)" : "the gain", band.gain, "dB", prefix, b);
    }
  }
  return {};
}

Objection CheckIntent(const ThumpxRequest& r) {
  if (!FinitePositive(r.lp_ratio)) return NotFinitePositive("lp_ratio", "lp_ratio", r.lp_ratio, "");
  if (!FinitePositive(r.pre_lp_freq)) return NotFinitePositive("pre_lp_freq", "pre_lp_freq", r.pre_lp_freq, "Hz");
  if (!FinitePositive(r.harm_hp_freq)) {
    return NotFinitePositive("harm_hp_freq", "harm_hp_freq", r.harm_hp_freq, "Hz");
  }
  if (!std::isfinite(r.clip_level)) {
    return Object("clip_level", "clip_level " + Num(r.clip_level) + " is not finite");
  }
  return {};
}

Objection CheckIntent(const CrossoverRequest& r) {
  if (!FinitePositive(r.crossover_freq)) {
    return NotFinitePositive("crossover_freq", "the crossover frequency", r.crossover_freq, "Hz");
  }
  return {};
}

Objection CheckIntent(const quillDistprevNotchDesignBlock& b) {
  if (b.nf_band_ct < 0 || b.nf_band_ct > kMaxNotchBands) {
    return Object("nf_band_ct", "nf_band_ct " + std::to_string(b.nf_band_ct) + " is outside 0 to 6");
  }
  if (!FinitePositive(b.nf_base_freq)) return NotFinitePositive("nf_base_freq", "nf_base_freq", b.nf_base_freq, "Hz");
  if (!FinitePositive(b.nf_base_q)) return NotFinitePositive("nf_base_q", "nf_base_q", b.nf_base_q, "");
  if (!FinitePositive(b.nf_attk_ms)) return NotFinitePositive("nf_attk_ms", "the attack time", b.nf_attk_ms, "ms");
  if (!FinitePositive(b.nf_rel_ms)) return NotFinitePositive("nf_rel_ms", "the release time", b.nf_rel_ms, "ms");
  const struct {
    const char* name;
    float value;
  } kLevels[] = {{"nf_thld", b.nf_thld},
                 {"nf_sense", b.nf_sense},
                 {"nf_attk_thld", b.nf_attk_thld},
                 {"nf_base_attn_max", b.nf_base_attn_max},
                 {"nf_slope", b.nf_slope}};
  for (const auto& level : kLevels) {
    if (!std::isfinite(level.value)) return NotFinite(level.name, level.name, level.value, "dB");
  }
  return {};
}

Objection CheckIntent(const DistprevRequest& r) {
  for (int k = 0; k < r.count; ++k) {
    Objection o = CheckIntent(r.blocks[k]);
    if (o) {
      o.reason = "design " + std::to_string(k) + ": " + o.reason;
      return o;
    }
  }
  return {};
}

}  // namespace qh_design
