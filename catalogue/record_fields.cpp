#include "record_fields.h"

#include "quillHeronCoeffRecords.h"

namespace heron_tool {
namespace {

using Fields = std::vector<RecordField>;

#define QH_FIELD(out, base, prefix, T, member, type, count) \
  (out)->push_back({std::string(prefix) + #member, (base) + offsetof(T, member), type, count})

void SteadyFields(Fields* f, size_t base, const std::string& p) {
  using T = _quillSteadyApiCtrl;
  QH_FIELD(f, base, p, T, enable, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, intensity_level, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, mode, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, input_gain, FieldType::kI16, 1);
  QH_FIELD(f, base, p, T, output_gain, FieldType::kI16, 1);
  QH_FIELD(f, base, p, T, lkfs_gain, FieldType::kI16, 1);
}

void Enhance2Fields(Fields* f, size_t base, const std::string& p) {
  using T = _quillEnhance2ApiCtrl;
  QH_FIELD(f, base, p, T, mode, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, mv_downstream, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, master_volume, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, target_spl, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, system_spl, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, system_calib_level, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, hi_freq_compensation, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, lo_freq_compensation, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, htest, FieldType::kI32, 7);
  QH_FIELD(f, base, p, T, ref_htest, FieldType::kI32, 7);
  QH_FIELD(f, base, p, T, content_dr, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, max_lf_boost, FieldType::kI32, 1);
}

void PremixFields(Fields* f) {
  using T = _quillHeronPremixApiCtrl;
  SteadyFields(f, offsetof(T, steady), "steady.");
  Enhance2Fields(f, offsetof(T, enhance2), "enhance2.");
  QH_FIELD(f, 0, "", T, output_device, FieldType::kI32, 1);
  QH_FIELD(f, 0, "", T, stream_gain, FieldType::kI32, 1);
  QH_FIELD(f, 0, "", T, bypass_mode, FieldType::kI32, 5);
  QH_FIELD(f, 0, "", T, stream_gain_downstream, FieldType::kI32, 1);
  QH_FIELD(f, 0, "", T, headroom_limit, FieldType::kI32, 1);
  QH_FIELD(f, 0, "", T, headroom_ratio, FieldType::kI32, 1);
}

void BrioFields(Fields* f, size_t base, const std::string& p) {
  {
    using T = _quillOva3dApiCtrl;
    const size_t b = base + offsetof(_quillBrioApiCtrl, ova3d);
    const std::string q = p + "ova3d.";
    QH_FIELD(f, b, q, T, enable, FieldType::kI32, 1);
    QH_FIELD(f, b, q, T, mode, FieldType::kI32, 1);
    QH_FIELD(f, b, q, T, hp_enable, FieldType::kI32, 1);
    QH_FIELD(f, b, q, T, hi_bit_rate, FieldType::kI32, 1);
    QH_FIELD(f, b, q, T, input_gain, FieldType::kI16, 1);
    QH_FIELD(f, b, q, T, output_gain, FieldType::kI16, 1);
    QH_FIELD(f, b, q, T, bypass_gain, FieldType::kI16, 1);
    QH_FIELD(f, b, q, T, space_level, FieldType::kI16, 1);
    QH_FIELD(f, b, q, T, center_level, FieldType::kI16, 1);
  }
  {
    using T = _quillVistaApiCtrl;
    const size_t b = base + offsetof(_quillBrioApiCtrl, vista);
    const std::string q = p + "vista.";
    QH_FIELD(f, b, q, T, enable, FieldType::kI32, 1);
    QH_FIELD(f, b, q, T, hs_hpf_enable, FieldType::kI32, 1);
    QH_FIELD(f, b, q, T, input_gain, FieldType::kI16, 1);
    QH_FIELD(f, b, q, T, bypass_gain, FieldType::kI16, 1);
    QH_FIELD(f, b, q, T, center_boost_level, FieldType::kI16, 1);
    QH_FIELD(f, b, q, T, speaker_separation_level, FieldType::kI16, 1);
  }
  {
    using T = _quillTHUMPxApiCtrl;
    const size_t b = base + offsetof(_quillBrioApiCtrl, thumpx);
    const std::string q = p + "thumpx.";
    QH_FIELD(f, b, q, T, enable, FieldType::kI32, 1);
    QH_FIELD(f, b, q, T, mode, FieldType::kI32, 1);
    QH_FIELD(f, b, q, T, bass_level, FieldType::kI32, 1);
    QH_FIELD(f, b, q, T, speaker_size, FieldType::kI32, 1);
    QH_FIELD(f, b, q, T, dynamics, FieldType::kI32, 1);
    QH_FIELD(f, b, q, T, input_gain, FieldType::kI16, 1);
  }
  using T = _quillBrioApiCtrl;
  QH_FIELD(f, base, p, T, enable, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, enhance_mode, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, crossover_enable, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, hpf_enable, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, def_enable, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, focus_enable, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, input_gain, FieldType::kI16, 1);
  QH_FIELD(f, base, p, T, output_gain, FieldType::kI16, 1);
  QH_FIELD(f, base, p, T, bypass_gain, FieldType::kI16, 1);
  QH_FIELD(f, base, p, T, def_level, FieldType::kI16, 1);
  QH_FIELD(f, base, p, T, focus_level, FieldType::kI16, 1);
}

void PostmixFields(Fields* f, size_t base) {
  using T = _quillHeronPostmixApiCtrl;
  const std::string p;
  QH_FIELD(f, base, p, T, output_device, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, postmix_gain, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, hpf_enable, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, limiter, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, lyra_stereo_mode, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, lyra_multi_ch, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, lyra_input_gain, FieldType::kI32, 6);
  QH_FIELD(f, base, p, T, bypass_hpeq, FieldType::kI32, 6);
  QH_FIELD(f, base, p, T, aeq_enable, FieldType::kI32, 6);
  QH_FIELD(f, base, p, T, dc_cut_enable, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, bypass_mode, FieldType::kI32, 5);
  QH_FIELD(f, base, p, T, limiter_master_vol, FieldType::kI32, 1);
  QH_FIELD(f, base, p, T, bypass_gain, FieldType::kI32, 1);
  BrioFields(f, base + offsetof(T, brio), "brio.");
  {
    using G = _quillGeq10bApiCtrl;
    const size_t b = base + offsetof(T, geq10b);
    QH_FIELD(f, b, "geq10b.", G, enable, FieldType::kI32, 1);
    QH_FIELD(f, b, "geq10b.", G, input_gain, FieldType::kI16, 1);
    QH_FIELD(f, b, "geq10b.", G, band_gain, FieldType::kI16, 10);
    QH_FIELD(f, b, "geq10b.", G, reserved, FieldType::kI16, 1);
  }
  {
    using A = _quillAeqApiCtrl;
    const size_t b = base + offsetof(T, aeq);
    QH_FIELD(f, b, "aeq.", A, enable, FieldType::kI32, 1);
    QH_FIELD(f, b, "aeq.", A, input_gain, FieldType::kI16, 1);
    QH_FIELD(f, b, "aeq.", A, output_gain, FieldType::kI16, 1);
    QH_FIELD(f, b, "aeq.", A, bypass_gain, FieldType::kI16, 1);
  }
  Enhance2Fields(f, base + offsetof(T, enhance2), "enhance2.");
  {
    using L = _quillLyraApiCtrl;
    const size_t b = base + offsetof(T, lyra);
    QH_FIELD(f, b, "lyra.", L, downmix, FieldType::kI32, 1);
    QH_FIELD(f, b, "lyra.", L, super_stereo, FieldType::kI32, 1);
    QH_FIELD(f, b, "lyra.", L, input_gain, FieldType::kI32, 1);
    QH_FIELD(f, b, "lyra.", L, bypass_reverb, FieldType::kI32, 1);
    QH_FIELD(f, b, "lyra.", L, bypass_conv, FieldType::kI32, 1);
    QH_FIELD(f, b, "lyra.", L, bypass_hpeq, FieldType::kI32, 1);
    QH_FIELD(f, b, "lyra.", L, super_stereo_coef, FieldType::kI32, 4);
  }
  {
    using M = quillMBHLApiCtrls;
    const size_t b = base + offsetof(T, mbhl);
    const std::string q = "mbhl.";
    QH_FIELD(f, b, q, M, enable, FieldType::kI32, 1);
    QH_FIELD(f, b, q, M, output_gain, FieldType::kI16, 1);
    QH_FIELD(f, b, q, M, anti_clip_level, FieldType::kI16, 1);
    QH_FIELD(f, b, q, M, com_attack, FieldType::kI32, 1);
    QH_FIELD(f, b, q, M, low_decay, FieldType::kI32, 1);
    QH_FIELD(f, b, q, M, mid_decay, FieldType::kI32, 1);
    QH_FIELD(f, b, q, M, high_decay, FieldType::kI32, 1);
    QH_FIELD(f, b, q, M, low_ratio, FieldType::kI32, 1);
    QH_FIELD(f, b, q, M, mid_ratio, FieldType::kI32, 1);
    QH_FIELD(f, b, q, M, high_ratio, FieldType::kI32, 1);
    QH_FIELD(f, b, q, M, mode, FieldType::kI32, 1);
    QH_FIELD(f, b, q, M, boost, FieldType::kI32, 1);
    QH_FIELD(f, b, q, M, low_cross, FieldType::kI32, 1);
    QH_FIELD(f, b, q, M, mid_cross, FieldType::kI32, 1);
    QH_FIELD(f, b, q, M, low_thresh, FieldType::kI32, 1);
    QH_FIELD(f, b, q, M, mid_thresh, FieldType::kI32, 1);
    QH_FIELD(f, b, q, M, high_thresh, FieldType::kI32, 1);
    QH_FIELD(f, b, q, M, low_makeup, FieldType::kI32, 1);
    QH_FIELD(f, b, q, M, mid_makeup, FieldType::kI32, 1);
    QH_FIELD(f, b, q, M, high_makeup, FieldType::kI32, 1);
    QH_FIELD(f, b, q, M, dist_prev_enable, FieldType::kI32, 1);
  }
}

void RoomFields(Fields* f, size_t base, const std::string& p, int taps) {
  using R = _quillHpcLyraRmData;
  QH_FIELD(f, base, p, R, uuid, FieldType::kUuid, 1);
  QH_FIELD(f, base, p, R, channel_mask, FieldType::kU32, 1);
  QH_FIELD(f, base, p, R, num_pairs, FieldType::kU32, 1);
  QH_FIELD(f, base, p, R, brir_length, FieldType::kU32, 1);
  QH_FIELD(f, base, p, R, sample_rate, FieldType::kI32, 1);
  QH_FIELD(f, base, p, R, reverb_gain, FieldType::kI32, 1);
  QH_FIELD(f, base, p, R, reverb_cut, FieldType::kU32, 1);
  f->push_back({p + "coeffs", base + sizeof(R), FieldType::kI16, taps});
}

void DistprevFields(Fields* f, size_t base, const std::string& p) {
  using D = quillMBHLDistprevCoeff;
  QH_FIELD(f, base, p, D, sense_band_count, FieldType::kI32, 1);
  QH_FIELD(f, base, p, D, sense_band_sos_count, FieldType::kI32, 6);
  QH_FIELD(f, base, p, D, sense_band_coeffs, FieldType::kI32, 144);
  QH_FIELD(f, base, p, D, sense_band_coeffs_float32, FieldType::kF32, 108);
  QH_FIELD(f, base, p, D, notch_mode, FieldType::kI32, 1);
  QH_FIELD(f, base, p, D, notch_threshold_db, FieldType::kI32, 1);
  QH_FIELD(f, base, p, D, notch_sensitivity_db, FieldType::kI32, 1);
  QH_FIELD(f, base, p, D, notch_band_count, FieldType::kI32, 1);
  QH_FIELD(f, base, p, D, notch_band_attenuation_max, FieldType::kI32, 6);
  QH_FIELD(f, base, p, D, notch_band_gain_scalars, FieldType::kI32, 6);
  QH_FIELD(f, base, p, D, notch_band_sos_count, FieldType::kI32, 6);
  QH_FIELD(f, base, p, D, notch_smoothers, FieldType::kI32, 9);
  QH_FIELD(f, base, p, D, notch_band_coeffs, FieldType::kI32, 144);
  QH_FIELD(f, base, p, D, notch_band_coeffs_float32, FieldType::kF32, 108);
}

void CoeffsFields(Fields* f) {
  using C = _quillHeronPostmixApiCtrlCoeffs;
  PostmixFields(f, offsetof(C, ctrl));
  RoomFields(f, offsetof(C, multich_room), "multich_room.", kQuillMultichRoomTaps);
  RoomFields(f, offsetof(C, front_room), "front_room.", kQuillSideRoomTaps);
  RoomFields(f, offsetof(C, wide_room), "wide_room.", kQuillSideRoomTaps);
  {
    using H = _quillHpcLyraHpeqData;
    const size_t b = offsetof(C, hpeq);
    QH_FIELD(f, b, "hpeq.", H, uuid, FieldType::kUuid, 1);
    QH_FIELD(f, b, "hpeq.", H, sample_rate, FieldType::kI32, 1);
    QH_FIELD(f, b, "hpeq.", H, ihpir_length, FieldType::kU32, 1);
    f->push_back({"hpeq.coeffs", b + sizeof(H), FieldType::kI16, static_cast<int>(kQuillHpeqTaps)});
  }
  {
    using H = _quillHeronHpfApiCoeff;
    const size_t b = offsetof(C, hpf);
    QH_FIELD(f, b, "hpf.", H, order, FieldType::kU32, 1);
    QH_FIELD(f, b, "hpf.", H, coeffs, FieldType::kI32, 20);
  }
  for (int bank = 0; bank < 2; ++bank) {
    using B = _quillAeqApiBankCoeff;
    const size_t b = offsetof(C, aeq) + bank * sizeof(B);
    const std::string p = "aeq.bank[" + std::to_string(bank) + "].";
    QH_FIELD(f, b, p, B, iir_order, FieldType::kI32, 1);
    QH_FIELD(f, b, p, B, fir_order, FieldType::kI32, 1);
    QH_FIELD(f, b, p, B, iir_coeffs, FieldType::kI32, 74);
    QH_FIELD(f, b, p, B, fir_coeffs, FieldType::kI32, 260);
  }
  {
    using H = _quillBrioHpfApiCoeff;
    const size_t b = offsetof(C, brio_hpf);
    QH_FIELD(f, b, "brio_hpf.", H, order, FieldType::kU32, 1);
    QH_FIELD(f, b, "brio_hpf.", H, coeffs, FieldType::kI16, 20);
  }
  {
    using X = _quillBrioXoverApiCoeff;
    const size_t b = offsetof(C, brio_xover);
    QH_FIELD(f, b, "brio_xover.", X, order, FieldType::kU32, 1);
    QH_FIELD(f, b, "brio_xover.", X, lpf_coeffs, FieldType::kI16, 14);
    QH_FIELD(f, b, "brio_xover.", X, hpf_coeffs, FieldType::kI16, 14);
  }
  QH_FIELD(f, offsetof(C, thumpx), "thumpx.", _quillTHUMPXApiCoeff, coeffs, FieldType::kI32, 63);
  QH_FIELD(f, offsetof(C, mbhl), "mbhl_coef.", _quillMBHLApiCoeff, low_cross_coeffs, FieldType::kI32, 12);
  QH_FIELD(f, offsetof(C, mbhl), "mbhl_coef.", _quillMBHLApiCoeff, mid_cross_coeffs, FieldType::kI32, 12);
  for (int i = 0; i < 2; ++i) {
    DistprevFields(f, offsetof(C, dist_prev) + i * sizeof(quillMBHLDistprevCoeff),
                   "dist_prev[" + std::to_string(i) + "].");
  }
}

#undef QH_FIELD

}  // namespace

bool ParseRecordKind(const std::string& name, RecordKind* kind) {
  if (name == "premix") *kind = RecordKind::kPremix;
  else if (name == "postmix") *kind = RecordKind::kPostmix;
  else if (name == "coeffs") *kind = RecordKind::kCoeffs;
  else return false;
  return true;
}

size_t RecordSize(RecordKind kind) {
  switch (kind) {
    case RecordKind::kPremix: return sizeof(_quillHeronPremixApiCtrl);
    case RecordKind::kPostmix: return sizeof(_quillHeronPostmixApiCtrl);
    case RecordKind::kCoeffs: return sizeof(_quillHeronPostmixApiCtrlCoeffs);
  }
  return 0;
}

const char* RecordKindName(RecordKind kind) {
  switch (kind) {
    case RecordKind::kPremix: return "premix";
    case RecordKind::kPostmix: return "postmix";
    case RecordKind::kCoeffs: return "coeffs";
  }
  return "?";
}

bool RecordKindForSize(size_t size, RecordKind* kind) {
  for (RecordKind k : {RecordKind::kPremix, RecordKind::kPostmix, RecordKind::kCoeffs}) {
    if (RecordSize(k) == size) {
      *kind = k;
      return true;
    }
  }
  return false;
}

std::vector<RecordField> RecordFields(RecordKind kind) {
  Fields f;
  switch (kind) {
    case RecordKind::kPremix: PremixFields(&f); break;
    case RecordKind::kPostmix: PostmixFields(&f, 0); break;
    case RecordKind::kCoeffs: CoeffsFields(&f); break;
  }
  return f;
}

}  // namespace heron_tool
