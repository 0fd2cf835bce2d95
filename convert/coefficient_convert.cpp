// Reverse converters: native coefficient regions back into coefficient
// messages of the postmix. Each adds one CoefTable per native array at the
// converter's rate, with every capacity element (trailing zeros included),
// and marks rebuilt messages with the null identifier.
#include <cstddef>
#include <iterator>
#include <type_traits>

#include "QuillPbConvert_Heron_v1_1.h"
#include "coefficient_distprev_layout.h"
#include "coefficient_io.h"
#include "native_io.h"
#include "quillHeronCoeffRecords.h"

namespace quillheron {
namespace {

using quill::pb::coef::FilterBank;

// A new table at `rate` in a list reached through `add`.
template <class Msg>
CoefTable* addTable(Msg* msg, CoefTable* (Msg::*add)(), int rate) {
  CoefTable* table = (msg->*add)();
  table->set_samplerate(rate);
  return table;
}

// The acoustic EQ's four arrays: bank, order field, coefficient array.
struct AeqRow {
  int bank;
  void (FilterBank::*setOrder)(std::int32_t);
  CoefTable* (FilterBank::*addTable)();
  std::size_t orderOffset;  // inside _quillAeqApiBankCoeff
  std::size_t coeffOffset;
  std::size_t count;
};

constexpr std::size_t kIirCount = std::size(_quillAeqApiBankCoeff{}.iir_coeffs);
constexpr std::size_t kFirCount = std::size(_quillAeqApiBankCoeff{}.fir_coeffs);

const AeqRow kAeqRows[] = {
    {0, &FilterBank::set_iirorder, &FilterBank::add_iircoefs, offsetof(_quillAeqApiBankCoeff, iir_order),
     offsetof(_quillAeqApiBankCoeff, iir_coeffs), kIirCount},
    {0, &FilterBank::set_firorder, &FilterBank::add_fircoefs, offsetof(_quillAeqApiBankCoeff, fir_order),
     offsetof(_quillAeqApiBankCoeff, fir_coeffs), kFirCount},
    {1, &FilterBank::set_iirorder, &FilterBank::add_iircoefs, offsetof(_quillAeqApiBankCoeff, iir_order),
     offsetof(_quillAeqApiBankCoeff, iir_coeffs), kIirCount},
    {1, &FilterBank::set_firorder, &FilterBank::add_fircoefs, offsetof(_quillAeqApiBankCoeff, fir_order),
     offsetof(_quillAeqApiBankCoeff, fir_coeffs), kFirCount},
};

// A stereo acoustic EQ: front left and front right.
constexpr std::int32_t kAeqChannelMask = 3;

template <class Msg, class Row>
void appendArrays(const Row& rows, const quillMBHLDistprevCoeff& record, Msg* msg) {
  for (const auto& row : rows) {
    const auto* base = &record;
    auto* dst = (msg->*row.mut)();
    if constexpr (std::is_same<decltype(dst), Int32List*>::value) {
      appendInt32s(dst, base, row.offset, row.capacity);
    } else {
      appendFloats(dst, base, row.offset, row.capacity);
    }
  }
}

}  // namespace
}  // namespace quillheron

// This file only defines converter members over the helpers above.
using namespace quillheron;

void QuillHeron_v1_1_Pb::convert(const _quillBrioHpfApiCoeff& coeff, HeronSettings* settings) const {
  quill::pb::coef::BrioHpf* hpf = settings->mutable_postmix()->mutable_brio_hpf_coef();
  hpf->set_uuid(nullGuid);
  hpf->clear_cutoff();
  hpf->set_order(native::loadI32(&coeff, offsetof(_quillBrioHpfApiCoeff, order)));
  // Written to coeff_32 although the loader reads coeff_16: the engine's
  // contract is asymmetric here.
  CoefTable* table = addTable(hpf, &quill::pb::coef::BrioHpf::add_hpf_coeffs, sampleRate_);
  appendInt16s(table->mutable_coeff_32(), &coeff, offsetof(_quillBrioHpfApiCoeff, coeffs), std::size(coeff.coeffs));
}

void QuillHeron_v1_1_Pb::convert(const _quillTHUMPXApiCoeff& coeff, HeronSettings* settings) const {
  quill::pb::coef::Thumpx* thumpx = settings->mutable_postmix()->mutable_thumpx_coef();
  thumpx->set_uuid(nullGuid);
  CoefTable* table = addTable(thumpx, &quill::pb::coef::Thumpx::add_coeffs, sampleRate_);
  appendInt32s(table->mutable_coeff_32(), &coeff, offsetof(_quillTHUMPXApiCoeff, coeffs), std::size(coeff.coeffs));
}

