// Headphone equalisers: sizing, loading into the native headphone-EQ record,
// route-filtered resolution by identifier, and the rebuild from a record.
#include <cstdint>
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

using quill::pb::model::headphoneEq;

constexpr std::size_t kHpeqUuid = offsetof(_quillHpcLyraHpeqData, uuid);
constexpr std::size_t kHpeqSampleRate = offsetof(_quillHpcLyraHpeqData, sample_rate);
constexpr std::size_t kHpeqIhpirLength = offsetof(_quillHpcLyraHpeqData, ihpir_length);
constexpr std::size_t kHpeqCoeffs = kQuillHpeqHeaderBytes;

// The engine's limit on taps per channel response.
constexpr std::uint32_t kMaxIhpirLength = 128;


// Copies `count` source values from `from` to destination index `to`,
// skipping source indices past the list and destination slots past the
// `capacity` bytes of the record. Both limits cut one contiguous run of the
// copy, which is then stored in one go.
void copyTaps(void* base, unsigned int capacity, const Int32List& src, std::int64_t from,
              std::int64_t to, std::int64_t count) {
  const std::int64_t slots =
      capacity < kHpeqCoeffs ? 0 : static_cast<std::int64_t>((capacity - kHpeqCoeffs) / 2);
  std::int64_t first = 0;
  if (first < -from) first = -from;
  if (first < -to) first = -to;
  std::int64_t end = count;
  if (end > src.size() - from) end = src.size() - from;
  if (end > slots - to) end = slots - to;
  if (first >= end) return;
  storeInt16s(base, kHpeqCoeffs + 2 * static_cast<std::size_t>(to + first), src.data() + (from + first),
              static_cast<std::size_t>(end - first));
}

}  // namespace

template <class Note>
int processHpeqDataIn(AudioRoute route, const std::string& uuid, const ModelSequence& models,
                      int* record, unsigned int capacity, int sample_rate, Note noteArg) {
  LoadNote* const note = asNote(noteArg);
  std::size_t where = 0;
  const headphoneEq* hpeq =
      models.size() == 0 ? nullptr
                         : findRoutedEntry<headphoneEq>(
                               models, [](const listeningModel& m) -> const auto& { return m.headphones(); },
                               uuid, route, &where);
  if (hpeq == nullptr) {
    noteReason(note, QUILL_REASON_NOT_FOR_ROUTE);
    return QuillPb::kNothingToDo;
  }
  noteModelEntry(note, models, where, *hpeq, sample_rate);
  const int result = QuillPb::loadHpeq(hpeq, record, capacity, sample_rate);
  if (result < 0) noteReason(note, result == QuillPb::kNoTable ? QUILL_REASON_NO_TABLE_FOR_RATE : QUILL_REASON_DOES_NOT_FIT);
  return result;
}

template int processHpeqDataIn(AudioRoute, const std::string&, const ModelSequence&, int*, unsigned int, int,
                               NoNote);
template int processHpeqDataIn(AudioRoute, const std::string&, const ModelSequence&, int*, unsigned int, int,
                               LoadNote*);

}  // namespace quillheron

namespace QuillPb {

using quillheron::CoefTable;

unsigned int sizeofHpeq(const quill::pb::model::headphoneEq* hpeq, int sample_rate) {
  if (hpeq == nullptr) return 0;
  const CoefTable* table = quillheron::findCoefficients(hpeq->coefftables(), sample_rate);
  if (table == nullptr) return 0;
  const std::size_t bytes = quillheron::kHpeqCoeffs + 2 * static_cast<std::size_t>(table->coeff_16_size());
  return bytes > 0xFFFFFFFFu ? 0xFFFFFFFFu : static_cast<unsigned int>(bytes);
}

int loadHpeq(const quill::pb::model::headphoneEq* hpeq, int* record, unsigned int capacity,
             int sample_rate) {
  namespace native = quillheron::native;
  if (hpeq == nullptr) return kNoTable;
  const CoefTable* table = quillheron::findCoefficients(hpeq->coefftables(), sample_rate);
  if (table == nullptr || table->coeff_16_size() == 0) return kNoTable;
  // Not even the header fits: refuse rather than write past the record.
  if (record == nullptr || capacity < quillheron::kHpeqCoeffs) return kRecordTooSmall;

  unsigned char* base = reinterpret_cast<unsigned char*>(record);
  native::storeI32(base, quillheron::kHpeqSampleRate, table->samplerate());
  std::uint8_t uuid[quillheron::kUuidBytes];
  quillheron::convertStringToUuidString(hpeq->uuid(), uuid);
  std::memcpy(base + quillheron::kHpeqUuid, uuid, sizeof(uuid));

  const quillheron::Int32List& src = table->coeff_16();
  const std::int64_t n = src.size();
  if (hpeq->ihpirlength() <= quillheron::kMaxIhpirLength) {
    native::storeU32(base, quillheron::kHpeqIhpirLength, hpeq->ihpirlength());
    // Every value, as far as the record reaches.
    quillheron::copyTaps(base, capacity, src, 0, 0, n);
    return kOk;
  }

  // Longer responses: each channel keeps its first m taps, m being what fits.
  native::storeU32(base, quillheron::kHpeqIhpirLength, quillheron::kMaxIhpirLength);
  const std::int64_t m = (static_cast<std::int64_t>(capacity / 2) - 14) / 2;
  const std::int64_t channel2 = (n - 2) / 2 + 2;
  quillheron::copyTaps(base, capacity, src, 0, 0, 2);
  quillheron::copyTaps(base, capacity, src, 2, 2, m);
  quillheron::copyTaps(base, capacity, src, channel2, 2 + m, m);
  return kOk;
}

int processHpeqData(quill::pb::hub::AudioRoute route, const std::string& uuid,
                    const ModelList& models, int* record, unsigned int capacity,
                    int sample_rate) {
  return quillheron::processHpeqDataIn(route, uuid, quillheron::ModelSequence(models), record,
                                       capacity, sample_rate, quillheron::NoNote{});
}

}  // namespace QuillPb

void QuillHeron_v1_1_Pb::_addHpeq(listeningModel* model, const _quillHpcLyraHpeqData* hpeq,
                                  unsigned int size, ResourceLocator* locator) {
  namespace native = quillheron::native;
  if (model == nullptr || hpeq == nullptr) return;
  std::uint8_t uuid[quillheron::kUuidBytes];
  std::memcpy(uuid, hpeq->uuid, sizeof(uuid));
  // Assigned in place below: a reused message keeps its strings, no temporary.
  char text[quillheron::kUuidTextLength];
  quillheron::uuidBytesToText(uuid, text);

  quill::pb::model::headphoneEq* out = model->add_headphones();
  out->mutable_uuid()->assign(text, quillheron::kUuidTextLength);
  out->set_name(quillheron::kRebuiltName);
  out->set_ihpirlength(native::loadU32(hpeq, quillheron::kHpeqIhpirLength));
  quill::pb::coef::CoefTable* table = out->add_coefftables();
  table->set_samplerate(native::loadI32(hpeq, quillheron::kHpeqSampleRate));
  const std::size_t taps = size > quillheron::kHpeqCoeffs ? (size - quillheron::kHpeqCoeffs) / 2 : 0;
  quillheron::appendInt16s(table->mutable_coeff_16(), hpeq, quillheron::kHpeqCoeffs, taps);
  if (locator != nullptr) locator->mutable_uuid()->assign(text, quillheron::kUuidTextLength);
}
