// Room models: sizing, loading into the native room record, resolution by
// identifier, and the rebuild of rooms from native records.
#include <cstring>

#include "QuillPb.h"
#include "QuillPbConvert_Heron_v1_1.h"
#include "QuillPb_identifiers.h"
#include "QuillPb_models.h"
#include "coefficient_io.h"
#include "native_io.h"
#include "quillHeronCoeffRecords.h"

namespace quillheron {
namespace {

using quill::pb::model::roomModel;

// Byte offsets inside _quillHpcLyraRmData.
constexpr std::size_t kRoomUuid = offsetof(_quillHpcLyraRmData, uuid);
constexpr std::size_t kRoomChannelMask = offsetof(_quillHpcLyraRmData, channel_mask);
constexpr std::size_t kRoomNumPairs = offsetof(_quillHpcLyraRmData, num_pairs);
constexpr std::size_t kRoomBrirLength = offsetof(_quillHpcLyraRmData, brir_length);
constexpr std::size_t kRoomSampleRate = offsetof(_quillHpcLyraRmData, sample_rate);
constexpr std::size_t kRoomReverbGain = offsetof(_quillHpcLyraRmData, reverb_gain);
constexpr std::size_t kRoomReverbCut = offsetof(_quillHpcLyraRmData, reverb_cut);
constexpr std::size_t kRoomCoeffs = kQuillRoomHeaderBytes;


std::size_t roomBytes(std::size_t taps) { return kRoomCoeffs + 2 * taps; }

// One room region of the postmix record, as the reverse path walks them.
struct RoomRegion {
  std::size_t offset;
  unsigned int bytes;
  quill::pb::hub::ResourceLocator* (quill::pb::heron_v1_1::Postmix::*addLocator)();
};

// Front, wide, then multichannel.
const RoomRegion kRoomRegions[] = {
    {kQuillFrontRoomOffset, kQuillFrontRoomBytes, &quill::pb::heron_v1_1::Postmix::add_frontroom},
    {kQuillWideRoomOffset, kQuillWideRoomBytes, &quill::pb::heron_v1_1::Postmix::add_wideroom},
    {kQuillMultichRoomOffset, kQuillMultichRoomBytes, &quill::pb::heron_v1_1::Postmix::add_multichroom},
};

}  // namespace

template <class Note>
int processRoomDataIn(const std::string& uuid, const ModelSequence& models, int* record,
                      unsigned int capacity, int sample_rate, Note noteArg) {
  LoadNote* const note = asNote(noteArg);
  if (uuid.empty()) {
    noteReason(note, QUILL_REASON_EMPTY_IDENTIFIER);
    return QuillPb::kNothingToDo;
  }
  for (std::size_t m = 0; m < models.size(); ++m) {
    const listeningModel* model = models.at(m);
    if (model == nullptr) continue;
    for (const roomModel& room : model->rooms()) {
      if (CompareCI(room.uuid(), uuid)) {
        noteModelEntry(note, models, m, room, sample_rate);
        const int result = QuillPb::loadRoom(&room, record, capacity, sample_rate);
        if (result < 0) {
          noteReason(note, result == QuillPb::kNoTable ? QUILL_REASON_NO_TABLE_FOR_RATE
                                                       : QUILL_REASON_DOES_NOT_FIT);
        }
        return result;
      }
    }
  }
  noteReason(note, QUILL_REASON_NOT_FOUND);
  return QuillPb::kNotFound;
}

template int processRoomDataIn(const std::string&, const ModelSequence&, int*, unsigned int, int, NoNote);
template int processRoomDataIn(const std::string&, const ModelSequence&, int*, unsigned int, int, LoadNote*);

}  // namespace quillheron

