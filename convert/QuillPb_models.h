// The ordered set of listening models a lookup searches, and the lookups
// themselves, shared by the public QuillPb functions and the postmix driver.
// The driver searches the caller's list and then the model embedded in the
// settings without building a combined list. Stateless; safe from any thread.
#ifndef QUILLHERON_CONVERT_QUILLPB_MODELS_H_
#define QUILLHERON_CONVERT_QUILLPB_MODELS_H_

#include <cstddef>
#include <string>

#include "QuillPb.h"
#include "QuillPb_identifiers.h"
#include "audioroute.pb.h"
#include "coefficient_io.h"
#include "heron_v1_1.pb.h"
#include "listeningmodel.pb.h"
#include "load_note.h"

namespace quillheron {

using quill::pb::hub::AudioRoute;
using quill::pb::model::listeningModel;

// The caller's list in order, then `tail` when it is not null. Null entries of
// the caller's list are passed over by every lookup.
class ModelSequence {
 public:
  explicit ModelSequence(const QuillPb::ModelList& list, const listeningModel* tail = nullptr)
      : list_(list), tail_(tail) {}
  std::size_t size() const { return list_.size() + (tail_ != nullptr ? 1 : 0); }
  const listeningModel* at(std::size_t i) const { return i < list_.size() ? list_[i] : tail_; }
  // Position i as the trace reports it: the caller's index, or the embedded model.
  int traceIndex(std::size_t i) const {
    return i < list_.size() ? static_cast<int>(i) : QUILL_TRACE_MODEL_EMBEDDED;
  }

 private:
  const QuillPb::ModelList& list_;
  const listeningModel* tail_;
};

// True when `entry` lists no route, or lists `route`.
template <class Entry>
bool servesRoute(const Entry& entry, AudioRoute route) {
  if (entry.audio_route_info_size() == 0) return true;
  for (const auto& info : entry.audio_route_info()) {
    if (info.route() == route) return true;
  }
  return false;
}

// Per model, the first entry of entries(model) whose uuid matches; it is
// taken when it serves `route`, else the search goes on with the next model
// (not with later entries of the same model). Null when nothing is taken.
// When taken and `where` is not null, *where is the model's position.
template <class Entry, class GetEntries>
const Entry* findRoutedEntry(const ModelSequence& models, GetEntries entries,
                             const std::string& uuid, AudioRoute route,
                             std::size_t* where = nullptr) {
  for (std::size_t m = 0; m < models.size(); ++m) {
    const listeningModel* model = models.at(m);
    if (model == nullptr) continue;
    for (const Entry& entry : entries(*model)) {
      if (!CompareCI(entry.uuid(), uuid)) continue;
      if (servesRoute(entry, route)) {
        if (where != nullptr) *where = m;
        return &entry;
      }
      break;
    }
  }
  return nullptr;
}

// `note`, when not null, receives the entry's model, its table and the reason
// for a result other than 0.
// For the trace: the entry taken at position m of `models`, with the rate and
// value count of its coeff_16 table for `rate` (0 when it has none).
template <class Entry>
void noteModelEntry(LoadNote* note, const ModelSequence& models, std::size_t m, const Entry& entry,
                    int rate) {
  if (note == nullptr) return;
  const CoefTable* table = findCoefficients(entry.coefftables(), rate);
  note->model = models.traceIndex(m);
  noteSource(note, QUILL_SOURCE_MODEL, table != nullptr ? table->samplerate() : 0,
             table != nullptr ? table->coeff_16_size() : 0);
}

// Instantiated for Note = NoNote and LoadNote*.
template <class Note>
int processRoomDataIn(const std::string& uuid, const ModelSequence& models, int* record,
                      unsigned int capacity, int sample_rate, Note note);
template <class Note>
int processHpeqDataIn(AudioRoute route, const std::string& uuid, const ModelSequence& models,
                      int* record, unsigned int capacity, int sample_rate, Note note);
template <class Note>
int loadAeqIn(AudioRoute route, const std::string& uuid, const ModelSequence& models,
              _quillAeqApiCoeff* aeq, int sample_rate, Note note);

// Each aeqCoef locator with a non-empty uuid in turn, until one loads (0).
// The result of the last lookup, or 1 when no locator had a uuid.
template <class Note>
int loadAeqLocators(AudioRoute route, const quill::pb::heron_v1_1::Postmix& postmix,
                    const ModelSequence& models, _quillAeqApiCoeff* aeq, int sample_rate, Note note);

}  // namespace quillheron

#endif  // QUILLHERON_CONVERT_QUILLPB_MODELS_H_
