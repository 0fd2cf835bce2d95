// The scalar field binding tables of the control records: one constant table
// per (message, native block, width). Offsets are absolute byte offsets from
// the start of the block the table serves; row order is copy order.
// constexpr data with internal linkage; read-only, safe from any thread.
#ifndef QUILLHERON_CONVERT_BINDING_TABLES_H_
#define QUILLHERON_CONVERT_BINDING_TABLES_H_

#include <cstddef>

#include "field_binding.h"
#include "heron_v1_1.pb.h"
#include "quillHeronCtrlRecords.h"

namespace quillheron {
namespace bind {

using quill::pb::heron_v1_1::Postmix;
using quill::pb::heron_v1_1::Premix;
using quill::pb::tech::Aeq;
using quill::pb::tech::Brio;
using quill::pb::tech::Enhance2;
using quill::pb::tech::Geq10b;
using quill::pb::tech::Lyra;
using quill::pb::tech::Mbhl;
using quill::pb::tech::Ova3d;
using quill::pb::tech::Steady;
using quill::pb::tech::Thumpx;
using quill::pb::tech::Vista;

template <class Msg, class Block>
using Int32Row = FieldBinding<Msg, Block, NativeWidth::kInt32>;
template <class Msg, class Block>
using Int16Row = FieldBinding<Msg, Block, NativeWidth::kInt16>;

// ---- Steady -> _quillSteadyApiCtrl ------------------------------------------
constexpr Int32Row<Steady, _quillSteadyApiCtrl> Steady32Map[] = {
    QH_BIND(Steady, enable, 0),
    QH_BIND(Steady, intensity_level, 4),
    QH_BIND(Steady, mode, 8),
};
constexpr Int16Row<Steady, _quillSteadyApiCtrl> Steady16Map[] = {
    QH_BIND(Steady, input_gain, 12),
    QH_BIND(Steady, output_gain, 14),
    QH_BIND(Steady, lkfs_gain, 16),
};

// ---- Enhance2 -> _quillEnhance2ApiCtrl (htest, ref_htest by hand) -----------
constexpr Int32Row<Enhance2, _quillEnhance2ApiCtrl> Enh2Map[] = {
    QH_BIND(Enhance2, mode, 0),
    QH_BIND(Enhance2, mv_downstream, 4),
    QH_BIND(Enhance2, master_volume, 8),
    QH_BIND(Enhance2, target_spl, 12),
    QH_BIND(Enhance2, system_spl, 16),
    QH_BIND(Enhance2, system_calib_level, 20),
    QH_BIND(Enhance2, hi_freq_compensation, 24),
    QH_BIND(Enhance2, lo_freq_compensation, 28),
    QH_BIND(Enhance2, content_dr, 88),
    QH_BIND(Enhance2, max_lf_boost, 92),
};

// ---- Premix -> _quillHeronPremixApiCtrl (bypass_mode by hand) ---------------
constexpr Int32Row<Premix, _quillHeronPremixApiCtrl> PremixMap[] = {
    QH_BIND(Premix, output_device, 116),
    QH_BIND(Premix, stream_gain, 120),
    QH_BIND(Premix, stream_gain_downstream, 144),
    QH_BIND(Premix, headroom_limit, 148),
    QH_BIND(Premix, headroom_ratio, 152),
};

// ---- Postmix -> _quillHeronPostmixApiCtrl (arrays by hand) -------------------
constexpr Int32Row<Postmix, _quillHeronPostmixApiCtrl> PostmixMap[] = {
    QH_BIND(Postmix, output_device, 0),
    QH_BIND(Postmix, postmix_gain, 4),
    QH_BIND(Postmix, hpf_enable, 8),
    QH_BIND(Postmix, limiter, 12),
    QH_BIND(Postmix, lyra_stereo_mode, 16),
    QH_BIND(Postmix, lyra_multi_ch, 20),
    QH_BIND(Postmix, dc_cut_enable, 96),
    QH_BIND(Postmix, limiter_master_vol, 120),
    QH_BIND(Postmix, bypass_gain, 124),
};

// ---- Ova3d -> _quillOva3dApiCtrl ---------------------------------------------
constexpr Int32Row<Ova3d, _quillOva3dApiCtrl> OVA3D32Map[] = {
    QH_BIND(Ova3d, enable, 0),
    QH_BIND(Ova3d, mode, 4),
    QH_BIND(Ova3d, hp_enable, 8),
    QH_BIND(Ova3d, hi_bit_rate, 12),
};
constexpr Int16Row<Ova3d, _quillOva3dApiCtrl> OVA3D16Map[] = {
    QH_BIND(Ova3d, input_gain, 16),
    QH_BIND(Ova3d, output_gain, 18),
    QH_BIND(Ova3d, bypass_gain, 20),
    QH_BIND(Ova3d, space_level, 22),
    QH_BIND(Ova3d, center_level, 24),
};

// ---- Vista -> _quillVistaApiCtrl ----------------------------------------------
constexpr Int32Row<Vista, _quillVistaApiCtrl> Vista32Map[] = {
    QH_BIND(Vista, enable, 0),
    QH_BIND(Vista, hs_hpf_enable, 4),
};
constexpr Int16Row<Vista, _quillVistaApiCtrl> Vista16Map[] = {
    QH_BIND(Vista, input_gain, 8),
    QH_BIND(Vista, bypass_gain, 10),
    QH_BIND(Vista, center_boost_level, 12),
    QH_BIND(Vista, speaker_separation_level, 14),
};

// ---- Thumpx -> _quillTHUMPxApiCtrl (input_gain by hand, int16 at 20) ----------
constexpr Int32Row<Thumpx, _quillTHUMPxApiCtrl> THUMPX32Map[] = {
    QH_BIND(Thumpx, enable, 0),
    QH_BIND(Thumpx, mode, 4),
    QH_BIND(Thumpx, bass_level, 8),
    QH_BIND(Thumpx, speaker_size, 12),
    QH_BIND(Thumpx, dynamics, 16),
};

// ---- Brio -> _quillBrioApiCtrl (nested stages at 0, 28, 44) -------------------
constexpr Int32Row<Brio, _quillBrioApiCtrl> BRIO32Map[] = {
    QH_BIND(Brio, enable, 68),
    QH_BIND(Brio, enhance_mode, 72),
    QH_BIND(Brio, crossover_enable, 76),
    QH_BIND(Brio, hpf_enable, 80),
    QH_BIND(Brio, def_enable, 84),
    QH_BIND(Brio, focus_enable, 88),
};
constexpr Int16Row<Brio, _quillBrioApiCtrl> BRIO16Map[] = {
    QH_BIND(Brio, input_gain, 92),
    QH_BIND(Brio, output_gain, 94),
    QH_BIND(Brio, bypass_gain, 96),
    QH_BIND(Brio, def_level, 98),
    QH_BIND(Brio, focus_level, 100),
};

// ---- Geq10b -> _quillGeq10bApiCtrl (enable and reserved word by hand) ---------
constexpr Int16Row<Geq10b, _quillGeq10bApiCtrl> GEQ10B16Map[] = {
    QH_BIND(Geq10b, input_gain, 4),
    QH_BIND(Geq10b, band0_gain, 6),
    QH_BIND(Geq10b, band1_gain, 8),
    QH_BIND(Geq10b, band2_gain, 10),
    QH_BIND(Geq10b, band3_gain, 12),
    QH_BIND(Geq10b, band4_gain, 14),
    QH_BIND(Geq10b, band5_gain, 16),
    QH_BIND(Geq10b, band6_gain, 18),
    QH_BIND(Geq10b, band7_gain, 20),
    QH_BIND(Geq10b, band8_gain, 22),
    QH_BIND(Geq10b, band9_gain, 24),
};

// ---- Aeq -> _quillAeqApiCtrl (enable by hand) ----------------------------------
constexpr Int16Row<Aeq, _quillAeqApiCtrl> AEQ16Map[] = {
    QH_BIND(Aeq, input_gain, 4),
    QH_BIND(Aeq, output_gain, 6),
    QH_BIND(Aeq, bypass_gain, 8),
};

// ---- Lyra -> _quillLyraApiCtrl (super_stereo_coef by hand) ---------------------
constexpr Int32Row<Lyra, _quillLyraApiCtrl> LYRA32Map[] = {
    QH_BIND(Lyra, downmix, 0),
    QH_BIND(Lyra, super_stereo, 4),
    QH_BIND(Lyra, input_gain, 8),
    QH_BIND(Lyra, bypass_reverb, 12),
    QH_BIND(Lyra, bypass_conv, 16),
    QH_BIND(Lyra, bypass_hpeq, 20),
};

// ---- Mbhl -> quillMBHLApiCtrls -------------------------------------------------
constexpr Int32Row<Mbhl, quillMBHLApiCtrls> MBHL32Map[] = {
    QH_BIND(Mbhl, enable, 0),
    QH_BIND(Mbhl, com_attack, 8),
    QH_BIND(Mbhl, low_decay, 12),
    QH_BIND(Mbhl, mid_decay, 16),
    QH_BIND(Mbhl, high_decay, 20),
    QH_BIND(Mbhl, low_ratio, 24),
    QH_BIND(Mbhl, mid_ratio, 28),
    QH_BIND(Mbhl, high_ratio, 32),
    QH_BIND(Mbhl, mode, 36),
    QH_BIND(Mbhl, boost, 40),
    QH_BIND(Mbhl, low_cross, 44),
    QH_BIND(Mbhl, mid_cross, 48),
    QH_BIND(Mbhl, low_thresh, 52),
    QH_BIND(Mbhl, mid_thresh, 56),
    QH_BIND(Mbhl, high_thresh, 60),
    QH_BIND(Mbhl, low_makeup, 64),
    QH_BIND(Mbhl, mid_makeup, 68),
    QH_BIND(Mbhl, high_makeup, 72),
    QH_BIND(Mbhl, dist_prev_enable, 76),
};
constexpr Int16Row<Mbhl, quillMBHLApiCtrls> MBHL16Map[] = {
    QH_BIND(Mbhl, output_gain, 4),
    QH_BIND(Mbhl, anti_clip_level, 6),
};

// ---- Checks: row counts, rows inside their block, offsets == record fields ----
#define QH_CHECK_TABLE(table, count) \
  static_assert(sizeof(table) / sizeof((table)[0]) == (count), #table " rows"); \
  static_assert(rowsFitBlock(table), #table " outside its block")

QH_CHECK_TABLE(Steady32Map, 3);
QH_CHECK_TABLE(Steady16Map, 3);
QH_CHECK_TABLE(Enh2Map, 10);
QH_CHECK_TABLE(PremixMap, 5);
QH_CHECK_TABLE(PostmixMap, 9);
QH_CHECK_TABLE(OVA3D32Map, 4);
QH_CHECK_TABLE(OVA3D16Map, 5);
QH_CHECK_TABLE(Vista32Map, 2);
QH_CHECK_TABLE(Vista16Map, 4);
QH_CHECK_TABLE(THUMPX32Map, 5);
QH_CHECK_TABLE(BRIO32Map, 6);
QH_CHECK_TABLE(BRIO16Map, 5);
QH_CHECK_TABLE(GEQ10B16Map, 11);
QH_CHECK_TABLE(AEQ16Map, 3);
QH_CHECK_TABLE(LYRA32Map, 6);
QH_CHECK_TABLE(MBHL32Map, 19);
QH_CHECK_TABLE(MBHL16Map, 2);
#undef QH_CHECK_TABLE

#define QH_OFF(Block, member) offsetof(Block, member)
static_assert(rowOffsetsAre(Steady32Map, {QH_OFF(_quillSteadyApiCtrl, enable),
    QH_OFF(_quillSteadyApiCtrl, intensity_level), QH_OFF(_quillSteadyApiCtrl, mode)}), "");
static_assert(rowOffsetsAre(Steady16Map, {QH_OFF(_quillSteadyApiCtrl, input_gain),
    QH_OFF(_quillSteadyApiCtrl, output_gain), QH_OFF(_quillSteadyApiCtrl, lkfs_gain)}), "");
static_assert(rowOffsetsAre(Enh2Map, {QH_OFF(_quillEnhance2ApiCtrl, mode),
    QH_OFF(_quillEnhance2ApiCtrl, mv_downstream), QH_OFF(_quillEnhance2ApiCtrl, master_volume),
    QH_OFF(_quillEnhance2ApiCtrl, target_spl), QH_OFF(_quillEnhance2ApiCtrl, system_spl),
    QH_OFF(_quillEnhance2ApiCtrl, system_calib_level),
    QH_OFF(_quillEnhance2ApiCtrl, hi_freq_compensation),
    QH_OFF(_quillEnhance2ApiCtrl, lo_freq_compensation),
    QH_OFF(_quillEnhance2ApiCtrl, content_dr), QH_OFF(_quillEnhance2ApiCtrl, max_lf_boost)}), "");
static_assert(rowOffsetsAre(PremixMap, {QH_OFF(_quillHeronPremixApiCtrl, output_device),
    QH_OFF(_quillHeronPremixApiCtrl, stream_gain),
    QH_OFF(_quillHeronPremixApiCtrl, stream_gain_downstream),
    QH_OFF(_quillHeronPremixApiCtrl, headroom_limit),
    QH_OFF(_quillHeronPremixApiCtrl, headroom_ratio)}), "");
static_assert(rowOffsetsAre(PostmixMap, {QH_OFF(_quillHeronPostmixApiCtrl, output_device),
    QH_OFF(_quillHeronPostmixApiCtrl, postmix_gain), QH_OFF(_quillHeronPostmixApiCtrl, hpf_enable),
    QH_OFF(_quillHeronPostmixApiCtrl, limiter), QH_OFF(_quillHeronPostmixApiCtrl, lyra_stereo_mode),
    QH_OFF(_quillHeronPostmixApiCtrl, lyra_multi_ch),
    QH_OFF(_quillHeronPostmixApiCtrl, dc_cut_enable),
    QH_OFF(_quillHeronPostmixApiCtrl, limiter_master_vol),
    QH_OFF(_quillHeronPostmixApiCtrl, bypass_gain)}), "");
static_assert(rowOffsetsAre(OVA3D32Map, {QH_OFF(_quillOva3dApiCtrl, enable),
    QH_OFF(_quillOva3dApiCtrl, mode), QH_OFF(_quillOva3dApiCtrl, hp_enable),
    QH_OFF(_quillOva3dApiCtrl, hi_bit_rate)}), "");
static_assert(rowOffsetsAre(OVA3D16Map, {QH_OFF(_quillOva3dApiCtrl, input_gain),
    QH_OFF(_quillOva3dApiCtrl, output_gain), QH_OFF(_quillOva3dApiCtrl, bypass_gain),
    QH_OFF(_quillOva3dApiCtrl, space_level), QH_OFF(_quillOva3dApiCtrl, center_level)}), "");
static_assert(rowOffsetsAre(Vista32Map, {QH_OFF(_quillVistaApiCtrl, enable),
    QH_OFF(_quillVistaApiCtrl, hs_hpf_enable)}), "");
static_assert(rowOffsetsAre(Vista16Map, {QH_OFF(_quillVistaApiCtrl, input_gain),
    QH_OFF(_quillVistaApiCtrl, bypass_gain), QH_OFF(_quillVistaApiCtrl, center_boost_level),
    QH_OFF(_quillVistaApiCtrl, speaker_separation_level)}), "");
static_assert(rowOffsetsAre(THUMPX32Map, {QH_OFF(_quillTHUMPxApiCtrl, enable),
    QH_OFF(_quillTHUMPxApiCtrl, mode), QH_OFF(_quillTHUMPxApiCtrl, bass_level),
    QH_OFF(_quillTHUMPxApiCtrl, speaker_size), QH_OFF(_quillTHUMPxApiCtrl, dynamics)}), "");
static_assert(rowOffsetsAre(BRIO32Map, {QH_OFF(_quillBrioApiCtrl, enable),
    QH_OFF(_quillBrioApiCtrl, enhance_mode), QH_OFF(_quillBrioApiCtrl, crossover_enable),
    QH_OFF(_quillBrioApiCtrl, hpf_enable), QH_OFF(_quillBrioApiCtrl, def_enable),
    QH_OFF(_quillBrioApiCtrl, focus_enable)}), "");
static_assert(rowOffsetsAre(BRIO16Map, {QH_OFF(_quillBrioApiCtrl, input_gain),
    QH_OFF(_quillBrioApiCtrl, output_gain), QH_OFF(_quillBrioApiCtrl, bypass_gain),
    QH_OFF(_quillBrioApiCtrl, def_level), QH_OFF(_quillBrioApiCtrl, focus_level)}), "");
constexpr std::size_t kGeqBand0 = QH_OFF(_quillGeq10bApiCtrl, band_gain);
static_assert(rowOffsetsAre(GEQ10B16Map, {QH_OFF(_quillGeq10bApiCtrl, input_gain),
    kGeqBand0, kGeqBand0 + 2, kGeqBand0 + 4, kGeqBand0 + 6, kGeqBand0 + 8, kGeqBand0 + 10,
    kGeqBand0 + 12, kGeqBand0 + 14, kGeqBand0 + 16, kGeqBand0 + 18}), "");
static_assert(rowOffsetsAre(AEQ16Map, {QH_OFF(_quillAeqApiCtrl, input_gain),
    QH_OFF(_quillAeqApiCtrl, output_gain), QH_OFF(_quillAeqApiCtrl, bypass_gain)}), "");
static_assert(rowOffsetsAre(LYRA32Map, {QH_OFF(_quillLyraApiCtrl, downmix),
    QH_OFF(_quillLyraApiCtrl, super_stereo), QH_OFF(_quillLyraApiCtrl, input_gain),
    QH_OFF(_quillLyraApiCtrl, bypass_reverb), QH_OFF(_quillLyraApiCtrl, bypass_conv),
    QH_OFF(_quillLyraApiCtrl, bypass_hpeq)}), "");
static_assert(rowOffsetsAre(MBHL32Map, {QH_OFF(quillMBHLApiCtrls, enable),
    QH_OFF(quillMBHLApiCtrls, com_attack), QH_OFF(quillMBHLApiCtrls, low_decay),
    QH_OFF(quillMBHLApiCtrls, mid_decay), QH_OFF(quillMBHLApiCtrls, high_decay),
    QH_OFF(quillMBHLApiCtrls, low_ratio), QH_OFF(quillMBHLApiCtrls, mid_ratio),
    QH_OFF(quillMBHLApiCtrls, high_ratio), QH_OFF(quillMBHLApiCtrls, mode),
    QH_OFF(quillMBHLApiCtrls, boost), QH_OFF(quillMBHLApiCtrls, low_cross),
    QH_OFF(quillMBHLApiCtrls, mid_cross), QH_OFF(quillMBHLApiCtrls, low_thresh),
    QH_OFF(quillMBHLApiCtrls, mid_thresh), QH_OFF(quillMBHLApiCtrls, high_thresh),
    QH_OFF(quillMBHLApiCtrls, low_makeup), QH_OFF(quillMBHLApiCtrls, mid_makeup),
    QH_OFF(quillMBHLApiCtrls, high_makeup), QH_OFF(quillMBHLApiCtrls, dist_prev_enable)}), "");
static_assert(rowOffsetsAre(MBHL16Map, {QH_OFF(quillMBHLApiCtrls, output_gain),
    QH_OFF(quillMBHLApiCtrls, anti_clip_level)}), "");
#undef QH_OFF

}  // namespace bind
}  // namespace quillheron

#endif  // QUILLHERON_CONVERT_BINDING_TABLES_H_
