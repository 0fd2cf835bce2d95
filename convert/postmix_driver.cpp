// The postmix driver: fills the control part and then every coefficient and
// listening-model region of the postmix record in a fixed order; and the
// reverse conversion of the whole record.
#include <cstddef>

#include "QuillPbConvert_Heron_v1_1.h"
#include "QuillPb_models.h"
#include "native_io.h"
#include "quillHeronCoeffRecords.h"

namespace quillheron {
namespace {

using quill::pb::heron_v1_1::Postmix;
using quill::pb::hub::ResourceLocator;
using LocatorList = google::protobuf::RepeatedPtrField<ResourceLocator>;

constexpr int kOk = QuillHeron_v1_1_Pb::kOk;
constexpr int kNothingToDo = QuillHeron_v1_1_Pb::kNothingToDo;

// The one speaker size whose bass-enhancement coefficients come from the settings.
constexpr std::int32_t kThumpxCoeffSpeakerSize = 12;

// Room lists in the order they are loaded, each behind its room_mask bit.
struct RoomStep {
  int maskBit;
  const LocatorList& (Postmix::*locators)() const;
  std::size_t offset;
  unsigned int bytes;
};

const RoomStep kRoomSteps[] = {
    {2, &Postmix::wideroom, kQuillWideRoomOffset, kQuillWideRoomBytes},
    {4, &Postmix::frontroom, kQuillFrontRoomOffset, kQuillFrontRoomBytes},
    {8, &Postmix::multichroom, kQuillMultichRoomOffset, kQuillMultichRoomBytes},
};

int* regionAt(_quillHeronPostmixApiCtrlCoeffs& record, std::size_t offset) {
  // Every region starts on a 4-byte boundary of the record.
  return reinterpret_cast<int*>(reinterpret_cast<unsigned char*>(&record) + offset);
}

// One selected room list: its locators, or, when it has none, every room of
// the embedded model. Stops at the first negative result.
int loadRooms(const RoomStep& step, const Postmix& postmix, const ModelSequence& models,
              _quillHeronPostmixApiCtrlCoeffs& record, int rate) {
  int* region = regionAt(record, step.offset);
  const LocatorList& locators = (postmix.*step.locators)();
  int result = kOk;
  if (locators.size() > 0) {
    for (const ResourceLocator& locator : locators) {
      result = processRoomDataIn(locator.uuid(), models, region, step.bytes, rate);
      if (result < 0) return result;
    }
  } else if (postmix.has_model()) {
    for (const quill::pb::model::roomModel& room : postmix.model().rooms()) {
      result = processRoomDataIn(room.uuid(), models, region, step.bytes, rate);
      if (result < 0) return result;
    }
  }
  return result;
}

// Every headphone-EQ locator is resolved; only the last one's result counts,
// and "no EQ" (1) counts as success.
int loadHeadphoneEqs(AudioRoute route, const Postmix& postmix, const ModelSequence& models,
                     _quillHeronPostmixApiCtrlCoeffs& record, int rate) {
  int last = kOk;
  for (const ResourceLocator& locator : postmix.hpeqcoef()) {
    const int result = processHpeqDataIn(route, locator.uuid(), models, regionAt(record, kQuillHpeqOffset),
                                         kQuillHpeqBytes, rate);
    last = result == kNothingToDo ? kOk : result;
  }
  return last;
}

bool thumpxCoefficientsWanted(const Postmix& postmix) {
  if (!postmix.has_brio() || postmix.brio().enable() == 0) return false;
  const quill::pb::tech::Brio& brio = postmix.brio();
  if (!brio.has_thumpx() || brio.thumpx().enable() == 0) return false;
  return postmix.has_thumpx_coef() && brio.thumpx().speaker_size() == kThumpxCoeffSpeakerSize;
}

}  // namespace
}  // namespace quillheron

// This file only defines converter members over the helpers above.
using namespace quillheron;

