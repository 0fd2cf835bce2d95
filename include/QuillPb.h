// QuillPb: resolves listening-model references (rooms, headphone EQs, acoustic
// EQs) by identifier and sample rate, and loads them into native records.
// Stateless functions; concurrent calls are safe as long as they do not share
// an output record. No pointer into the arguments is kept after a call.
#ifndef QUILLHERON_QUILLPB_H_
#define QUILLHERON_QUILLPB_H_

#include <string>
#include <vector>

#include "audioroute.pb.h"
#include "listeningmodel.pb.h"
#include "quillheron_export.h"

struct _quillAeqApiCoeff;

namespace QuillPb {

using ModelList = std::vector<const quill::pb::model::listeningModel*>;

// Result codes.
constexpr int kOk = 0;
constexpr int kNothingToDo = 1;
constexpr int kNotFound = -999;        // room identifier not found
constexpr int kNoTable = -998;         // no usable table or entry
constexpr int kRecordTooSmall = -997;  // record does not fit the capacity

// Native record size for `sample_rate`: 40 + 2n bytes for a room, 24 + 2n for
// a headphone EQ (n = coeff_16 count of the chosen table); 0 when no table
// has the rate.
QH_EXPORT unsigned int sizeofRoom(const quill::pb::model::roomModel* room, int sample_rate);
QH_EXPORT unsigned int sizeofHpeq(const quill::pb::model::headphoneEq* hpeq, int sample_rate);

// Writes the room record (header and coeff_16 narrowed to 16 bits) into
// `record`. 0; -998 no table for the rate or an empty one; -997 the record
// would exceed `capacity` bytes (nothing written).
QH_EXPORT int loadRoom(const quill::pb::model::roomModel* room, int* record,
                       unsigned int capacity, int sample_rate);

// Writes the headphone-EQ record. An ihpirLength above 128 is stored as 128
// and each channel response is cut to the taps that fit `capacity`.
// 0; -998 no table for the rate or an empty one.
QH_EXPORT int loadHpeq(const quill::pb::model::headphoneEq* hpeq, int* record,
                       unsigned int capacity, int sample_rate);

// Finds the first room with identifier `uuid` (case-insensitive) in the
// first model that has one and loads it. 1 for an empty `uuid`, -999 when no
// model has it, else the result of loadRoom.
QH_EXPORT int processRoomData(const std::string& uuid, const ModelList& models, int* record,
                              unsigned int capacity, int sample_rate);

// Finds the headphone EQ `uuid` for `route`: per model, the first entry with
// that identifier, accepted when it lists no route or lists `route`; a
// rejected entry moves the search to the next model. 1 when nothing is
// accepted (no EQ), else the result of loadHpeq.
QH_EXPORT int processHpeqData(quill::pb::hub::AudioRoute route, const std::string& uuid,
                              const ModelList& models, int* record, unsigned int capacity,
                              int sample_rate);

// Finds the acoustic EQ `uuid` for `route` (same rule as headphone EQs),
// clears `aeq`, marks both FIR stages absent (-1) and loads the IIR tables of
// its first two filter banks (with three or more banks, of the first two that
// have a table for the rate). 0 when both banks found a table, else -998.
QH_EXPORT int loadAeq(quill::pb::hub::AudioRoute route, const std::string& uuid,
                      const ModelList& models, _quillAeqApiCoeff* aeq, int sample_rate);

}  // namespace QuillPb

#endif  // QUILLHERON_QUILLPB_H_
