// Coefficient loaders of the postmix filters: output high-pass, stereo-enhancer
// high-pass and crossover, bass enhancement and limiter crossovers. Each table
// list is scanned by its own rule; those rules differ on purpose.
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <iterator>

#include "QuillPbConvert_Heron_v1_1.h"
#include "coefficient_io.h"
#include "native_io.h"
#include "postmix_steps.h"
#include "quillHeronCoeffRecords.h"
#include "quillheron_filterdesign.h"

namespace quillheron {
namespace {

constexpr int kOk = QuillHeron_v1_1_Pb::kOk;
constexpr int kFail = QuillHeron_v1_1_Pb::kCoefficientFailure;

// Record-relative byte offsets of the coefficient regions' fields.
using Coeffs = _quillHeronPostmixApiCtrlCoeffs;
constexpr std::size_t kHpfOrder = kQuillHpfCoeffOffset + offsetof(_quillHeronHpfApiCoeff, order);
constexpr std::size_t kHpfCoeffs = kQuillHpfCoeffOffset + offsetof(_quillHeronHpfApiCoeff, coeffs);
constexpr std::size_t kHpfCapacity = std::size(_quillHeronHpfApiCoeff{}.coeffs);
constexpr std::size_t kBrioHpfOrder = kQuillBrioHpfCoeffOffset + offsetof(_quillBrioHpfApiCoeff, order);
constexpr std::size_t kBrioHpfCoeffs = kQuillBrioHpfCoeffOffset + offsetof(_quillBrioHpfApiCoeff, coeffs);
constexpr std::size_t kBrioHpfCapacity = std::size(_quillBrioHpfApiCoeff{}.coeffs);
constexpr std::size_t kXoverOrder = kQuillBrioXoverCoeffOffset + offsetof(_quillBrioXoverApiCoeff, order);
constexpr std::size_t kXoverLpf = kQuillBrioXoverCoeffOffset + offsetof(_quillBrioXoverApiCoeff, lpf_coeffs);
constexpr std::size_t kXoverHpf = kQuillBrioXoverCoeffOffset + offsetof(_quillBrioXoverApiCoeff, hpf_coeffs);
constexpr std::size_t kXoverCapacity = std::size(_quillBrioXoverApiCoeff{}.lpf_coeffs);
constexpr std::size_t kThumpxCoeffs = kQuillThumpxCoeffOffset;
constexpr std::size_t kThumpxCapacity = std::size(_quillTHUMPXApiCoeff{}.coeffs);
constexpr std::size_t kMbhlLow = kQuillMbhlCoeffOffset + offsetof(_quillMBHLApiCoeff, low_cross_coeffs);
constexpr std::size_t kMbhlMid = kQuillMbhlCoeffOffset + offsetof(_quillMBHLApiCoeff, mid_cross_coeffs);
constexpr std::size_t kMbhlCapacity = std::size(_quillMBHLApiCoeff{}.low_cross_coeffs);

static_assert(kHpfCapacity == 20 && kBrioHpfCapacity == 20 && kXoverCapacity == 14 &&
                  kThumpxCapacity == 63 && kMbhlCapacity == 12,
              "coefficient capacities");

// The reserved argument of the bass designer: the bit pattern of 1.0f.
constexpr int kThumpxReserved = 0x3F800000;
// Scratch for the bass designer; its contents are not kept.
constexpr std::size_t kThumpxWorkBytes = 864;

// double -> float as the hardware rounds it, without the undefined behaviour
// of converting a finite value beyond the float range.
float narrowToFloat(double v) {
  if (std::isfinite(v) && std::fabs(v) > static_cast<double>(FLT_MAX)) {
    // Values within half an ulp of FLT_MAX still round to it.
    const double limit = static_cast<double>(FLT_MAX) + std::ldexp(1.0, 103);
    const float mag = std::fabs(v) < limit ? FLT_MAX : HUGE_VALF;
    return v < 0 ? -mag : mag;
  }
  return static_cast<float>(v);
}

void copyTable32(Coeffs& record, std::size_t offset, const CoefTable& table, std::size_t capacity) {
  const std::size_t n = copyCount(static_cast<std::size_t>(table.coeff_32_size()), table.coeff_32_size(), capacity);
  storeInt32s(&record, offset, table.coeff_32(), n);
}

void copyTable16(Coeffs& record, std::size_t offset, const CoefTable& table, std::size_t capacity) {
  const std::size_t n = copyCount(static_cast<std::size_t>(table.coeff_16_size()), table.coeff_16_size(), capacity);
  storeInt16s(&record, offset, table.coeff_16(), n);
}

// Every table of the rate with values overwrites the branch: the last one
// wins. Returns the number of values of the table that won (0: none).
int loadCrossoverBranch(Coeffs& record, std::size_t offset, const CoefTableList& tables, int rate) {
  int copied = 0;
  for (const CoefTable& table : tables) {
    if (table.samplerate() == rate && table.coeff_16_size() > 0) {
      copyTable16(record, offset, table, kXoverCapacity);
      copied = std::min(table.coeff_16_size(), static_cast<int>(kXoverCapacity));
    }
  }
  return copied;
}

}  // namespace


// Each table list is scanned by its own rule (see each function).
template <class Note>
void loadHeronHpf(const Postmix& postmix, Coeffs& record, int rate, Note noteArg) {
  LoadNote* const note = asNote(noteArg);
  const quill::pb::coef::Hpf& hpf = postmix.hpf_coef();
  if (hpf.has_order()) native::storeU32(&record, kHpfOrder, static_cast<std::uint32_t>(hpf.order()));
  noteReason(note, QUILL_REASON_NO_TABLE_FOR_RATE);
  for (const CoefTable& table : hpf.coeffs()) {
    if (table.samplerate() != rate) continue;
    // Only the first table of the rate is looked at; too long a table is ignored.
    if (static_cast<std::size_t>(table.coeff_32_size()) <= kHpfCapacity) {
      copyTable32(record, kHpfCoeffs, table, kHpfCapacity);
      noteSource(note, QUILL_SOURCE_TABLE, rate, table.coeff_32_size());
      noteReason(note, QUILL_REASON_NONE);
    } else {
      noteReason(note, QUILL_REASON_TOO_LONG);
    }
    return;
  }
}

template <class Note>
int loadBrioHpf(const Postmix& postmix, Coeffs& record, int rate, Note noteArg) {
  LoadNote* const note = asNote(noteArg);
  const quill::pb::coef::BrioHpf& hpf = postmix.brio_hpf_coef();
  native::storeU32(&record, kBrioHpfOrder, static_cast<std::uint32_t>(hpf.order()));
  if (hpf.order() == 0) {
    noteReason(note, QUILL_REASON_ORDER_ZERO);
    return kOk;
  }
  noteReason(note, QUILL_REASON_NO_TABLE_FOR_RATE);
  if (hpf.hpf_coeffs_size() == 0) return kFail;
  for (const CoefTable& table : hpf.hpf_coeffs()) {
    // A table of the rate that is too long is passed over; the scan goes on.
    if (table.samplerate() == rate && static_cast<std::size_t>(table.coeff_16_size()) <= kBrioHpfCapacity) {
      copyTable16(record, kBrioHpfCoeffs, table, kBrioHpfCapacity);
      noteSource(note, QUILL_SOURCE_TABLE, rate, table.coeff_16_size());
      noteReason(note, QUILL_REASON_NONE);
      return kOk;
    }
  }
  return kFail;
}

template <class Note>
int loadBrioCrossover(const Postmix& postmix, Coeffs& record, int rate, Note noteArg) {
  LoadNote* const note = asNote(noteArg);
  const quill::pb::coef::BrioXover& xover = postmix.brio_xover_coef();
  native::storeU32(&record, kXoverOrder, static_cast<std::uint32_t>(xover.order()));
  const int low = loadCrossoverBranch(record, kXoverLpf, xover.lpf_coeffs(), rate);
  const int high = loadCrossoverBranch(record, kXoverHpf, xover.hpf_coeffs(), rate);
  if (note != nullptr) {
    if (low + high > 0) noteSource(note, QUILL_SOURCE_TABLE, rate, low + high);
    else noteReason(note, QUILL_REASON_NO_TABLE_FOR_RATE);
  }
  return kOk;
}

template <class Note>
int loadThumpx(const HeronSettings& settings, Coeffs& record, int rate, Note noteArg) {
  LoadNote* const note = asNote(noteArg);
  const quill::pb::coef::Thumpx& thumpx = settings.postmix().thumpx_coef();
  if (thumpx.coeffs_size() > 0) {
    // Strict: any table of another rate fails the load, even when a table of
    // the rate has been copied (the last such table wins).
    int result = kOk;
    int copied = 0;
    for (const CoefTable& table : thumpx.coeffs()) {
      if (table.samplerate() != rate) {
        result = kFail;
      } else {
        copyTable32(record, kThumpxCoeffs, table, kThumpxCapacity);
        copied = std::min(table.coeff_32_size(), static_cast<int>(kThumpxCapacity));
      }
    }
    noteSource(note, QUILL_SOURCE_TABLE, rate, copied);
    if (result != kOk) noteReason(note, QUILL_REASON_TABLE_OF_OTHER_RATE);
    return result;
  }

  if (!thumpx.has_filterdesignparams()) {
    noteReason(note, QUILL_REASON_NO_DESIGN_PARAMETERS);
    return kFail;
  }
  const quill::pb::tech::ThumpxFilterDesignParameters& p = thumpx.filterdesignparams();
  noteSource(note, QUILL_SOURCE_DESIGN, p.sampling_rate(), 0);
  if (p.sampling_rate() != rate) {
    noteReason(note, QUILL_REASON_DESIGN_RATE);
    return kFail;
  }
  // Zeroed: the designer quantises three floats it never writes, so the
  // result depends on the scratch contents unless they are fixed.
  alignas(8) unsigned char work[kThumpxWorkBytes] = {};
  const int designed = OVA_THUMPX_FilterDesignFxp32(
      p.custom_speaker_size(), narrowToFloat(p.bass_ctrl()), narrowToFloat(p.hp_ratio()),
      narrowToFloat(p.ext_bass()), rate, record.thumpx.coeffs, narrowToFloat(p.lp_ratio()),
      narrowToFloat(p.pre_lp_freq()), narrowToFloat(p.harm_hp_freq()), narrowToFloat(p.clip_level()),
      kThumpxReserved, work);
  if (designed < 0) {
    noteReason(note, QUILL_REASON_DESIGNER_REJECTED);
    return kFail;
  }
  noteSource(note, QUILL_SOURCE_DESIGN, p.sampling_rate(), static_cast<int>(kThumpxCapacity));
  return kOk;
}

template <class Note>
int loadMbhlCrossovers(const HeronSettings& settings, Coeffs& record, int rate, Note noteArg) {
  LoadNote* const note = asNote(noteArg);
  const Postmix& postmix = settings.postmix();
  if (postmix.has_mbhl_coef()) {
    const quill::pb::coef::Mbhl& mbhl = postmix.mbhl_coef();
    noteSource(note, QUILL_SOURCE_TABLE, rate, 0);
    if (!mbhl.has_low_cross_coeffs() || !mbhl.has_mid_cross_coeffs()) {
      noteReason(note, QUILL_REASON_INCOMPLETE);
      return kFail;
    }
    int result = kFail;
    if (mbhl.low_cross_coeffs().samplerate() == rate) {
      copyTable32(record, kMbhlLow, mbhl.low_cross_coeffs(), kMbhlCapacity);
      if (note != nullptr) note->count += std::min(mbhl.low_cross_coeffs().coeff_32_size(), static_cast<int>(kMbhlCapacity));
      result = kOk;
    }
    if (mbhl.mid_cross_coeffs().samplerate() != rate) result = kFail;
    else {
      copyTable32(record, kMbhlMid, mbhl.mid_cross_coeffs(), kMbhlCapacity);
      if (note != nullptr) note->count += std::min(mbhl.mid_cross_coeffs().coeff_32_size(), static_cast<int>(kMbhlCapacity));
    }
    if (result != kOk) noteReason(note, QUILL_REASON_NO_TABLE_FOR_RATE);
    return result;
  }

  // Design from the crossover frequencies; their schema defaults do not count.
  const quill::pb::tech::DesignerParameters& designer = settings.designerparameters();
  const quill::pb::tech::MbhlCustomCoeffParams& p = designer.mbhl_design_params();
  if (!designer.has_mbhl_design_params() || !p.has_custom_low_cross() || !p.has_custom_mid_cross()) {
    noteReason(note, QUILL_REASON_NO_DESIGN_PARAMETERS);
    return kFail;
  }
  noteSource(note, QUILL_SOURCE_DESIGN, p.sampling_rate(), 0);
  if (p.sampling_rate() != rate) {
    noteReason(note, QUILL_REASON_DESIGN_RATE);
    return kFail;
  }
  if (QUILL_McDyn_FilterDesignFxp32(static_cast<float>(p.custom_low_cross()), rate,
                                    record.mbhl.low_cross_coeffs) < 0 ||
      QUILL_McDyn_FilterDesignFxp32(static_cast<float>(p.custom_mid_cross()), rate,
                                    record.mbhl.mid_cross_coeffs) < 0) {
    noteReason(note, QUILL_REASON_DESIGNER_REJECTED);
    return kFail;
  }
  noteSource(note, QUILL_SOURCE_DESIGN, p.sampling_rate(), static_cast<int>(2 * kMbhlCapacity));
  return kOk;
}

#define QH_LOADERS_FOR(Note)                                                                 \
  template void loadHeronHpf(const Postmix&, Coeffs&, int, Note);                          \
  template int loadBrioHpf(const Postmix&, Coeffs&, int, Note);                            \
  template int loadBrioCrossover(const Postmix&, Coeffs&, int, Note);                      \
  template int loadThumpx(const HeronSettings&, Coeffs&, int, Note);                       \
  template int loadMbhlCrossovers(const HeronSettings&, Coeffs&, int, Note);
QH_LOADERS_FOR(NoNote)
QH_LOADERS_FOR(LoadNote*)
#undef QH_LOADERS_FOR

}  // namespace quillheron

