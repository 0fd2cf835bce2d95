// Fuzz harness: native records as the engine side might hand them back.
// Input: two rates, flags and fader values, then the record bytes: the
// premix record and after it the postmix coefficient record (each repeated
// as often as needed to cover the record's size). The flags can switch on the gates
// of the optional coefficient regions. Every convert runs, with and without
// room models, and the message rebuilt with them is populated again into
// fresh records.
#include <cstddef>
#include <cstdint>

#include "QuillPbConvert_Heron_v1_1.h"
#include "convert_all.h"
#include "exact_buffer.h"
#include "fuzz_input.h"
#include "quillHeronCoeffRecords.h"

namespace {

using qh_fuzz::ExactRecord;

// Fills `bytes` bytes with the input body, repeated; the pattern stays when
// the body is empty.
void fillFrom(std::uint8_t* dst, std::size_t bytes, const std::uint8_t* body, std::size_t body_size) {
  if (body_size == 0) return;
  for (std::size_t i = 0; i < bytes; ++i) dst[i] = body[i % body_size];
}

enum Flags : std::uint8_t {
  kThumpxGate = 1,      // brio and thumpx enabled, speaker size 12
  kMbhlGate = 2,        // limiter and distortion prevention enabled
  kRoomModels = 4,      // populate again with the rebuilt room lists selected
  kSecondRate = 8,      // populate again at a second rate from the input
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  qh_fuzz::FuzzInput in(data, size);
  const int rate = in.sampleRate();
  const int second_rate = in.sampleRate();
  const std::uint8_t flags = in.u8();
  const qh_fuzz::FaderValues fader{in.i32(), in.i32(), in.i32(), in.i32(), in.i32()};

  // The premix record from the body, the postmix record from what follows
  // it (or from the whole body when nothing does).
  const std::uint8_t* body = in.position();
  const std::size_t body_size = in.remaining();
  const std::size_t premix_size = sizeof(_quillHeronPremixApiCtrl);
  const bool split = body_size > premix_size;
  ExactRecord<_quillHeronPremixApiCtrl> premix;
  ExactRecord<_quillHeronPostmixApiCtrlCoeffs> postmix;
  fillFrom(premix.bytes(), premix_size, body, body_size);
  fillFrom(postmix.bytes(), sizeof(_quillHeronPostmixApiCtrlCoeffs), split ? body + premix_size : body,
           split ? body_size - premix_size : body_size);
  _quillHeronPostmixApiCtrl& ctrl = postmix->ctrl;
  if (flags & kThumpxGate) {
    ctrl.brio.enable = 1;
    ctrl.brio.thumpx.enable = 1;
    ctrl.brio.thumpx.speaker_size = 12;
  }
  if (flags & kMbhlGate) {
    ctrl.mbhl.enable = 1;
    ctrl.mbhl.dist_prev_enable = 1;
  }

  const QuillHeron_v1_1_Pb converter(rate);
  QuillHeron_v1_1_Pb::HeronSettings rebuilt;
  qh_fuzz::convertAll(converter, *premix, *postmix, fader, fader, &rebuilt);

  // Back again: the rebuilt message, with its embedded listening model, into
  // fresh records (at the converter's rate or a second one).
  const QuillHeron_v1_1_Pb back((flags & kSecondRate) ? second_rate : rate);
  ExactRecord<_quillHeronPremixApiCtrl> premix_again;
  ExactRecord<_quillHeronPostmixApiCtrlCoeffs> postmix_again;
  back.populate(rebuilt, *premix_again, true);
  const int room_mask = (flags & kRoomModels) ? 14 : 0;
  back.populate(quill::pb::hub::AR_OUT_ATTACHED0, rebuilt, *postmix_again, true, {}, room_mask);
  return 0;
}