void QuillHeron_v1_1_Pb::convert(const _quillBrioXoverApiCoeff& coeff, HeronSettings* settings) const {
  quill::pb::coef::BrioXover* xover = settings->mutable_postmix()->mutable_brio_xover_coef();
  xover->set_uuid(nullGuid);
  xover->clear_cutoff();
  xover->set_order(native::loadI32(&coeff, offsetof(_quillBrioXoverApiCoeff, order)));
  // High-pass branch first, then low-pass.
  CoefTable* hpf = addTable(xover, &quill::pb::coef::BrioXover::add_hpf_coeffs, sampleRate_);
  appendInt16s(hpf->mutable_coeff_16(), &coeff, offsetof(_quillBrioXoverApiCoeff, hpf_coeffs),
               std::size(coeff.hpf_coeffs));
  CoefTable* lpf = addTable(xover, &quill::pb::coef::BrioXover::add_lpf_coeffs, sampleRate_);
  appendInt16s(lpf->mutable_coeff_16(), &coeff, offsetof(_quillBrioXoverApiCoeff, lpf_coeffs),
               std::size(coeff.lpf_coeffs));
}

void QuillHeron_v1_1_Pb::convert(const _quillHeronHpfApiCoeff& coeff, HeronSettings* settings) const {
  quill::pb::coef::Hpf* hpf = settings->mutable_postmix()->mutable_hpf_coef();
  hpf->set_uuid(nullGuid);
  hpf->clear_cutoff();
  hpf->set_order(native::loadI32(&coeff, offsetof(_quillHeronHpfApiCoeff, order)));
  CoefTable* table = addTable(hpf, &quill::pb::coef::Hpf::add_coeffs, sampleRate_);
  appendInt32s(table->mutable_coeff_32(), &coeff, offsetof(_quillHeronHpfApiCoeff, coeffs), std::size(coeff.coeffs));
}

void QuillHeron_v1_1_Pb::convert(const _quillAeqApiCoeff& coeff, HeronSettings* settings) const {
  Postmix* postmix = settings->mutable_postmix();
  quill::pb::coef::Aeq* aeq = postmix->mutable_model()->add_aeqs();
  aeq->set_uuid(nullGuid);
  aeq->set_channel_mask(kAeqChannelMask);
  postmix->add_aeqcoef()->set_uuid(nullGuid);
  FilterBank* banks[2] = {aeq->add_coefficient_table(), aeq->add_coefficient_table()};
  for (const AeqRow& row : kAeqRows) {
    const _quillAeqApiBankCoeff* bank = &coeff.bank[row.bank];
    FilterBank* out = banks[row.bank];
    (out->*row.setOrder)(native::loadI32(bank, row.orderOffset));
    CoefTable* table = addTable(out, row.addTable, sampleRate_);
    appendInt32s(table->mutable_coeff_32(), bank, row.coeffOffset, row.count);
  }
}

void QuillHeron_v1_1_Pb::convert(const _quillMBHLApiCoeff& coeff, HeronSettings* settings) const {
  quill::pb::coef::Mbhl* mbhl = settings->mutable_postmix()->mutable_mbhl_coef();
  // Each crossover is a single table (not a list): it is rebuilt whole.
  const struct {
    CoefTable* table;
    std::size_t offset;
  } crossovers[] = {
      {mbhl->mutable_low_cross_coeffs(), offsetof(_quillMBHLApiCoeff, low_cross_coeffs)},
      {mbhl->mutable_mid_cross_coeffs(), offsetof(_quillMBHLApiCoeff, mid_cross_coeffs)},
  };
  for (const auto& crossover : crossovers) {
    crossover.table->Clear();
    crossover.table->set_samplerate(sampleRate_);
    appendInt32s(crossover.table->mutable_coeff_32(), &coeff, crossover.offset, std::size(coeff.low_cross_coeffs));
  }
}

void QuillHeron_v1_1_Pb::convert(const quillMBHLDistprevCoeff* first, HeronSettings* settings) const {
  Postmix* postmix = settings->mutable_postmix();
  for (int i = 0; i < 2; ++i) {
    const quillMBHLDistprevCoeff& record = first[i];
    quill::pb::coef::MbhlDistPrevCoeff* entry = postmix->add_mbhl_dist_prev();

    quill::pb::coef::distPrevSenseConfig* sense = entry->mutable_sense_config();
    sense->set_bandcount(native::loadI32(&record, offsetof(quillMBHLDistprevCoeff, sense_band_count)));
    appendArrays(distprev::kSenseInt32, record, sense);
    appendArrays(distprev::kSenseFloat, record, sense);

    quill::pb::coef::distPrevNotchConfig* notch = entry->mutable_notch_config();
    for (const distprev::ScalarRow& row : distprev::kNotchScalars) {
      (notch->*row.set)(native::loadI32(&record, row.offset));
    }
    appendArrays(distprev::kNotchInt32, record, notch);
    appendArrays(distprev::kNotchFloat, record, notch);
  }
}