// This file only defines converter members over the functions above.
using namespace quillheron;

void QuillHeron_v1_1_Pb::LoadHeronHPF(const Postmix& postmix,
                                      _quillHeronPostmixApiCtrlCoeffs& record) const {
  loadHeronHpf(postmix, record, sampleRate_, NoNote{});
}

int QuillHeron_v1_1_Pb::LoadBrioHPF(const Postmix& postmix,
                                    _quillHeronPostmixApiCtrlCoeffs& record) const {
  return loadBrioHpf(postmix, record, sampleRate_, NoNote{});
}

int QuillHeron_v1_1_Pb::LoadBrioCrossover(const Postmix& postmix,
                                          _quillHeronPostmixApiCtrlCoeffs& record) const {
  return loadBrioCrossover(postmix, record, sampleRate_, NoNote{});
}

int QuillHeron_v1_1_Pb::PopulateTHUMPXCoeff(const HeronSettings& settings,
                                            _quillHeronPostmixApiCtrlCoeffs& record) const {
  return loadThumpx(settings, record, sampleRate_, NoNote{});
}

int QuillHeron_v1_1_Pb::PopulateMBHLCoeff(const HeronSettings& settings,
                                          _quillHeronPostmixApiCtrlCoeffs& record) const {
  return loadMbhlCrossovers(settings, record, sampleRate_, NoNote{});
}
