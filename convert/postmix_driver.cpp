// The postmix driver: fills the control part and then every coefficient and
// listening-model region of the postmix record in a fixed order; and the
// reverse conversion of the whole record.
#include <cstddef>

#include "QuillPbConvert_Heron_v1_1.h"
#include "QuillPb_models.h"
#include "native_io.h"
#include "postmix_steps.h"
#include "postmix_tracer.h"
#include "quillHeronCoeffRecords.h"

namespace quillheron {
namespace {

using quill::pb::hub::ResourceLocator;
using LocatorList = google::protobuf::RepeatedPtrField<ResourceLocator>;

constexpr int kOk = QuillHeron_v1_1_Pb::kOk;
constexpr int kNothingToDo = QuillHeron_v1_1_Pb::kNothingToDo;

// The one speaker size whose bass-enhancement coefficients come from the settings.
constexpr std::int32_t kThumpxCoeffSpeakerSize = QUILL_THUMPX_COEFF_SPEAKER_SIZE;

// Room lists in the order they are loaded, each behind its room_mask bit.
struct RoomStep {
  int maskBit;
  const LocatorList& (Postmix::*locators)() const;
  std::size_t offset;
  unsigned int bytes;
  QuillTraceStep step;
};

const RoomStep kRoomSteps[] = {
    {2, &Postmix::wideroom, kQuillWideRoomOffset, kQuillWideRoomBytes, QUILL_STEP_WIDE_ROOM},
    {4, &Postmix::frontroom, kQuillFrontRoomOffset, kQuillFrontRoomBytes, QUILL_STEP_FRONT_ROOM},
    {8, &Postmix::multichroom, kQuillMultichRoomOffset, kQuillMultichRoomBytes, QUILL_STEP_MULTICHANNEL_ROOM},
};

int* regionAt(_quillHeronPostmixApiCtrlCoeffs& record, std::size_t offset) {
  // Every region starts on a 4-byte boundary of the record.
  return reinterpret_cast<int*>(reinterpret_cast<unsigned char*>(&record) + offset);
}

// One selected room list: its locators, or, when it has none, every room of
// the embedded model. Stops at the first negative result.
template <class T>
int loadRooms(const RoomStep& step, const Postmix& postmix, const ModelSequence& models,
              _quillHeronPostmixApiCtrlCoeffs& record, int rate, T& tracer) {
  int* region = regionAt(record, step.offset);
  const LocatorList& locators = (postmix.*step.locators)();
  int result = kOk;
  if (locators.size() > 0) {
    for (int i = 0; i < locators.size(); ++i) {
      const std::string& uuid = locators.Get(i).uuid();
      result = processRoomDataIn(uuid, models, region, step.bytes, rate, tracer.note(&uuid));
      tracer.ran(step.step, result, i);
      if (result < 0) return result;
    }
  } else if (postmix.has_model()) {
    const auto& rooms = postmix.model().rooms();
    for (int i = 0; i < rooms.size(); ++i) {
      const std::string& uuid = rooms.Get(i).uuid();
      result = processRoomDataIn(uuid, models, region, step.bytes, rate, tracer.note(&uuid));
      tracer.ran(step.step, result, i);
      if (result < 0) return result;
    }
    if (rooms.empty()) tracer.nothing(step.step, QUILL_REASON_NONE_LISTED);
  } else {
    tracer.nothing(step.step, QUILL_REASON_NONE_LISTED);
  }
  return result;
}

// Every headphone-EQ locator is resolved; only the last one's result counts,
// and "no EQ" (1) counts as success.
template <class T>
int loadHeadphoneEqs(AudioRoute route, const Postmix& postmix, const ModelSequence& models,
                     _quillHeronPostmixApiCtrlCoeffs& record, int rate, T& tracer) {
  int last = kOk;
  const LocatorList& locators = postmix.hpeqcoef();
  for (int i = 0; i < locators.size(); ++i) {
    const std::string& uuid = locators.Get(i).uuid();
    const int result = processHpeqDataIn(route, uuid, models, regionAt(record, kQuillHpeqOffset),
                                         kQuillHpeqBytes, rate, tracer.note(&uuid));
    tracer.ran(QUILL_STEP_HEADPHONE_EQ, result, i);
    last = result == kNothingToDo ? kOk : result;
  }
  if (locators.empty()) tracer.nothing(QUILL_STEP_HEADPHONE_EQ, QUILL_REASON_NONE_LISTED);
  return last;
}

// Control record, rooms, headphone EQ, output high-pass, AEQ, Brio, Thumpx and
// MBHL, in that order; the first negative result ends the run.
template <class T>
int runDriver(const QuillHeron_v1_1_Pb& converter, AudioRoute route, const HeronSettings& settings,
              _quillHeronPostmixApiCtrlCoeffs& record, const QuillHeron_v1_1_Pb::ModelList& models,
              int room_mask, T& tracer) {
  const int rate = converter.sampleRate();
  const auto note = tracer.note();
  int result = converter.populate(settings, record.ctrl);
  if (result != kOk) noteReason(asNote(note), QUILL_REASON_NEGATIVE_REF_HTEST);
  tracer.ran(QUILL_STEP_CONTROL, result);
  if (result != kOk) return result;

  // The caller's models are searched first, then the one embedded in the settings.
  const Postmix& postmix = settings.postmix();
  const ModelSequence search(models, postmix.has_model() ? &postmix.model() : nullptr);

  for (const RoomStep& step : kRoomSteps) {
    if ((room_mask & step.maskBit) == 0) {
      tracer.skipped(step.step, QUILL_REASON_ROOM_MASK);
      continue;
    }
    result = loadRooms(step, postmix, search, record, rate, tracer);
    if (result < 0) return result;
  }

  result = loadHeadphoneEqs(route, postmix, search, record, rate, tracer);
  if (result < 0) return result;

  if (postmix.has_hpf_coef()) {
    loadHeronHpf(postmix, record, rate, tracer.note());
    tracer.ran(QUILL_STEP_OUTPUT_HPF, kOk);
  } else {
    tracer.skipped(QUILL_STEP_OUTPUT_HPF, QUILL_REASON_ABSENT);
  }

  result = loadAeqLocators(route, postmix, search, &record.aeq, rate, tracer.note());
  tracer.ran(QUILL_STEP_AEQ, result);
  if (result < 0) return result;
  result = loadBrioCrossover(postmix, record, rate, tracer.note());
  tracer.ran(QUILL_STEP_BRIO_CROSSOVER, result);
  if (result < 0) return result;
  result = loadBrioHpf(postmix, record, rate, tracer.note());
  tracer.ran(QUILL_STEP_BRIO_HPF, result);
  if (result < 0) return result;

  const QuillTraceReason thumpx = thumpxGate(postmix);
  if (thumpx == QUILL_REASON_NONE) {
    result = loadThumpx(settings, record, rate, tracer.note());
    tracer.ran(QUILL_STEP_THUMPX, result);
    if (result < 0) return result;
  } else {
    tracer.skipped(QUILL_STEP_THUMPX, thumpx);
  }
  const QuillTraceReason mbhl = mbhlGate(postmix);
  if (mbhl == QUILL_REASON_NONE) {
    result = loadMbhlCrossovers(settings, record, rate, tracer.note());
    tracer.ran(QUILL_STEP_MBHL_CROSSOVER, result);
    if (result < 0) return result;
    const QuillTraceReason distPrev = distPrevGate(postmix);
    if (distPrev == QUILL_REASON_NONE) {
      result = loadDistPrev(converter, settings, record, tracer.note());
      tracer.ran(QUILL_STEP_DISTORTION_PREVENTION, result);
    } else {
      tracer.skipped(QUILL_STEP_DISTORTION_PREVENTION, distPrev);
    }
  } else {
    tracer.skipped(QUILL_STEP_MBHL_CROSSOVER, mbhl);
    tracer.skipped(QUILL_STEP_DISTORTION_PREVENTION, mbhl);
  }
  return result;
}

}  // namespace

QuillTraceReason thumpxGate(const Postmix& postmix) {
  if (!postmix.has_brio() || postmix.brio().enable() == 0) return QUILL_REASON_BRIO_OFF;
  const quill::pb::tech::Brio& brio = postmix.brio();
  if (!brio.has_thumpx() || brio.thumpx().enable() == 0) return QUILL_REASON_THUMPX_OFF;
  if (!postmix.has_thumpx_coef()) return QUILL_REASON_NO_THUMPX_COEF;
  if (brio.thumpx().speaker_size() != kThumpxCoeffSpeakerSize) return QUILL_REASON_SPEAKER_SIZE;
  return QUILL_REASON_NONE;
}

QuillTraceReason mbhlGate(const Postmix& postmix) {
  return postmix.has_mbhl() && postmix.mbhl().enable() != 0 ? QUILL_REASON_NONE : QUILL_REASON_MBHL_OFF;
}

QuillTraceReason distPrevGate(const Postmix& postmix) {
  const QuillTraceReason mbhl = mbhlGate(postmix);
  if (mbhl != QUILL_REASON_NONE) return mbhl;
  return postmix.mbhl().dist_prev_enable() != 0 ? QUILL_REASON_NONE : QUILL_REASON_DIST_PREV_OFF;
}

}  // namespace quillheron

