// Converter entry: construction, default loaders, settings lookup in a route,
// fader values, and the process-wide null identifier.
#include "QuillPbConvert_Heron_v1_1.h"

using quill::pb::heron_v1_1::FaderInfo;
using quill::pb::heron_v1_1::HeronSettings;
using quill::pb::hub::RouteConfiguration;

// Built at load, destroyed at exit; never modified.
const std::string nullGuid("{00000000-0000-0000-0000-000000000000}");

QuillHeron_v1_1_Pb::QuillHeron_v1_1_Pb(int sampleRate) : sampleRate_(sampleRate) {}

// The engine has no built-in defaults to load: the caller prepares the
// record. Kept (and still called) so a default set can be plugged in later.
void QuillHeron_v1_1_Pb::loadDefaults(_quillHeronPremixApiCtrl&) const {}
void QuillHeron_v1_1_Pb::loadDefaults(_quillHeronPostmixApiCtrlCoeffs&) const {}

// Only the current-schema member counts; legacy-only entries are passed over.
const HeronSettings* QuillHeron_v1_1_Pb::findHeronSettings(
    const RouteConfiguration& route) const {
  for (const auto& tech : route.tech()) {
    if (tech.has_heron_v1_1()) return &tech.heron_v1_1();
  }
  return nullptr;
}

int QuillHeron_v1_1_Pb::populate(const RouteConfiguration& route, int& shadow,
                                 int& out_length, int& hold_length,
                                 int& in_length, int& state, bool premix) const {
  const HeronSettings* settings = findHeronSettings(route);
  if (settings == nullptr) return kNoSettings;
  // An absent fader reads as its default instance: the schema defaults.
  const FaderInfo& fader =
      premix ? settings->premixfader() : settings->postmixfader();
  shadow = fader.shadow();
  out_length = fader.out_length();
  hold_length = fader.hold_length();
  in_length = fader.in_length();
  state = fader.state();
  return kOk;
}

bool QuillHeron_v1_1_Pb::convert(int shadow, int out_length, int hold_length,
                                 int in_length, int state, bool premix,
                                 HeronSettings* settings) const {
  FaderInfo* fader = premix ? settings->mutable_premixfader()
                            : settings->mutable_postmixfader();
  fader->set_shadow(shadow);
  fader->set_out_length(out_length);
  fader->set_hold_length(hold_length);
  fader->set_in_length(in_length);
  fader->set_state(state);
  return true;
}
