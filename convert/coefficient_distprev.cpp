// Distortion-prevention records: two precomputed designs copied from the
// postmix, or two designs computed from the notch design parameters.
#include <cstddef>

#include "QuillPbConvert_Heron_v1_1.h"
#include "coefficient_distprev_layout.h"
#include "coefficient_io.h"
#include "native_io.h"
#include "notch_design_tables.h"
#include "postmix_steps.h"
#include "quillHeronCoeffRecords.h"
#include "quillheron_filterdesign.h"

namespace quillheron {
namespace {

using distprev::distPrevNotchConfig;
using distprev::distPrevSenseConfig;
using distprev::Record;
using quill::pb::coef::MbhlDistPrevCoeff;

constexpr int kOk = QuillHeron_v1_1_Pb::kOk;
constexpr int kFail = QuillHeron_v1_1_Pb::kCoefficientFailure;
constexpr int kDesignCount = 2;
// Header area the designer stamps; the converter discards it.
constexpr std::size_t kDesignHeaderBytes = 168;
static_assert(sizeof(quillDistprevDesignHeader) == kDesignHeaderBytes, "design header size");

// Record-relative offset of field `field_offset` of distortion-prevention record i.
constexpr std::size_t at(int i, std::size_t field_offset) {
  return kQuillDistprevCoeffOffset + static_cast<std::size_t>(i) * sizeof(Record) + field_offset;
}

// The element count of every array comes from the first message and serves
// both records; the second message's own counts are not consulted, except
// that no value is read past the end of its list.
template <class Msg, std::size_t N, std::size_t M>
void copyArrays(const Msg& first, const Msg& second, const distprev::Int32Row<Msg> (&ints)[N],
                const distprev::FloatRow<Msg> (&floats)[M], _quillHeronPostmixApiCtrlCoeffs& record) {
  const Msg* sources[kDesignCount] = {&first, &second};
  for (const auto& row : ints) {
    const std::size_t wanted = static_cast<std::size_t>((first.*row.get)().size());
    for (int i = 0; i < kDesignCount; ++i) {
      const Int32List& src = (sources[i]->*row.get)();
      storeInt32s(&record, at(i, row.offset), src, copyCount(wanted, src.size(), row.capacity));
    }
  }
  for (const auto& row : floats) {
    const std::size_t wanted = static_cast<std::size_t>((first.*row.get)().size());
    for (int i = 0; i < kDesignCount; ++i) {
      const FloatList& src = (sources[i]->*row.get)();
      storeFloats(&record, at(i, row.offset), src, copyCount(wanted, src.size(), row.capacity));
    }
  }
}

}  // namespace
}  // namespace quillheron

// This file only defines converter members over the helpers above.
using namespace quillheron;

void QuillHeron_v1_1_Pb::PopulateSenseConfigCoeff(const MbhlDistPrevCoeff& first,
                                                  const MbhlDistPrevCoeff& second,
                                                  _quillHeronPostmixApiCtrlCoeffs& record) const {
  const distPrevSenseConfig* sense[kDesignCount] = {&first.sense_config(), &second.sense_config()};
  for (int i = 0; i < kDesignCount; ++i) {
    native::storeI32(&record, at(i, offsetof(Record, sense_band_count)), sense[i]->bandcount());
  }
  copyArrays(*sense[0], *sense[1], distprev::kSenseInt32, distprev::kSenseFloat, record);
}

void QuillHeron_v1_1_Pb::PopulateNotchConfigCoeff(const MbhlDistPrevCoeff& first,
                                                  const MbhlDistPrevCoeff& second,
                                                  _quillHeronPostmixApiCtrlCoeffs& record) const {
  const distPrevNotchConfig* notch[kDesignCount] = {&first.notch_config(), &second.notch_config()};
  for (int i = 0; i < kDesignCount; ++i) {
    const distPrevNotchConfig& config = *notch[i];
    for (const distprev::ScalarRow& row : distprev::kNotchScalars) {
      const std::int32_t value = (config.*row.get)();
      native::storeI32(&record, at(i, row.offset), value);
    }
  }
  copyArrays(*notch[0], *notch[1], distprev::kNotchInt32, distprev::kNotchFloat, record);
}

namespace quillheron {

template <class Note>
int loadDistPrev(const QuillHeron_v1_1_Pb& converter, const HeronSettings& settings,
                 _quillHeronPostmixApiCtrlCoeffs& record, Note noteArg) {
  LoadNote* const note = asNote(noteArg);
  const Postmix& postmix = settings.postmix();
  if (postmix.mbhl_dist_prev_size() == kDesignCount) {
    const MbhlDistPrevCoeff& first = postmix.mbhl_dist_prev(0);
    const MbhlDistPrevCoeff& second = postmix.mbhl_dist_prev(1);
    noteSource(note, QUILL_SOURCE_RECORDS, converter.sampleRate(), kDesignCount);
    noteReason(note, QUILL_REASON_INCOMPLETE);
    if (!first.has_sense_config() || !second.has_sense_config()) return kFail;
    converter.PopulateSenseConfigCoeff(first, second, record);
    if (!first.has_notch_config() || !second.has_notch_config()) return kFail;
    converter.PopulateNotchConfigCoeff(first, second, record);
    noteReason(note, QUILL_REASON_NONE);
    return kOk;
  }

  noteReason(note, QUILL_REASON_NO_DESIGN_PARAMETERS);
  if (!settings.has_designerparameters()) return kFail;
  const quill::pb::tech::DesignerParameters& designer = settings.designerparameters();
  if (designer.mbhl_nf_design_params_size() != kDesignCount) return kFail;
  quillDistprevNotchDesignBlock blocks[kDesignCount] = {};
  for (int i = 0; i < kDesignCount; ++i) {
    fillNotchDesignBlock(designer.mbhl_nf_design_params(i), blocks[i]);
    // The designer writes one slot per band; more than the records hold would
    // run past them, so the band count is cut at that capacity. A negative
    // count designs no band and is stored as 0, so that the engine never
    // reads a negative band count.
    if (blocks[i].nf_band_ct > QUILL_DISTPREV_BAND_COUNT) blocks[i].nf_band_ct = QUILL_DISTPREV_BAND_COUNT;
    if (blocks[i].nf_band_ct < 0) blocks[i].nf_band_ct = 0;
  }
  quillDistprevDesignHeader header = {};
  const int32_t designed = quill_distprev_config_designer(&header, record.dist_prev, blocks, kDesignCount);
  // The designer covers every rate it supports; the count is the two designs.
  noteSource(note, QUILL_SOURCE_DESIGN, 0, kDesignCount);
  noteReason(note, designed < 0 ? QUILL_REASON_DESIGNER_REJECTED : QUILL_REASON_NONE);
  return designed < 0 ? kFail : kOk;
}

template int loadDistPrev(const QuillHeron_v1_1_Pb&, const HeronSettings&, _quillHeronPostmixApiCtrlCoeffs&, NoNote);
template int loadDistPrev(const QuillHeron_v1_1_Pb&, const HeronSettings&, _quillHeronPostmixApiCtrlCoeffs&,
                          LoadNote*);

}  // namespace quillheron

int QuillHeron_v1_1_Pb::PopulateMbhlDistPrevCoeff(const HeronSettings& settings,
                                                  _quillHeronPostmixApiCtrlCoeffs& record) const {
  return quillheron::loadDistPrev(*this, settings, record, quillheron::NoNote{});
}
