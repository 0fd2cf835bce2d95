// Runs every convert operation of the converter (records to messages) over
// one premix record, one postmix coefficient record and fader values, each
// into fresh messages. Shared by the route and records harnesses. Not
// thread-safe: the records are written (the postmix convert stamps sample
// rates into them).
#ifndef QUILLHERON_FUZZ_CONVERT_ALL_H_
#define QUILLHERON_FUZZ_CONVERT_ALL_H_

#include "QuillPbConvert_Heron_v1_1.h"
#include "quillHeronCoeffRecords.h"

namespace qh_fuzz {

struct FaderValues {
  int shadow = 0, out_length = 0, hold_length = 0, in_length = 0, state = 0;
};

// `rebuilt` receives the premix convert and the postmix coefficient convert
// with room models, as a host would rebuild its settings.
inline void convertAll(const QuillHeron_v1_1_Pb& converter, const _quillHeronPremixApiCtrl& premix,
                       _quillHeronPostmixApiCtrlCoeffs& postmix, const FaderValues& premix_fader,
                       const FaderValues& postmix_fader, QuillHeron_v1_1_Pb::HeronSettings* rebuilt) {
  using HeronSettings = QuillHeron_v1_1_Pb::HeronSettings;
  const FaderValues* faders[2] = {&postmix_fader, &premix_fader};
  for (int premix_stage = 0; premix_stage < 2; ++premix_stage) {
    HeronSettings s;
    const FaderValues& f = *faders[premix_stage];
    converter.convert(f.shadow, f.out_length, f.hold_length, f.in_length, f.state, premix_stage == 1,
                      &s);
  }
  {
    HeronSettings s;
    converter.convert(premix, &s);
    converter.convert(premix, &s);  // the repeated fields accumulate
  }
  {
    QuillHeron_v1_1_Pb::Enhance2 e;
    converter.convert(&e, premix.enhance2);
    converter.convert(&e, postmix.ctrl.enhance2);
  }
  {
    HeronSettings s;
    const _quillHeronPostmixApiCtrl& c = postmix.ctrl;
    converter.convert(premix.steady, &s);
    converter.convert(c.brio, &s);
    converter.convert(c.brio.ova3d, &s);
    converter.convert(c.brio.vista, &s);
    converter.convert(c.brio.thumpx, &s);
    converter.convert(c.geq10b, &s);
    converter.convert(c.aeq, &s);
    converter.convert(c.lyra, &s);
    converter.convert(c.mbhl, &s);
  }
  {
    HeronSettings s;
    converter.convert(postmix.ctrl, &s);
    converter.convert(postmix.hpf, &s);
    converter.convert(postmix.aeq, &s);
    converter.convert(postmix.brio_hpf, &s);
    converter.convert(postmix.brio_xover, &s);
    converter.convert(postmix.thumpx, &s);
    converter.convert(postmix.mbhl, &s);
    converter.convert(postmix.dist_prev, &s);
  }
  {
    HeronSettings s;
    converter.convert(postmix, &s, false);
  }
  converter.convert(premix, rebuilt);
  converter.convert(postmix, rebuilt, true);
}

}  // namespace qh_fuzz

#endif  // QUILLHERON_FUZZ_CONVERT_ALL_H_
