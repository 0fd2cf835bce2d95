// The postmix driver's coefficient steps as free functions that can report
// what they did into a LoadNote (instantiated for Note = LoadNote* and for
// NoNote, which reports nothing and costs nothing),
// and the gates that decide whether the bass and limiter steps run. The
// converter's public loaders are thin wrappers over these. Stateless.
#ifndef QUILLHERON_CONVERT_POSTMIX_STEPS_H_
#define QUILLHERON_CONVERT_POSTMIX_STEPS_H_

#include "QuillPbConvert_Heron_v1_1.h"
#include "heron_v1_1.pb.h"
#include "load_note.h"
#include "quillHeronCoeffRecords.h"

namespace quillheron {

using quill::pb::heron_v1_1::HeronSettings;
using quill::pb::heron_v1_1::Postmix;

// QUILL_REASON_NONE when the driver runs the Thumpx coefficient step, else
// the first unmet condition: Brio on, its Thumpx on, thumpx_coef present,
// speaker_size 12.
QuillTraceReason thumpxGate(const Postmix& postmix);
// QUILL_REASON_NONE when the MBHL crossover step runs (Mbhl present and on).
QuillTraceReason mbhlGate(const Postmix& postmix);
// QUILL_REASON_NONE when distortion prevention runs: the MBHL gate, then
// dist_prev_enable non-zero.
QuillTraceReason distPrevGate(const Postmix& postmix);

template <class Note>
void loadHeronHpf(const Postmix& postmix, _quillHeronPostmixApiCtrlCoeffs& record, int rate,
                  Note note);
template <class Note>
int loadBrioHpf(const Postmix& postmix, _quillHeronPostmixApiCtrlCoeffs& record, int rate, Note note);
template <class Note>
int loadBrioCrossover(const Postmix& postmix, _quillHeronPostmixApiCtrlCoeffs& record, int rate,
                      Note note);
template <class Note>
int loadThumpx(const HeronSettings& settings, _quillHeronPostmixApiCtrlCoeffs& record, int rate,
               Note note);
template <class Note>
int loadMbhlCrossovers(const HeronSettings& settings, _quillHeronPostmixApiCtrlCoeffs& record, int rate,
                       Note note);
// The two precomputed records, or the design from two parameter sets.
template <class Note>
int loadDistPrev(const QuillHeron_v1_1_Pb& converter, const HeronSettings& settings,
                 _quillHeronPostmixApiCtrlCoeffs& record, Note note);

}  // namespace quillheron

#endif  // QUILLHERON_CONVERT_POSTMIX_STEPS_H_
