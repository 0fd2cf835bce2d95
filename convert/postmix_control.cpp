// Postmix control record: scalar fields, the per-mode arrays (message order
// HeronModeOrder, native order the engine's slots), bypass_mode and the
// technology blocks, in both directions.
#include <algorithm>
#include <cstddef>

#include "QuillPbConvert_Heron_v1_1.h"
#include "binding_tables.h"
#include "native_io.h"

using quill::pb::heron_v1_1::HeronSettings;
using quill::pb::heron_v1_1::Postmix;
using namespace quillheron;

namespace {

using Int32List = google::protobuf::RepeatedField<int32_t>;

// Native slot of each mode, indexed by HeronModeOrder (Multichannel, Front,
// Wide, Stereo, Bypass, Downmix).
constexpr int kSlotOfMode[QUILL_HERON_MODE_COUNT] = {
    QUILL_HERON_SLOT_MULTICHANNEL, QUILL_HERON_SLOT_FRONT,  QUILL_HERON_SLOT_WIDE,
    QUILL_HERON_SLOT_STEREO,       QUILL_HERON_SLOT_BYPASS, QUILL_HERON_SLOT_DOWNMIX,
};

// The three per-mode arrays of the record.
struct PerModeArray {
  const Int32List& (Postmix::*get)() const;
  Int32List* (Postmix::*mut)();
  std::size_t offset;
};
constexpr PerModeArray kPerModeArrays[] = {
    {&Postmix::lyra_input_gain, &Postmix::mutable_lyra_input_gain, 24},
    {&Postmix::bypass_hpeq, &Postmix::mutable_bypass_hpeq, 48},
    {&Postmix::aeq_enable, &Postmix::mutable_aeq_enable, 72},
};
static_assert(kPerModeArrays[0].offset == offsetof(_quillHeronPostmixApiCtrl, lyra_input_gain), "");
static_assert(kPerModeArrays[1].offset == offsetof(_quillHeronPostmixApiCtrl, bypass_hpeq), "");
static_assert(kPerModeArrays[2].offset == offsetof(_quillHeronPostmixApiCtrl, aeq_enable), "");

constexpr std::size_t kBypassMode = offsetof(_quillHeronPostmixApiCtrl, bypass_mode);
constexpr std::size_t kLyraMultiCh = offsetof(_quillHeronPostmixApiCtrl, lyra_multi_ch);
constexpr int kBypassModes = QUILL_HERON_BYPASS_MODE_COUNT;
constexpr int kModes = QUILL_HERON_MODE_COUNT;

}  // namespace

int QuillHeron_v1_1_Pb::populate(const HeronSettings& settings,
                                 _quillHeronPostmixApiCtrl& record) const {
  const Postmix& postmix = settings.postmix();
  populateTable(bind::PostmixMap, postmix, record);

  for (const PerModeArray& array : kPerModeArrays) {
    const Int32List& values = (postmix.*array.get)();
    const int n = std::min(values.size(), kModes);
    for (int mode = 0; mode < n; ++mode) {
      native::storeI32(&record, array.offset + 4 * kSlotOfMode[mode], values.Get(mode));
    }
  }
  const int modes = std::min(postmix.bypass_mode_size(), kBypassModes);
  for (int i = 0; i < modes; ++i) {
    native::storeI32(&record, kBypassMode + 4 * i, postmix.bypass_mode(i));
  }

  populate(settings, record.brio);
  populate(settings, record.geq10b);
  populate(settings, record.aeq);
  const int enhance2Result = populate(postmix.enhance2(), record.enhance2);
  populate(settings, record.lyra);
  populate(settings, record.mbhl);

  // The engine takes -1 here as "no multichannel mode": it is stored as 0
  // whatever the message held.
  if (native::loadI32(&record, kLyraMultiCh) == -1) {
    native::storeI32(&record, kLyraMultiCh, 0);
  }
  // A negative ref_htest fails the postmix, after the whole record is written.
  return enhance2Result;
}

void QuillHeron_v1_1_Pb::convert(const _quillHeronPostmixApiCtrl& record,
                                 HeronSettings* settings) const {
  if (settings->has_postmix()) settings->mutable_postmix()->Clear();
  Postmix* postmix = settings->mutable_postmix();
  convertTable(bind::PostmixMap, record, postmix);

  for (const PerModeArray& array : kPerModeArrays) {
    Int32List* values = (postmix->*array.mut)();
    for (int mode = 0; mode < kModes; ++mode) {
      values->Add(native::loadI32(&record, array.offset + 4 * kSlotOfMode[mode]));
    }
  }
  for (int i = 0; i < kBypassModes; ++i) {
    postmix->add_bypass_mode(native::loadI32(&record, kBypassMode + 4 * i));
  }

  convert(record.brio, settings);
  convert(record.geq10b, settings);
  convert(record.aeq, settings);
  convert(postmix->mutable_enhance2(), record.enhance2);
  convert(record.lyra, settings);
  convert(record.mbhl, settings);
}
