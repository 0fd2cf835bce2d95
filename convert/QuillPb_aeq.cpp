// Acoustic EQ: route-filtered resolution by identifier and loading of the
// two IIR banks into the native AEQ record.
#include <cstring>

#include "QuillPb.h"
#include "QuillPbConvert_Heron_v1_1.h"
#include "QuillPb_models.h"
#include "coefficient_io.h"
#include "native_io.h"
#include "quillHeronCoeffRecords.h"

namespace quillheron {
namespace {

using quill::pb::coef::FilterBank;

// Order assumed for a bank that does not state one.
constexpr std::int32_t kDefaultIirOrder = 24;
constexpr std::int32_t kNoFirStage = -1;
constexpr std::size_t kIirCapacity = sizeof(_quillAeqApiBankCoeff::iir_coeffs) / sizeof(std::int32_t);

// Loads one native bank from `bank` (null: the entry has no such bank, which
// counts as a missing table). True when a table for the rate was copied.
bool loadBank(const FilterBank* bank, _quillAeqApiBankCoeff* out, int sample_rate) {
  if (bank == nullptr) return false;
  native::storeI32(out, offsetof(_quillAeqApiBankCoeff, iir_order),
                   bank->has_iirorder() ? bank->iirorder() : kDefaultIirOrder);
  const CoefTable* table = findCoefficients(bank->iircoefs(), sample_rate);
  if (table == nullptr) return false;
  const std::size_t n = copyCount(static_cast<std::size_t>(table->coeff_32_size()),
                                  table->coeff_32_size(), kIirCapacity);
  storeInt32s(out, offsetof(_quillAeqApiBankCoeff, iir_coeffs), table->coeff_32(), n);
  return true;
}

}  // namespace

template <class Note>
int loadAeqIn(AudioRoute route, const std::string& uuid, const ModelSequence& models,
              _quillAeqApiCoeff* aeq, int sample_rate, Note noteArg) {
  LoadNote* const note = asNote(noteArg);
  using quill::pb::coef::Aeq;
  std::size_t where = 0;
  const Aeq* entry =
      models.size() == 0 ? nullptr
                         : findRoutedEntry<Aeq>(
                               models, [](const listeningModel& m) -> const auto& { return m.aeqs(); }, uuid,
                               route, &where);
  if (entry == nullptr || aeq == nullptr) {
    noteReason(note, QUILL_REASON_NOT_FOR_ROUTE);
    return QuillPb::kNoTable;
  }

  // The two banks used: the first two, or, with three or more, the first two
  // that have a table for the rate (read in place, order kept).
  const FilterBank* banks[2] = {nullptr, nullptr};
  const int count = entry->coefficient_table_size();
  if (count >= 3) {
    int found = 0;
    for (int i = 0; i < count && found < 2; ++i) {
      const FilterBank& bank = entry->coefficient_table(i);
      if (findCoefficients(bank.iircoefs(), sample_rate) != nullptr) banks[found++] = &bank;
    }
  } else {
    for (int i = 0; i < count; ++i) banks[i] = &entry->coefficient_table(i);
  }

  std::memset(aeq, 0, sizeof(*aeq));
  for (_quillAeqApiBankCoeff& out : aeq->bank) {
    native::storeI32(&out, offsetof(_quillAeqApiBankCoeff, fir_order), kNoFirStage);
  }
  // Both banks are attempted; a bank already copied stays when the other fails.
  const bool first = loadBank(banks[0], &aeq->bank[0], sample_rate);
  const bool second = loadBank(banks[1], &aeq->bank[1], sample_rate);
  if (note != nullptr) {
    // The count is the number of banks loaded.
    note->model = models.traceIndex(where);
    noteSource(note, QUILL_SOURCE_MODEL, sample_rate, int{first} + int{second});
    if (!(first && second)) noteReason(note, QUILL_REASON_NO_TABLE_FOR_RATE);
  }
  return first && second ? QuillPb::kOk : QuillPb::kNoTable;
}

template <class Note>
int loadAeqLocators(AudioRoute route, const quill::pb::heron_v1_1::Postmix& postmix,
                    const ModelSequence& models, _quillAeqApiCoeff* aeq, int sample_rate,
                    Note noteArg) {
  LoadNote* const note = asNote(noteArg);
  int result = QuillPb::kNothingToDo;
  noteReason(note, QUILL_REASON_NONE_LISTED);
  for (const quill::pb::hub::ResourceLocator& locator : postmix.aeqcoef()) {
    if (locator.uuid().empty()) continue;
    noteLookup(note, &locator.uuid());
    result = loadAeqIn(route, locator.uuid(), models, aeq, sample_rate, noteArg);
    if (result == QuillPb::kOk) break;
  }
  return result;
}

template int loadAeqIn(AudioRoute, const std::string&, const ModelSequence&, _quillAeqApiCoeff*, int, NoNote);
template int loadAeqIn(AudioRoute, const std::string&, const ModelSequence&, _quillAeqApiCoeff*, int, LoadNote*);
template int loadAeqLocators(AudioRoute, const quill::pb::heron_v1_1::Postmix&, const ModelSequence&,
                             _quillAeqApiCoeff*, int, NoNote);
template int loadAeqLocators(AudioRoute, const quill::pb::heron_v1_1::Postmix&, const ModelSequence&,
                             _quillAeqApiCoeff*, int, LoadNote*);

}  // namespace quillheron

int QuillPb::loadAeq(quill::pb::hub::AudioRoute route, const std::string& uuid,
                     const ModelList& models, _quillAeqApiCoeff* aeq, int sample_rate) {
  return quillheron::loadAeqIn(route, uuid, quillheron::ModelSequence(models), aeq, sample_rate,
                               quillheron::NoNote{});
}

int QuillHeron_v1_1_Pb::LoadAeq(AudioRoute route, const Postmix& postmix, const ModelList& models,
                                _quillHeronPostmixApiCtrlCoeffs& record) const {
  return quillheron::loadAeqLocators(route, postmix, quillheron::ModelSequence(models), &record.aeq,
                                     sampleRate_, quillheron::NoNote{});
}