// This file only defines converter members over the helpers above.
using namespace quillheron;

int QuillHeron_v1_1_Pb::populate(AudioRoute route, const HeronSettings& settings,
                                 _quillHeronPostmixApiCtrlCoeffs& record, bool load_defaults,
                                 const ModelList& models, int room_mask) const {
  if (load_defaults) loadDefaults(record);
  NullTracer untraced;
  return runDriver(*this, route, settings, record, models, room_mask, untraced);
}

int QuillHeron_v1_1_Pb::populate(AudioRoute route, const HeronSettings& settings,
                                 _quillHeronPostmixApiCtrlCoeffs& record, bool load_defaults,
                                 const ModelList& models, int room_mask, QuillPostmixTrace* trace) const {
  if (trace == nullptr) return populate(route, settings, record, load_defaults, models, room_mask);
  if (load_defaults) loadDefaults(record);
  Tracer tracer(*trace);
  return tracer.finish(runDriver(*this, route, settings, record, models, room_mask, tracer));
}

int QuillHeron_v1_1_Pb::populate(const RouteConfiguration& route,
                                 _quillHeronPostmixApiCtrlCoeffs& record, bool load_defaults,
                                 const ModelList& models, int room_mask) const {
  const HeronSettings* settings = findHeronSettings(route);
  if (settings == nullptr) return kNoSettings;
  return populate(route.route(), *settings, record, load_defaults, models, room_mask);
}

int QuillHeron_v1_1_Pb::populate(const RouteConfiguration& route,
                                 _quillHeronPostmixApiCtrlCoeffs& record, bool load_defaults,
                                 const ModelList& models, int room_mask, QuillPostmixTrace* trace) const {
  const HeronSettings* settings = findHeronSettings(route);
  if (settings == nullptr) {
    // Nothing runs: every step is entered as not reached.
    if (trace != nullptr) Tracer(*trace).finish(kNoSettings);
    return kNoSettings;
  }
  return populate(route.route(), *settings, record, load_defaults, models, room_mask, trace);
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