int QuillHeron_v1_1_Pb::populate(AudioRoute route, const HeronSettings& settings,
                                 _quillHeronPostmixApiCtrlCoeffs& record, bool load_defaults,
                                 const ModelList& models, int room_mask) const {
  if (load_defaults) loadDefaults(record);
  int result = populate(settings, record.ctrl);
  if (result != kOk) return result;

  // The caller's models are searched first, then the one embedded in the settings.
  const Postmix& postmix = settings.postmix();
  const ModelSequence search(models, postmix.has_model() ? &postmix.model() : nullptr);

  for (const RoomStep& step : kRoomSteps) {
    if ((room_mask & step.maskBit) == 0) continue;
    result = loadRooms(step, postmix, search, record, sampleRate_);
    if (result < 0) return result;
  }

  result = loadHeadphoneEqs(route, postmix, search, record, sampleRate_);
  if (result < 0) return result;

  if (postmix.has_hpf_coef()) LoadHeronHPF(postmix, record);

  result = loadAeqLocators(route, postmix, search, &record.aeq, sampleRate_);
  if (result < 0) return result;
  result = LoadBrioCrossover(postmix, record);
  if (result < 0) return result;
  result = LoadBrioHPF(postmix, record);
  if (result < 0) return result;

  if (thumpxCoefficientsWanted(postmix)) {
    result = PopulateTHUMPXCoeff(settings, record);
    if (result < 0) return result;
  }
  if (postmix.has_mbhl() && postmix.mbhl().enable() != 0) {
    result = PopulateMBHLCoeff(settings, record);
    if (result < 0) return result;
    if (postmix.mbhl().dist_prev_enable() != 0) result = PopulateMbhlDistPrevCoeff(settings, record);
  }
  return result;
}

int QuillHeron_v1_1_Pb::populate(const RouteConfiguration& route,
                                 _quillHeronPostmixApiCtrlCoeffs& record, bool load_defaults,
                                 const ModelList& models, int room_mask) const {
  const HeronSettings* settings = findHeronSettings(route);
  if (settings == nullptr) return kNoSettings;
  return populate(route.route(), *settings, record, load_defaults, models, room_mask);
}

bool QuillHeron_v1_1_Pb::convert(_quillHeronPostmixApiCtrlCoeffs& record, HeronSettings* settings,
                                 bool with_room_models) const {
  convert(record.ctrl, settings);
  convert(record.hpf, settings);
  convert(record.aeq, settings);
  convert(record.brio_hpf, settings);
  convert(record.brio_xover, settings);

  // Bass and limiter coefficients only when the record's own controls use them.
  const void* ctrl = &record.ctrl;
  constexpr std::size_t kBrio = offsetof(_quillHeronPostmixApiCtrl, brio);
  constexpr std::size_t kThumpx = kBrio + offsetof(_quillBrioApiCtrl, thumpx);
  constexpr std::size_t kMbhl = offsetof(_quillHeronPostmixApiCtrl, mbhl);
  if (native::loadI32(ctrl, kBrio + offsetof(_quillBrioApiCtrl, enable)) != 0 &&
      native::loadI32(ctrl, kThumpx + offsetof(_quillTHUMPxApiCtrl, enable)) != 0 &&
      native::loadI32(ctrl, kThumpx + offsetof(_quillTHUMPxApiCtrl, speaker_size)) == kThumpxCoeffSpeakerSize) {
    convert(record.thumpx, settings);
  }
  if (native::loadI32(ctrl, kMbhl + offsetof(quillMBHLApiCtrls, enable)) != 0) {
    convert(record.mbhl, settings);
    if (native::loadI32(ctrl, kMbhl + offsetof(quillMBHLApiCtrls, dist_prev_enable)) != 0) {
      convert(record.dist_prev, settings);
    }
  }

  if (with_room_models) processRoomModels(record, settings);

  // The rebuilt headphone EQ carries the converter's rate, stamped into the
  // record before it is read.
  listeningModel* model = settings->mutable_postmix()->mutable_model();
  native::storeI32(&record, kQuillHpeqOffset + offsetof(_quillHpcLyraHpeqData, sample_rate), sampleRate_);
  ResourceLocator* locator = settings->mutable_postmix()->add_hpeqcoef();
  _addHpeq(model, &record.hpeq, kQuillHpeqBytes, locator);
  return true;
}
