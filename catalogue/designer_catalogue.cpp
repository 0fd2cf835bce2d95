// The designer catalogue's tables: families, formats, parameters, layouts.
#include "designer_catalogue.h"

#include <cmath>
#include <cstring>

namespace qh_design {
namespace {

template <class T, int N>
constexpr List<T> ListOf(const T (&items)[N]) {
  return List<T>{items, N};
}

constexpr Format kCascadeFormats[] = {Format::kFloat, Format::kFxp32, Format::kFxp24, Format::kFxp16};
constexpr Format kPeqFormats[] = {Format::kFloat, Format::kFxp32, Format::kFxp32NoScale, Format::kFxp24,
                                  Format::kFxp16};
constexpr Format kCrossoverFormats[] = {Format::kFloat, Format::kFxp32};
constexpr Format kRecordFormats[] = {Format::kRecord};

constexpr Parameter kButterworthParameters[] = {
    {"filter_type", "0 or 1", "0 low-pass, 1 high-pass"},
    {"cutoff_hz", "Hz", "cut-off frequency, below half the rate"},
    {"order", "sections", "filter order; (order + 1) / 2 sections, the first one first order when odd"},
    {"sample_rate", "Hz", "sample rate"},
};
constexpr Parameter kPeqParameters[] = {
    {"type", "0 to 9", "band type (see the band types)"},
    {"center_freq", "Hz", "centre, corner or shelf frequency, below half the rate"},
    {"q", "engine units", "quality factor; shelf slope for the shelves; unused by lowpass, highpass and gain"},
    {"gain", "dB", "band gain; for lowpass and highpass the resonance, Q = 10^(gain/20)"},
    {"invert", "0 or 1", "1 negates the band's numerator (b0, b1, b2): the band's output changes polarity"},
    {"sample_rate", "Hz", "sample rate"},
};
constexpr Parameter kThumpxParameters[] = {
    {"custom_speaker_size", "engine units", "loudspeaker size, 40 to 600 (effective speaker frequency "
                                            "(0.737 + 0.000332 size) * size Hz)"},
    {"bass_ctrl", "0 to 1", "bass boost"},
    {"hp_ratio", "0 to 1", "high-pass corner over the effective speaker frequency (bypassed below 0.05)"},
    {"ext_bass", "0 to 1", "bass extension (width of the first bass peak)"},
    {"sampling_rate", "Hz", "44100, 32000 or 48000"},
    {"lp_ratio", "engine units", "low-pass corner over the speaker size (corner = lp_ratio * size Hz)"},
    {"pre_lp_freq", "Hz", "pre low-pass corner"},
    {"harm_hp_freq", "Hz", "harmonics high-pass corner"},
    {"clip_level", "engine units", "linear clip level of the bass peaks"},
};
constexpr Parameter kCrossoverParameters[] = {
    {"crossover_freq", "Hz", "crossover frequency, below half the rate"},
    {"sample_rate", "Hz", "sample rate"},
};
constexpr Parameter kDistprevParameters[] = {
    {"count", "designs", "number of notch design blocks and records"},
    {"nf_mode", "engine units", "notch mode, passed to the engine"},
    {"nf_thld", "dB", "notch threshold (stored truncated to whole dB)"},
    {"nf_sense", "dB", "notch sensitivity (stored truncated to whole dB)"},
    {"nf_attk_thld", "dB", "attack threshold"},
    {"nf_attk_ms", "ms", "attack time"},
    {"nf_rel_ms", "ms", "release time"},
    {"nf_band_ct", "bands", "notch bands, 0 to 6"},
    {"nf_base_freq", "Hz", "frequency of the first notch band"},
    {"nf_base_q", "engine units", "base quality factor (the band's Q is nf_base_q * 2/13)"},
    {"nf_base_attn_max", "dB", "maximum attenuation of the first band"},
    {"nf_spacing", "0, 1, other", "0 harmonic, 1 octave, any other value every band at the base"},
    {"nf_width", "0 or other", "0 the same Q for every band, else a constant bandwidth in Hz"},
    {"nf_slope", "dB", "attenuation step from one band to the next"},
};

constexpr OutputGroup kThumpxGroups[] = {
    {"lp_ratio low-pass, first order", 0, 0, 3},    {"lp_ratio low-pass, second order", 3, 4, 5},
    {"harmonics high-pass, first order", 8, 10, 3}, {"hp_ratio high-pass", 11, 14, 5},
    {"pre low-pass, first order", 16, 20, 3},       {"pre low-pass, second order", 19, 24, 5},
    {"(not written by the designer)", 24, 30, 3},   {"harmonics high-pass", 27, 34, 5},
    {"bass peak 1", 32, 40, 5},                     {"bass peak 2", 37, 46, 5},
    {"high shelf, first order", 42, 52, 3},
};
constexpr ParameterWord kThumpxWords[] = {
    {"speaker_size", 45, 56, WordEncoding::kInteger}, {"bass_ctrl", 46, 57, WordEncoding::kFraction},
    {"hp_ratio", 47, 58, WordEncoding::kFraction},    {"ext_bass", 48, 59, WordEncoding::kFraction},
    {"lp_ratio", 49, 60, WordEncoding::kQ22},         {"pre_lp_freq", 50, 61, WordEncoding::kTruncated},
    {"harm_hp_freq", 51, 62, WordEncoding::kTruncated},
};
constexpr OutputGroup kCrossoverGroups[] = {{"low-pass", 0, 0, 5}, {"high-pass", 5, 6, 5}};

const DesignerEntry kDesigners[] = {
    {Family::kButterworth, "butterworth", "Butterworth low- or high-pass cascade", "OVA_IirFilterDesignFloat",
     ListOf(kCascadeFormats), ListOf(kButterworthParameters),
     "5*S + 1 floats: S sections b0 b1 b2 A1 A2 (A negated), then the gain",
     "6*S + 2 words: per section iwl b0 b1 b2 A1 A2, then gain iwl and gain", {}, {}},
    {Family::kPeq, "peq", "Parametric equaliser, one section per band", "OVA_ParametriceqDesignFloat",
     ListOf(kPeqFormats), ListOf(kPeqParameters),
     "5*S + 1 floats: one section b0 b1 b2 A1 A2 (A negated) per band, then the gain",
     "6*S + 2 words: per band iwl b0 b1 b2 A1 A2, then gain iwl and gain", {}, {}},
    {Family::kThumpx, "thumpx", "Bass-enhancement filter set", "OVA_THUMPX_FilterDesignFloat",
     ListOf(kCascadeFormats), ListOf(kThumpxParameters),
     "52 floats: eleven sections of 3 or 5 coefficients (floats 24..26 unwritten), size, six parameters",
     "63 words: eleven groups of iwl and 3 or 5 words, then seven parameter words", ListOf(kThumpxGroups),
     ListOf(kThumpxWords)},
    {Family::kCrossover, "crossover", "Multi-band limiter crossover (low-pass and high-pass)",
     "QUILL_McDyn_FilterDesignFloat", ListOf(kCrossoverFormats), ListOf(kCrossoverParameters),
     "10 floats: low-pass b0 b1 b2 A1 A2, high-pass b0 b1 b2 A1 A2 (A negated), no gain",
     "12 words: low-pass iwl and five words, high-pass iwl and five words, no gain", ListOf(kCrossoverGroups), {}},
    {Family::kDistprev, "distprev", "Distortion-prevention records (sense and notch banks)",
     "quill_distprev_config_designer", ListOf(kRecordFormats), ListOf(kDistprevParameters), "",
     "one 2168-byte record per design: sense and notch banks at 48000, 44100 and 32000 Hz, 8 words and 6 "
     "floats per band slot",
     {}, {}},
};

constexpr BandType kBandTypes[] = {
    {PEQ_BAND_TYPE_TRADITIONAL, "traditional",
     "boost/cut peak whose cut exactly undoes the same boost (bandwidth from w0/(3 Q))", "quality factor"},
    {PEQ_BAND_TYPE_LOWSHELF, "lowshelf", "low shelf", "shelf slope"},
    {PEQ_BAND_TYPE_HIGHSHELF, "highshelf", "high shelf", "shelf slope"},
    {PEQ_BAND_TYPE_LOWPASS, "lowpass", "second-order low-pass, resonance from the gain", nullptr},
    {PEQ_BAND_TYPE_HIGHPASS, "highpass", "second-order high-pass, resonance from the gain", nullptr},
    {PEQ_BAND_TYPE_BANDPASS, "bandpass", "band-pass, peak gain = the gain", "quality factor"},
    {PEQ_BAND_TYPE_ALLPASS, "allpass", "all-pass scaled by the gain", "quality factor"},
    {PEQ_BAND_TYPE_NOTCH, "notch", "notch", "quality factor"},
    {PEQ_BAND_TYPE_PEAKING, "peaking", "constant-Q peaking band (audio-cookbook peaking EQ)", "quality factor"},
    {PEQ_BAND_TYPE_GAIN, "gain", "pure gain, frequency unused", nullptr},
};

}  // namespace

double ParameterValue(WordEncoding encoding, int64_t word, int width) {
  switch (encoding) {
    case WordEncoding::kFraction: return static_cast<double>(word) / std::ldexp(1.0, width - 1);
    case WordEncoding::kQ22: return static_cast<double>(word) / 4194304.0;
    default: return static_cast<double>(word);
  }
}

List<DesignerEntry> Designers() { return ListOf(kDesigners); }

const DesignerEntry* FindDesigner(Family family) {
  for (const DesignerEntry& e : kDesigners) {
    if (e.family == family) return &e;
  }
  return nullptr;
}

const DesignerEntry* FindDesigner(const char* name) {
  for (const DesignerEntry& e : kDesigners) {
    if (std::strcmp(e.name, name) == 0) return &e;
  }
  return nullptr;
}

bool HasFormat(const DesignerEntry& entry, Format format) {
  for (Format f : entry.formats) {
    if (f == format) return true;
  }
  return false;
}

OutputGroup CascadeSection(int s) { return {"section", 5 * s, 6 * s, 5}; }
OutputGroup CascadeGain(int sections) { return {"gain", 5 * sections, 6 * sections, 1}; }

List<BandType> BandTypes() { return ListOf(kBandTypes); }

const char* BandTypeName(int value) {
  for (const BandType& t : kBandTypes) {
    if (t.value == value) return t.name;
  }
  return nullptr;
}

}  // namespace qh_design
