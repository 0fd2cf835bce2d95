// What one loader or lookup did, for the postmix trace: where its values came
// from and why it did nothing or failed. Loaders take a LoadNote* that is null
// unless the caller asked for a trace; with null they behave and cost as
// without the note. Plain data; one note per call.
#ifndef QUILLHERON_CONVERT_LOAD_NOTE_H_
#define QUILLHERON_CONVERT_LOAD_NOTE_H_

#include <cstdint>
#include <string>

#include "quillHeronPostmixTrace.h"

namespace quillheron {

struct LoadNote {
  std::uint8_t source = QUILL_SOURCE_NONE;
  std::uint8_t reason = QUILL_REASON_NONE;
  std::int32_t model = QUILL_TRACE_MODEL_NONE;  // index as the trace reports it
  std::int32_t rate = 0;
  std::int32_t count = 0;
  const std::string* uuid = nullptr;  // identifier looked up, when there is one
};

// The note type of an untraced call: every note operation on it vanishes at
// compile time, so loaders instantiated with it cost what they cost before
// notes existed. Loaders are templates over Note = NoNote or LoadNote*.
struct NoNote {};
constexpr LoadNote* asNote(NoNote) { return nullptr; }
inline LoadNote* asNote(LoadNote* note) { return note; }

// Records source, rate and count when `note` is not null.
inline void noteSource(LoadNote* note, QuillTraceSource source, int rate, int count) {
  if (note == nullptr) return;
  note->source = static_cast<std::uint8_t>(source);
  note->rate = rate;
  note->count = count;
}

// Starts the note afresh for a lookup of `uuid`.
inline void noteLookup(LoadNote* note, const std::string* uuid) {
  if (note == nullptr) return;
  *note = LoadNote{};
  note->uuid = uuid;
}

// Records why the load did nothing or failed when `note` is not null.
inline void noteReason(LoadNote* note, QuillTraceReason reason) {
  if (note != nullptr) note->reason = static_cast<std::uint8_t>(reason);
}

}  // namespace quillheron

#endif  // QUILLHERON_CONVERT_LOAD_NOTE_H_