namespace QuillPb {

using quillheron::CoefTable;

unsigned int sizeofRoom(const quill::pb::model::roomModel* room, int sample_rate) {
  if (room == nullptr) return 0;
  const CoefTable* table = quillheron::findCoefficients(room->coefftables(), sample_rate);
  if (table == nullptr) return 0;
  const std::size_t bytes = quillheron::roomBytes(static_cast<std::size_t>(table->coeff_16_size()));
  return bytes > 0xFFFFFFFFu ? 0xFFFFFFFFu : static_cast<unsigned int>(bytes);
}

int loadRoom(const quill::pb::model::roomModel* room, int* record, unsigned int capacity,
             int sample_rate) {
  namespace native = quillheron::native;
  if (room == nullptr) return kNoTable;
  const CoefTable* table = quillheron::findCoefficients(room->coefftables(), sample_rate);
  if (table == nullptr || table->coeff_16_size() == 0) return kNoTable;
  const std::size_t taps = static_cast<std::size_t>(table->coeff_16_size());
  if (record == nullptr || quillheron::roomBytes(taps) > capacity) return kRecordTooSmall;

  std::uint8_t uuid[quillheron::kUuidBytes];
  quillheron::convertStringToUuidString(room->uuid(), uuid);
  unsigned char* base = reinterpret_cast<unsigned char*>(record);
  std::memcpy(base + quillheron::kRoomUuid, uuid, sizeof(uuid));
  native::storeU32(base, quillheron::kRoomChannelMask, room->channelmask());
  native::storeU32(base, quillheron::kRoomNumPairs, room->numpairs());
  native::storeU32(base, quillheron::kRoomBrirLength, room->brirlength());
  native::storeI32(base, quillheron::kRoomSampleRate, table->samplerate());
  native::storeI32(base, quillheron::kRoomReverbGain, room->reverbgain());
  native::storeU32(base, quillheron::kRoomReverbCut, room->reverbcut());
  quillheron::storeInt16s(base, quillheron::kRoomCoeffs, table->coeff_16(), taps);
  return kOk;
}

int processRoomData(const std::string& uuid, const ModelList& models, int* record,
                    unsigned int capacity, int sample_rate) {
  return quillheron::processRoomDataIn(uuid, quillheron::ModelSequence(models), record, capacity,
                                       sample_rate, quillheron::NoNote{});
}

}  // namespace QuillPb

void QuillHeron_v1_1_Pb::_addRoom(listeningModel* model, const _quillHpcLyraRmData* room,
                                  unsigned int size, ResourceLocator* locator) {
  namespace native = quillheron::native;
  if (model == nullptr || room == nullptr) return;
  std::uint8_t uuid[quillheron::kUuidBytes];
  std::memcpy(uuid, room->uuid, sizeof(uuid));
  // Assigned in place below: a reused message keeps its strings, no temporary.
  char text[quillheron::kUuidTextLength];
  quillheron::uuidBytesToText(uuid, text);

  quill::pb::model::roomModel* out = model->add_rooms();
  out->mutable_uuid()->assign(text, quillheron::kUuidTextLength);
  out->set_name(quillheron::kRebuiltName);
  out->set_brirlength(native::loadU32(room, quillheron::kRoomBrirLength));
  out->set_channelmask(native::loadU32(room, quillheron::kRoomChannelMask));
  out->set_numpairs(native::loadU32(room, quillheron::kRoomNumPairs));
  out->set_reverbgain(native::loadI32(room, quillheron::kRoomReverbGain));
  out->set_reverbcut(native::loadU32(room, quillheron::kRoomReverbCut));
  quill::pb::coef::CoefTable* table = out->add_coefftables();
  table->set_samplerate(native::loadI32(room, quillheron::kRoomSampleRate));
  const std::size_t taps = size > quillheron::kRoomCoeffs ? (size - quillheron::kRoomCoeffs) / 2 : 0;
  quillheron::appendInt16s(table->mutable_coeff_16(), room, quillheron::kRoomCoeffs, taps);
  if (locator != nullptr) locator->mutable_uuid()->assign(text, quillheron::kUuidTextLength);
}

void QuillHeron_v1_1_Pb::processRoomModels(_quillHeronPostmixApiCtrlCoeffs& record,
                                           HeronSettings* settings) const {
  if (settings == nullptr) return;
  Postmix* postmix = settings->mutable_postmix();
  listeningModel* model = postmix->mutable_model();
  unsigned char* base = reinterpret_cast<unsigned char*>(&record);
  for (const quillheron::RoomRegion& region : quillheron::kRoomRegions) {
    // The rebuilt room carries the converter's rate, stamped into the record first.
    quillheron::native::storeI32(base, region.offset + quillheron::kRoomSampleRate, sampleRate_);
    ResourceLocator* locator = (postmix->*region.addLocator)();
    _addRoom(model, reinterpret_cast<const _quillHpcLyraRmData*>(base + region.offset),
             region.bytes, locator);
  }
}
