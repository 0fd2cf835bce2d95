// heron design thumpx: the bass-enhancement filter set.
#include <cmath>

#include "design_output.h"
#include "message_io.h"
#include "quillheron_filterdesign.h"

namespace heron_tool {
namespace {

// The float layout's groups: (first float, values, name). Floats 24 to 26
// are not written by the designer; the fixed-point form quantises them as a
// group all the same.
struct Group {
  int first;
  int values;
  const char* name;
};
constexpr Group kGroups[] = {
    {0, 3, "lp_ratio low-pass, first order"},  {3, 5, "lp_ratio low-pass, second order"},
    {8, 3, "harmonics high-pass, first order"}, {11, 5, "hp_ratio high-pass"},
    {16, 3, "pre low-pass, first order"},       {19, 5, "pre low-pass, second order"},
    {24, 3, "(not written by the designer)"},   {27, 5, "harmonics high-pass"},
    {32, 5, "bass peak 1"},                     {37, 5, "bass peak 2"},
    {42, 3, "high shelf, first order"},
};
// Groups 8 to 10 form the bass-boost path whose response is shown.
constexpr int kBoostGroupFirst = 8;

// Reserved argument as the converter passes it (the bit pattern of 1.0f);
// no designer reads it.
constexpr int kReserved = 0x3F800000;

std::string RejectReason(const ThumpxOptions& o, int rate) {
  if (o.speaker_size < 40 || o.speaker_size > 600) {
    return "--speaker-size " + std::to_string(o.speaker_size) + " is outside 40 to 600";
  }
  if (rate != 44100 && rate != 32000 && rate != 48000) {
    return "the rate " + std::to_string(rate) + " Hz is not 44100, 32000 or 48000";
  }
  const struct {
    const char* name;
    double value;
  } ratios[] = {{"--bass-ctrl", o.bass_ctrl}, {"--hp-ratio", o.hp_ratio}, {"--ext-bass", o.ext_bass}};
  for (const auto& r : ratios) {
    const float v = static_cast<float>(r.value);
    if (!(v >= 0.0f && v <= 1.0f)) return std::string(r.name) + " " + std::to_string(r.value) + " is outside 0 to 1";
  }
  return "rejected by the designer";
}

}  // namespace

void DesignThumpx(const ThumpxOptions& o, DesignOutput* out) {
  const int width = FormatWidth(out->format);
  if (out->format != "float" && out->format != "fxp32" && out->format != "fxp24" && out->format != "fxp16") {
    throw ToolError{"", "--format for thumpx must be float|fxp32|fxp24|fxp16", kExitInputError};
  }
  const float bass = static_cast<float>(o.bass_ctrl), hp = static_cast<float>(o.hp_ratio);
  const float ext = static_cast<float>(o.ext_bass), lp = static_cast<float>(o.lp_ratio);
  const float pre = static_cast<float>(o.pre_lp_freq), harm = static_cast<float>(o.harm_hp_freq);
  const float clip = static_cast<float>(o.clip_level);
  out->response_label = "bass-boost path (peaks and shelf)";

  std::vector<float> floats(QH_THUMPX_FLOAT_LENGTH, 0.0f);
  const int float_result = OVA_THUMPX_FilterDesignFloat(o.speaker_size, bass, hp, ext, out->rate, floats.data(),
                                                        lp, pre, harm, clip, kReserved);
  if (width == 0) {
    out->floats = floats;
    out->result = float_result;
  } else {
    // Zeroed workspace: the float gap the designer leaves is quantised as zeros.
    std::vector<unsigned char> workspace(QH_THUMPX_WORKSPACE_BYTES, 0);
    void* ws = workspace.data();
    const int size = o.speaker_size, rate = out->rate;
    RunFixedDesign(
        out, QH_THUMPX_FIXED_LENGTH, width,
        [&](int16_t* w) {
          return OVA_THUMPX_FilterDesignFxp16(size, bass, hp, ext, rate, w, lp, pre, harm, clip, kReserved, ws);
        },
        [&](int32_t* w, int bits) {
          return bits == 32
                     ? OVA_THUMPX_FilterDesignFxp32(size, bass, hp, ext, rate, w, lp, pre, harm, clip, kReserved, ws)
                     : OVA_THUMPX_FilterDesignFxp24(size, bass, hp, ext, rate, w, lp, pre, harm, clip, kReserved, ws);
        });
  }
  if (out->result != 0) {
    out->reject_reason = RejectReason(o, out->rate);
    return;
  }
  int word = 0;
  for (int g = 0; g < static_cast<int>(sizeof kGroups / sizeof kGroups[0]); ++g) {
    const Group& group = kGroups[g];
    const float* f = &floats[group.first];
    const Biquad fb = group.values == 3 ? Biquad{f[0], f[1], 0, f[2], 0} : Biquad{f[0], f[1], f[2], f[3], f[4]};
    if (g >= kBoostGroupFirst) out->float_sections.push_back(fb);
    if (width == 0) {
      AddFloatSection(out, group.name, f, group.values);
    } else {
      const Biquad qb = AddFixedSection(out, group.name, &out->words[word], group.values, width);
      if (g >= kBoostGroupFirst) out->quantised_sections.push_back(qb);
    }
    word += group.values + 1;
  }
  out->has_quantised = width != 0;
  // The parameter words: floats 45 to 51, or words 56 to 62.
  SectionView params;
  params.name = "parameters";
  params.coef_names = {"speaker_size", "bass_ctrl", "hp_ratio", "ext_bass", "lp_ratio", "pre_lp_freq", "harm_hp_freq"};
  if (width == 0) {
    for (int i = 45; i < 52; ++i) params.values.push_back(floats[i]);
  } else {
    for (int i = 56; i < 63; ++i) params.words.push_back(out->words[i]);
    const double frac = std::ldexp(1.0, width - 1);
    params.values = {static_cast<double>(out->words[56]), out->words[57] / frac, out->words[58] / frac,
                     out->words[59] / frac, out->words[60] / 4194304.0, static_cast<double>(out->words[61]),
                     static_cast<double>(out->words[62])};
  }
  out->sections.push_back(params);
}

}  // namespace heron_tool
