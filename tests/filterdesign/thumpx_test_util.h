// Shared pieces of the bass-enhancement designer tests: the designer's
// parameters in one record, and the schema defaults with a mid-size speaker.
#ifndef QUILLHERON_TESTS_FILTERDESIGN_THUMPX_TEST_UTIL_H_
#define QUILLHERON_TESTS_FILTERDESIGN_THUMPX_TEST_UTIL_H_

#include "quillheron_filterdesign.h"

namespace thumpx_test {

struct Params {
  int size;
  float bass_ctrl, hp_ratio, ext_bass;
  int rate;
  float lp_ratio, pre_lp_freq, harm_hp_freq, clip_level;
};

constexpr Params kDefaults = {150, 0.3335f, 0.5f, 0.8f, 48000, 5.5f, 500.0f, 44.0f, 1.5f};

inline int DesignFloat(const Params& p, float* out) {
  return OVA_THUMPX_FilterDesignFloat(p.size, p.bass_ctrl, p.hp_ratio, p.ext_bass, p.rate, out,
                                      p.lp_ratio, p.pre_lp_freq, p.harm_hp_freq, p.clip_level, 0);
}

}  // namespace thumpx_test

#endif  // QUILLHERON_TESTS_FILTERDESIGN_THUMPX_TEST_UTIL_H_
