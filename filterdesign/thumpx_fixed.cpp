// Bass-enhancement (Thumpx) filter set in 32-, 24- and 16-bit fixed point:
// the float design quantised group by group, then the tuning words.
//
// Output, 63 words of the member's width:
//   0..55  eleven groups over floats 0..44 (lengths 3,5,3,5,3,5,3,5,5,5,3),
//          each its iwl followed by its values in Q(iwl-1).(W-iwl)
//   56     custom_speaker_size
//   57..59 bass_ctrl, hp_ratio, ext_bass as Q(W-1) fractions, saturated
//   60     lp_ratio in Q9.22, saturated to 32 bits (16-bit form: low half)
//   61, 62 pre_lp_freq, harm_hp_freq truncated toward zero
#include <stdint.h>

#include "iir_internal.h"

namespace {

using qh::fd::FxpWord;
using qh::fd::TruncToInt32;

// Lengths of the groups over the first 45 floats; the seventh covers the
// three floats the float designer leaves alone, quantised as found.
const int kGroupLengths[] = {3, 5, 3, 5, 3, 5, 3, 5, 5, 5, 3};
constexpr int kGroupCount = sizeof(kGroupLengths) / sizeof(kGroupLengths[0]);

constexpr int kSizeWord = 56;
constexpr int kFractionWords = 57;  // three Q(W-1) words
constexpr int kLpRatioWord = 60;
constexpr int kFreqWords = 61;      // two truncated integers
constexpr float kLpRatioScale = 4194304.0f;  // 2^22: nine integer bits

// Toward zero; out-of-range values saturate and not-a-number gives 0.
// A 32-bit integer as a word of width W: whole for 32 and 24, low 16 bits
// for 16.
template <int W>
FxpWord<W> IntegerWord(int32_t v) {
  if constexpr (W == 16) {
    return qh::fd::Truncate16(v);
  } else {
    return v;
  }
}

// 16-bit only: re-derive b1 from b0 in the lp_ratio low-pass (b1 = 2*b0,
// words 5 and 6) and in the hp_ratio high-pass (b1 = -2*b0, words 15 and 16).
// The other second-order sections keep their separately rounded b1.
void RepairNumerators16(int16_t* out) {
  qh::fd::RepairB1FromB0(out + 4, 2);    // group 1: iwl at word 4, b0 at 5
  qh::fd::RepairB1FromB0(out + 14, -2);  // group 3: iwl at word 14, b0 at 15
}

template <int W>
int ThumpxDesignFxp(int custom_speaker_size, float bass_ctrl, float hp_ratio, float ext_bass,
                    int sampling_rate, FxpWord<W>* out, float lp_ratio, float pre_lp_freq,
                    float harm_hp_freq, float clip_level, int reserved, void* workspace) {
  float* f = qh::fd::AlignWorkspace8(workspace);
  const int rc = OVA_THUMPX_FilterDesignFloat(custom_speaker_size, bass_ctrl, hp_ratio, ext_bass,
                                              sampling_rate, f, lp_ratio, pre_lp_freq,
                                              harm_hp_freq, clip_level, reserved);
  if (rc != QH_IIR_DESIGN_OK) return rc;

  int in = 0;
  int word = 0;
  for (int g = 0; g < kGroupCount; ++g) {
    qh::fd::QuantizeGroup<W>(f + in, kGroupLengths[g], out + word);
    in += kGroupLengths[g];
    word += kGroupLengths[g] + 1;
  }

  out[kSizeWord] = IntegerWord<W>(custom_speaker_size);
  const float fraction_scale = qh::fd::IwlScale<W>(1);  // 2^(W-1)
  const float fractions[3] = {bass_ctrl, hp_ratio, ext_bass};
  for (int i = 0; i < 3; ++i) {
    out[kFractionWords + i] = qh::fd::RoundSaturate<W>(fraction_scale, fractions[i]);
  }
  out[kLpRatioWord] = IntegerWord<W>(qh::fd::RoundSaturate<32>(kLpRatioScale, lp_ratio));
  out[kFreqWords] = IntegerWord<W>(TruncToInt32(pre_lp_freq));
  out[kFreqWords + 1] = IntegerWord<W>(TruncToInt32(harm_hp_freq));

  if constexpr (W == 16) RepairNumerators16(out);
  return QH_IIR_DESIGN_OK;
}

static_assert(3 + 5 + 3 + 5 + 3 + 5 + 3 + 5 + 5 + 5 + 3 == 45, "groups cover floats 0..44");
static_assert(45 + kGroupCount == kSizeWord, "groups end where the tuning words start");

}  // namespace

extern "C" {

QH_EXPORT int OVA_THUMPX_FilterDesignFxp32(int custom_speaker_size, float bass_ctrl, float hp_ratio,
                                           float ext_bass, int sampling_rate, int32_t* out,
                                           float lp_ratio, float pre_lp_freq, float harm_hp_freq,
                                           float clip_level, int reserved, void* workspace) {
  return ThumpxDesignFxp<32>(custom_speaker_size, bass_ctrl, hp_ratio, ext_bass, sampling_rate,
                             out, lp_ratio, pre_lp_freq, harm_hp_freq, clip_level, reserved,
                             workspace);
}

QH_EXPORT int OVA_THUMPX_FilterDesignFxp24(int custom_speaker_size, float bass_ctrl, float hp_ratio,
                                           float ext_bass, int sampling_rate, int32_t* out,
                                           float lp_ratio, float pre_lp_freq, float harm_hp_freq,
                                           float clip_level, int reserved, void* workspace) {
  return ThumpxDesignFxp<24>(custom_speaker_size, bass_ctrl, hp_ratio, ext_bass, sampling_rate,
                             out, lp_ratio, pre_lp_freq, harm_hp_freq, clip_level, reserved,
                             workspace);
}

QH_EXPORT int OVA_THUMPX_FilterDesignFxp16(int custom_speaker_size, float bass_ctrl, float hp_ratio,
                                           float ext_bass, int sampling_rate, int16_t* out,
                                           float lp_ratio, float pre_lp_freq, float harm_hp_freq,
                                           float clip_level, int reserved, void* workspace) {
  return ThumpxDesignFxp<16>(custom_speaker_size, bass_ctrl, hp_ratio, ext_bass, sampling_rate,
                             out, lp_ratio, pre_lp_freq, harm_hp_freq, clip_level, reserved,
                             workspace);
}

}  // extern "C"
