// The native records as data: every named field and repeated array of the
// premix (156 bytes), postmix-control (488) and postmix (66108) records, with
// byte offset, element width, element count, value type and, for the per-mode
// arrays, one label per native slot; and the regions of the postmix record
// with the driver step that fills each. Offsets, widths and counts are taken
// from the record structs themselves (offsetof, decltype), so the tables
// cannot disagree with the layout. Constant data, safe from any thread.
#ifndef QUILLHERON_CATALOGUE_RECORD_LAYOUT_H_
#define QUILLHERON_CATALOGUE_RECORD_LAYOUT_H_

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

#include "quillHeronCoeffRecords.h"
#include "quillHeronPostmixTrace.h"

namespace qh_catalogue {

enum class ValueType : std::uint8_t { kInt32, kUint32, kInt16, kFloat32, kUuid };

constexpr bool IsSigned(ValueType t) { return t == ValueType::kInt32 || t == ValueType::kInt16; }
constexpr const char* TypeName(ValueType t) {
  switch (t) {
    case ValueType::kInt32: return "int32";
    case ValueType::kUint32: return "uint32";
    case ValueType::kInt16: return "int16";
    case ValueType::kFloat32: return "float32";
    case ValueType::kUuid: return "uuid";
  }
  return "?";
}

struct FieldLayout {
  const char* name;          // dotted path inside the record, e.g. "brio.thumpx.speaker_size"
  std::uint32_t offset;      // bytes from the start of the record
  std::uint32_t width;       // bytes per element (a uuid is one 16-byte element)
  std::uint32_t count;       // elements; 1 for a scalar
  ValueType type;
  const char* const* slots;  // null, or `count` labels in native slot order
};

struct RecordLayout {
  const char* name;  // "premix", "postmix-control" or "postmix"
  std::uint32_t size;
  const FieldLayout* fields;  // in offset order
  std::uint32_t field_count;
  constexpr const FieldLayout* begin() const { return fields; }
  constexpr const FieldLayout* end() const { return fields + field_count; }
};

// A region of the postmix record and the driver step that writes it.
struct RegionLayout {
  const char* name;  // also the prefix of its fields' names
  std::uint32_t offset;
  std::uint32_t bytes;
  QuillTraceStep step;
};

// The per-mode arrays of the postmix control record, slot by slot.
inline constexpr const char* kModeSlotLabels[QUILL_HERON_MODE_COUNT] = {
    "HMO_Stereo", "HMO_Front", "HMO_Wide", "HMO_Bypass", "HMO_Multichannel", "HMO_Downmix"};
static_assert(QUILL_HERON_SLOT_STEREO == 0 && QUILL_HERON_SLOT_FRONT == 1 && QUILL_HERON_SLOT_WIDE == 2 &&
                  QUILL_HERON_SLOT_BYPASS == 3 && QUILL_HERON_SLOT_MULTICHANNEL == 4 &&
                  QUILL_HERON_SLOT_DOWNMIX == 5,
              "slot labels follow the engine's slot order");

namespace detail {

template <class M>
struct Elements {
  using type = M;
  static constexpr std::uint32_t count = 1;
};
template <class E, std::size_t N>
struct Elements<E[N]> {
  using type = E;
  static constexpr std::uint32_t count = N;
};

template <class E>
constexpr ValueType TypeOf() {
  static_assert(std::is_same_v<E, std::int32_t> || std::is_same_v<E, std::uint32_t> ||
                    std::is_same_v<E, std::int16_t> || std::is_same_v<E, float>,
                "a record field of an unknown type");
  if constexpr (std::is_same_v<E, std::int32_t>) return ValueType::kInt32;
  if constexpr (std::is_same_v<E, std::uint32_t>) return ValueType::kUint32;
  if constexpr (std::is_same_v<E, std::int16_t>) return ValueType::kInt16;
  return ValueType::kFloat32;
}

// A field of member type M (a scalar or an array) at `offset`.
template <class M>
constexpr FieldLayout Field(const char* name, std::size_t offset, const char* const* slots = nullptr) {
  using E = typename Elements<M>::type;
  if constexpr (std::is_same_v<E, std::uint8_t>) {
    static_assert(Elements<M>::count == 16, "byte arrays of the records are identifiers");
    return {name, static_cast<std::uint32_t>(offset), 16, 1, ValueType::kUuid, slots};
  } else {
    return {name, static_cast<std::uint32_t>(offset), sizeof(E), Elements<M>::count, TypeOf<E>(), slots};
  }
}

}  // namespace detail

// Field M of struct T placed at byte B of the record, named P "M".
#define QH_F(P, B, T, M) ::qh_catalogue::detail::Field<decltype(T::M)>(P #M, (B) + offsetof(T, M))
#define QH_F_SLOTS(P, B, T, M) \
  ::qh_catalogue::detail::Field<decltype(T::M)>(P #M, (B) + offsetof(T, M), ::qh_catalogue::kModeSlotLabels)

#define QH_STEADY(P, B)                                                                                   \
  QH_F(P, B, _quillSteadyApiCtrl, enable), QH_F(P, B, _quillSteadyApiCtrl, intensity_level),              \
      QH_F(P, B, _quillSteadyApiCtrl, mode), QH_F(P, B, _quillSteadyApiCtrl, input_gain),                 \
      QH_F(P, B, _quillSteadyApiCtrl, output_gain), QH_F(P, B, _quillSteadyApiCtrl, lkfs_gain)

#define QH_ENHANCE2(P, B)                                                                                 \
  QH_F(P, B, _quillEnhance2ApiCtrl, mode), QH_F(P, B, _quillEnhance2ApiCtrl, mv_downstream),              \
      QH_F(P, B, _quillEnhance2ApiCtrl, master_volume), QH_F(P, B, _quillEnhance2ApiCtrl, target_spl),    \
      QH_F(P, B, _quillEnhance2ApiCtrl, system_spl), QH_F(P, B, _quillEnhance2ApiCtrl, system_calib_level), \
      QH_F(P, B, _quillEnhance2ApiCtrl, hi_freq_compensation),                                            \
      QH_F(P, B, _quillEnhance2ApiCtrl, lo_freq_compensation), QH_F(P, B, _quillEnhance2ApiCtrl, htest),  \
      QH_F(P, B, _quillEnhance2ApiCtrl, ref_htest), QH_F(P, B, _quillEnhance2ApiCtrl, content_dr),        \
      QH_F(P, B, _quillEnhance2ApiCtrl, max_lf_boost)

#define QH_BRIO(P, B)                                                                                     \
  QH_F(P "ova3d.", (B) + offsetof(_quillBrioApiCtrl, ova3d), _quillOva3dApiCtrl, enable),                 \
      QH_F(P "ova3d.", (B) + offsetof(_quillBrioApiCtrl, ova3d), _quillOva3dApiCtrl, mode),               \
      QH_F(P "ova3d.", (B) + offsetof(_quillBrioApiCtrl, ova3d), _quillOva3dApiCtrl, hp_enable),          \
      QH_F(P "ova3d.", (B) + offsetof(_quillBrioApiCtrl, ova3d), _quillOva3dApiCtrl, hi_bit_rate),        \
      QH_F(P "ova3d.", (B) + offsetof(_quillBrioApiCtrl, ova3d), _quillOva3dApiCtrl, input_gain),         \
      QH_F(P "ova3d.", (B) + offsetof(_quillBrioApiCtrl, ova3d), _quillOva3dApiCtrl, output_gain),        \
      QH_F(P "ova3d.", (B) + offsetof(_quillBrioApiCtrl, ova3d), _quillOva3dApiCtrl, bypass_gain),        \
      QH_F(P "ova3d.", (B) + offsetof(_quillBrioApiCtrl, ova3d), _quillOva3dApiCtrl, space_level),        \
      QH_F(P "ova3d.", (B) + offsetof(_quillBrioApiCtrl, ova3d), _quillOva3dApiCtrl, center_level),       \
      QH_F(P "vista.", (B) + offsetof(_quillBrioApiCtrl, vista), _quillVistaApiCtrl, enable),             \
      QH_F(P "vista.", (B) + offsetof(_quillBrioApiCtrl, vista), _quillVistaApiCtrl, hs_hpf_enable),      \
      QH_F(P "vista.", (B) + offsetof(_quillBrioApiCtrl, vista), _quillVistaApiCtrl, input_gain),         \
      QH_F(P "vista.", (B) + offsetof(_quillBrioApiCtrl, vista), _quillVistaApiCtrl, bypass_gain),        \
      QH_F(P "vista.", (B) + offsetof(_quillBrioApiCtrl, vista), _quillVistaApiCtrl, center_boost_level), \
      QH_F(P "vista.", (B) + offsetof(_quillBrioApiCtrl, vista), _quillVistaApiCtrl,                      \
           speaker_separation_level),                                                                     \
      QH_F(P "thumpx.", (B) + offsetof(_quillBrioApiCtrl, thumpx), _quillTHUMPxApiCtrl, enable),          \
      QH_F(P "thumpx.", (B) + offsetof(_quillBrioApiCtrl, thumpx), _quillTHUMPxApiCtrl, mode),            \
      QH_F(P "thumpx.", (B) + offsetof(_quillBrioApiCtrl, thumpx), _quillTHUMPxApiCtrl, bass_level),      \
      QH_F(P "thumpx.", (B) + offsetof(_quillBrioApiCtrl, thumpx), _quillTHUMPxApiCtrl, speaker_size),    \
      QH_F(P "thumpx.", (B) + offsetof(_quillBrioApiCtrl, thumpx), _quillTHUMPxApiCtrl, dynamics),        \
      QH_F(P "thumpx.", (B) + offsetof(_quillBrioApiCtrl, thumpx), _quillTHUMPxApiCtrl, input_gain),      \
      QH_F(P, B, _quillBrioApiCtrl, enable), QH_F(P, B, _quillBrioApiCtrl, enhance_mode),                 \
      QH_F(P, B, _quillBrioApiCtrl, crossover_enable), QH_F(P, B, _quillBrioApiCtrl, hpf_enable),         \
      QH_F(P, B, _quillBrioApiCtrl, def_enable), QH_F(P, B, _quillBrioApiCtrl, focus_enable),             \
      QH_F(P, B, _quillBrioApiCtrl, input_gain), QH_F(P, B, _quillBrioApiCtrl, output_gain),              \
      QH_F(P, B, _quillBrioApiCtrl, bypass_gain), QH_F(P, B, _quillBrioApiCtrl, def_level),               \
      QH_F(P, B, _quillBrioApiCtrl, focus_level)

#define QH_MBHL(P, B)                                                                                     \
  QH_F(P, B, quillMBHLApiCtrls, enable), QH_F(P, B, quillMBHLApiCtrls, output_gain),                      \
      QH_F(P, B, quillMBHLApiCtrls, anti_clip_level), QH_F(P, B, quillMBHLApiCtrls, com_attack),          \
      QH_F(P, B, quillMBHLApiCtrls, low_decay), QH_F(P, B, quillMBHLApiCtrls, mid_decay),                 \
      QH_F(P, B, quillMBHLApiCtrls, high_decay), QH_F(P, B, quillMBHLApiCtrls, low_ratio),                \
      QH_F(P, B, quillMBHLApiCtrls, mid_ratio), QH_F(P, B, quillMBHLApiCtrls, high_ratio),                \
      QH_F(P, B, quillMBHLApiCtrls, mode), QH_F(P, B, quillMBHLApiCtrls, boost),                          \
      QH_F(P, B, quillMBHLApiCtrls, low_cross), QH_F(P, B, quillMBHLApiCtrls, mid_cross),                 \
      QH_F(P, B, quillMBHLApiCtrls, low_thresh), QH_F(P, B, quillMBHLApiCtrls, mid_thresh),               \
      QH_F(P, B, quillMBHLApiCtrls, high_thresh), QH_F(P, B, quillMBHLApiCtrls, low_makeup),              \
      QH_F(P, B, quillMBHLApiCtrls, mid_makeup), QH_F(P, B, quillMBHLApiCtrls, high_makeup),              \
      QH_F(P, B, quillMBHLApiCtrls, dist_prev_enable)

#define QH_POSTMIX_CONTROL(B)                                                                             \
  QH_F("", B, _quillHeronPostmixApiCtrl, output_device), QH_F("", B, _quillHeronPostmixApiCtrl, postmix_gain), \
      QH_F("", B, _quillHeronPostmixApiCtrl, hpf_enable), QH_F("", B, _quillHeronPostmixApiCtrl, limiter), \
      QH_F("", B, _quillHeronPostmixApiCtrl, lyra_stereo_mode),                                           \
      QH_F("", B, _quillHeronPostmixApiCtrl, lyra_multi_ch),                                              \
      QH_F_SLOTS("", B, _quillHeronPostmixApiCtrl, lyra_input_gain),                                      \
      QH_F_SLOTS("", B, _quillHeronPostmixApiCtrl, bypass_hpeq),                                          \
      QH_F_SLOTS("", B, _quillHeronPostmixApiCtrl, aeq_enable),                                           \
      QH_F("", B, _quillHeronPostmixApiCtrl, dc_cut_enable),                                              \
      QH_F("", B, _quillHeronPostmixApiCtrl, bypass_mode),                                                \
      QH_F("", B, _quillHeronPostmixApiCtrl, limiter_master_vol),                                         \
      QH_F("", B, _quillHeronPostmixApiCtrl, bypass_gain),                                                \
      QH_BRIO("brio.", (B) + offsetof(_quillHeronPostmixApiCtrl, brio)),                                  \
      QH_F("geq10b.", (B) + offsetof(_quillHeronPostmixApiCtrl, geq10b), _quillGeq10bApiCtrl, enable),    \
      QH_F("geq10b.", (B) + offsetof(_quillHeronPostmixApiCtrl, geq10b), _quillGeq10bApiCtrl, input_gain), \
      QH_F("geq10b.", (B) + offsetof(_quillHeronPostmixApiCtrl, geq10b), _quillGeq10bApiCtrl, band_gain), \
      QH_F("geq10b.", (B) + offsetof(_quillHeronPostmixApiCtrl, geq10b), _quillGeq10bApiCtrl, reserved), \
      QH_F("aeq.", (B) + offsetof(_quillHeronPostmixApiCtrl, aeq), _quillAeqApiCtrl, enable),             \
      QH_F("aeq.", (B) + offsetof(_quillHeronPostmixApiCtrl, aeq), _quillAeqApiCtrl, input_gain),         \
      QH_F("aeq.", (B) + offsetof(_quillHeronPostmixApiCtrl, aeq), _quillAeqApiCtrl, output_gain),        \
      QH_F("aeq.", (B) + offsetof(_quillHeronPostmixApiCtrl, aeq), _quillAeqApiCtrl, bypass_gain),        \
      QH_ENHANCE2("enhance2.", (B) + offsetof(_quillHeronPostmixApiCtrl, enhance2)),                      \
      QH_F("lyra.", (B) + offsetof(_quillHeronPostmixApiCtrl, lyra), _quillLyraApiCtrl, downmix),         \
      QH_F("lyra.", (B) + offsetof(_quillHeronPostmixApiCtrl, lyra), _quillLyraApiCtrl, super_stereo),    \
      QH_F("lyra.", (B) + offsetof(_quillHeronPostmixApiCtrl, lyra), _quillLyraApiCtrl, input_gain),      \
      QH_F("lyra.", (B) + offsetof(_quillHeronPostmixApiCtrl, lyra), _quillLyraApiCtrl, bypass_reverb),   \
      QH_F("lyra.", (B) + offsetof(_quillHeronPostmixApiCtrl, lyra), _quillLyraApiCtrl, bypass_conv),     \
      QH_F("lyra.", (B) + offsetof(_quillHeronPostmixApiCtrl, lyra), _quillLyraApiCtrl, bypass_hpeq),     \
      QH_F("lyra.", (B) + offsetof(_quillHeronPostmixApiCtrl, lyra), _quillLyraApiCtrl, super_stereo_coef), \
      QH_MBHL("mbhl.", (B) + offsetof(_quillHeronPostmixApiCtrl, mbhl))

// A room header at byte B and its coefficients, record member C.
#define QH_ROOM(P, B, C)                                                                                  \
  QH_F(P, B, _quillHpcLyraRmData, uuid), QH_F(P, B, _quillHpcLyraRmData, channel_mask),                   \
      QH_F(P, B, _quillHpcLyraRmData, num_pairs), QH_F(P, B, _quillHpcLyraRmData, brir_length),           \
      QH_F(P, B, _quillHpcLyraRmData, sample_rate), QH_F(P, B, _quillHpcLyraRmData, reverb_gain),         \
      QH_F(P, B, _quillHpcLyraRmData, reverb_cut),                                                        \
      ::qh_catalogue::detail::Field<decltype(_quillHeronPostmixApiCtrlCoeffs::C)>(                        \
          P "coeffs", offsetof(_quillHeronPostmixApiCtrlCoeffs, C))

#define QH_AEQ_BANK(P, B)                                                                                 \
  QH_F(P, B, _quillAeqApiBankCoeff, iir_order), QH_F(P, B, _quillAeqApiBankCoeff, fir_order),             \
      QH_F(P, B, _quillAeqApiBankCoeff, iir_coeffs), QH_F(P, B, _quillAeqApiBankCoeff, fir_coeffs)

#define QH_DISTPREV(P, B)                                                                                 \
  QH_F(P, B, quillMBHLDistprevCoeff, sense_band_count), QH_F(P, B, quillMBHLDistprevCoeff, sense_band_sos_count), \
      QH_F(P, B, quillMBHLDistprevCoeff, sense_band_coeffs),                                              \
      QH_F(P, B, quillMBHLDistprevCoeff, sense_band_coeffs_float32),                                      \
      QH_F(P, B, quillMBHLDistprevCoeff, notch_mode), QH_F(P, B, quillMBHLDistprevCoeff, notch_threshold_db), \
      QH_F(P, B, quillMBHLDistprevCoeff, notch_sensitivity_db),                                           \
      QH_F(P, B, quillMBHLDistprevCoeff, notch_band_count),                                               \
      QH_F(P, B, quillMBHLDistprevCoeff, notch_band_attenuation_max),                                     \
      QH_F(P, B, quillMBHLDistprevCoeff, notch_band_gain_scalars),                                        \
      QH_F(P, B, quillMBHLDistprevCoeff, notch_band_sos_count),                                           \
      QH_F(P, B, quillMBHLDistprevCoeff, notch_smoothers), QH_F(P, B, quillMBHLDistprevCoeff, notch_band_coeffs), \
      QH_F(P, B, quillMBHLDistprevCoeff, notch_band_coeffs_float32)

using Postmix_ = _quillHeronPostmixApiCtrlCoeffs;

inline constexpr FieldLayout kPremixFields[] = {
    QH_STEADY("steady.", offsetof(_quillHeronPremixApiCtrl, steady)),
    QH_ENHANCE2("enhance2.", offsetof(_quillHeronPremixApiCtrl, enhance2)),
    QH_F("", 0, _quillHeronPremixApiCtrl, output_device),
    QH_F("", 0, _quillHeronPremixApiCtrl, stream_gain),
    QH_F("", 0, _quillHeronPremixApiCtrl, bypass_mode),
    QH_F("", 0, _quillHeronPremixApiCtrl, stream_gain_downstream),
    QH_F("", 0, _quillHeronPremixApiCtrl, headroom_limit),
    QH_F("", 0, _quillHeronPremixApiCtrl, headroom_ratio),
};

inline constexpr FieldLayout kPostmixControlFields[] = {QH_POSTMIX_CONTROL(0)};

inline constexpr FieldLayout kPostmixFields[] = {
    QH_POSTMIX_CONTROL(offsetof(Postmix_, ctrl)),
    QH_ROOM("multich_room.", offsetof(Postmix_, multich_room), multich_room_coeffs),
    QH_ROOM("front_room.", offsetof(Postmix_, front_room), front_room_coeffs),
    QH_ROOM("wide_room.", offsetof(Postmix_, wide_room), wide_room_coeffs),
    QH_F("hpeq.", offsetof(Postmix_, hpeq), _quillHpcLyraHpeqData, uuid),
    QH_F("hpeq.", offsetof(Postmix_, hpeq), _quillHpcLyraHpeqData, sample_rate),
    QH_F("hpeq.", offsetof(Postmix_, hpeq), _quillHpcLyraHpeqData, ihpir_length),
    detail::Field<decltype(Postmix_::hpeq_coeffs)>("hpeq.coeffs", offsetof(Postmix_, hpeq_coeffs)),
    QH_F("hpf.", offsetof(Postmix_, hpf), _quillHeronHpfApiCoeff, order),
    QH_F("hpf.", offsetof(Postmix_, hpf), _quillHeronHpfApiCoeff, coeffs),
    QH_AEQ_BANK("aeq.bank[0].", offsetof(Postmix_, aeq)),
    QH_AEQ_BANK("aeq.bank[1].", offsetof(Postmix_, aeq) + sizeof(_quillAeqApiBankCoeff)),
    QH_F("brio_hpf.", offsetof(Postmix_, brio_hpf), _quillBrioHpfApiCoeff, order),
    QH_F("brio_hpf.", offsetof(Postmix_, brio_hpf), _quillBrioHpfApiCoeff, coeffs),
    QH_F("brio_xover.", offsetof(Postmix_, brio_xover), _quillBrioXoverApiCoeff, order),
    QH_F("brio_xover.", offsetof(Postmix_, brio_xover), _quillBrioXoverApiCoeff, lpf_coeffs),
    QH_F("brio_xover.", offsetof(Postmix_, brio_xover), _quillBrioXoverApiCoeff, hpf_coeffs),
    QH_F("thumpx.", offsetof(Postmix_, thumpx), _quillTHUMPXApiCoeff, coeffs),
    QH_F("mbhl_coef.", offsetof(Postmix_, mbhl), _quillMBHLApiCoeff, low_cross_coeffs),
    QH_F("mbhl_coef.", offsetof(Postmix_, mbhl), _quillMBHLApiCoeff, mid_cross_coeffs),
    QH_DISTPREV("dist_prev[0].", offsetof(Postmix_, dist_prev)),
    QH_DISTPREV("dist_prev[1].", offsetof(Postmix_, dist_prev) + sizeof(quillMBHLDistprevCoeff)),
};

#undef QH_F
#undef QH_F_SLOTS
#undef QH_STEADY
#undef QH_ENHANCE2
#undef QH_BRIO
#undef QH_MBHL
#undef QH_POSTMIX_CONTROL
#undef QH_ROOM
#undef QH_AEQ_BANK
#undef QH_DISTPREV

template <std::size_t N>
constexpr RecordLayout MakeRecord(const char* name, std::size_t size, const FieldLayout (&fields)[N]) {
  return {name, static_cast<std::uint32_t>(size), fields, static_cast<std::uint32_t>(N)};
}

inline constexpr RecordLayout kPremix = MakeRecord("premix", sizeof(_quillHeronPremixApiCtrl), kPremixFields);
inline constexpr RecordLayout kPostmixControl =
    MakeRecord("postmix-control", sizeof(_quillHeronPostmixApiCtrl), kPostmixControlFields);
inline constexpr RecordLayout kPostmix = MakeRecord("postmix", sizeof(Postmix_), kPostmixFields);
inline constexpr const RecordLayout* kRecords[] = {&kPremix, &kPostmixControl, &kPostmix};

// The postmix record's regions in record order, each with the step that fills it.
inline constexpr RegionLayout kPostmixRegions[] = {
    {"control", offsetof(Postmix_, ctrl), sizeof(Postmix_::ctrl), QUILL_STEP_CONTROL},
    {"multich_room", kQuillMultichRoomOffset, kQuillMultichRoomBytes, QUILL_STEP_MULTICHANNEL_ROOM},
    {"front_room", kQuillFrontRoomOffset, kQuillFrontRoomBytes, QUILL_STEP_FRONT_ROOM},
    {"wide_room", kQuillWideRoomOffset, kQuillWideRoomBytes, QUILL_STEP_WIDE_ROOM},
    {"hpeq", kQuillHpeqOffset, kQuillHpeqBytes, QUILL_STEP_HEADPHONE_EQ},
    {"hpf", offsetof(Postmix_, hpf), sizeof(Postmix_::hpf), QUILL_STEP_OUTPUT_HPF},
    {"aeq", offsetof(Postmix_, aeq), sizeof(Postmix_::aeq), QUILL_STEP_AEQ},
    {"brio_hpf", offsetof(Postmix_, brio_hpf), sizeof(Postmix_::brio_hpf), QUILL_STEP_BRIO_HPF},
    {"brio_xover", offsetof(Postmix_, brio_xover), sizeof(Postmix_::brio_xover), QUILL_STEP_BRIO_CROSSOVER},
    {"thumpx", offsetof(Postmix_, thumpx), sizeof(Postmix_::thumpx), QUILL_STEP_THUMPX},
    {"mbhl_coef", offsetof(Postmix_, mbhl), sizeof(Postmix_::mbhl), QUILL_STEP_MBHL_CROSSOVER},
    {"dist_prev", offsetof(Postmix_, dist_prev), sizeof(Postmix_::dist_prev), QUILL_STEP_DISTORTION_PREVENTION},
};

// ---- Look-ups ------------------------------------------------------------------

// By name; "coeffs", the old name of the postmix record, is accepted. Null
// when no record has that name.
constexpr const RecordLayout* FindRecord(std::string_view name) {
  if (name == "coeffs") return &kPostmix;
  for (const RecordLayout* r : kRecords) {
    if (name == r->name) return r;
  }
  return nullptr;
}

// The record of exactly `size` bytes, or null.
constexpr const RecordLayout* RecordForSize(std::size_t size) {
  for (const RecordLayout* r : kRecords) {
    if (r->size == size) return r;
  }
  return nullptr;
}

constexpr const FieldLayout* FindField(const RecordLayout& record, std::string_view name) {
  for (const FieldLayout& f : record) {
    if (name == f.name) return &f;
  }
  return nullptr;
}

// Element count of a named field; 0 when there is none, so that
// static_assert(Capacity(...) > 0) catches a misspelt name at compile time.
// (No pointer compared with null here: GCC does not fold that in a constant
// expression under AddressSanitizer.)
constexpr std::uint32_t Capacity(const RecordLayout& record, std::string_view name) {
  for (const FieldLayout& f : record) {
    if (name == f.name) return f.count;
  }
  return 0;
}

// The region a driver step writes (every step has one).
constexpr const RegionLayout* RegionForStep(int step) {
  for (const RegionLayout& r : kPostmixRegions) {
    if (r.step == step) return &r;
  }
  return nullptr;
}

// The names every record may be given, for messages: "premix, postmix-control or postmix".
inline constexpr const char kRecordNames[] = "premix, postmix-control or postmix";

}  // namespace qh_catalogue

#endif  // QUILLHERON_CATALOGUE_RECORD_LAYOUT_H_
