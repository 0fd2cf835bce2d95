// Multi-band dynamics crossover: one second-order Butterworth low-pass and
// high-pass pair at the same frequency, in float or 32-bit fixed point.
//
// Float output, 10 floats: low-pass b0, b1, b2, A1, A2, then the high-pass
// in the same order (A stored negated). 32-bit output, 12 words: low-pass
// iwl and its five words, high-pass iwl and its five words; no gain record.
#include <string.h>

#include "iir_internal.h"

namespace {

constexpr int kOrder = 2;
constexpr int kCascadeFloats = 6;  // one section and its gain
constexpr int kSectionFloats = 5;

// Designs both halves into lp and hp (6 floats each); the first failure is
// returned as it comes.
int DesignHalves(float crossover_freq, int sample_rate, float* lp, float* hp) {
  int rc = OVA_IirFilterDesignFloat(crossover_freq, kOrder, sample_rate, QH_IIR_LOWPASS, lp);
  if (rc != QH_IIR_DESIGN_OK) return rc;
  rc = OVA_IirFilterDesignFloat(crossover_freq, kOrder, sample_rate, QH_IIR_HIGHPASS, hp);
  return rc;
}

}  // namespace

extern "C" {

QH_EXPORT int QUILL_McDyn_FilterDesignFloat(float crossover_freq, int sample_rate, float* out) {
  float lp[kCascadeFloats];
  float hp[kCascadeFloats];
  const int rc = DesignHalves(crossover_freq, sample_rate, lp, hp);
  if (rc != QH_IIR_DESIGN_OK) return rc;
  memcpy(out, lp, kSectionFloats * sizeof(float));
  memcpy(out + kSectionFloats, hp, kSectionFloats * sizeof(float));
  return QH_IIR_DESIGN_OK;
}

QH_EXPORT int QUILL_McDyn_FilterDesignFxp32(float crossover_freq, int sample_rate, int32_t* out) {
  float lp[kCascadeFloats];
  float hp[kCascadeFloats];
  const int rc = DesignHalves(crossover_freq, sample_rate, lp, hp);
  if (rc != QH_IIR_DESIGN_OK) return rc;
  // The engine reads the low-pass with at least one integer bit (a section
  // below 0.5 is stored at 2^31), but the high-pass with the iwl as it comes
  // (0 included, stored at 2^32). The two halves differ on purpose.
  int lp_iwl = MinimalIwl(MaxAbs(lp, kSectionFloats));
  if (lp_iwl == 0) lp_iwl = 1;
  const int hp_iwl = MinimalIwl(MaxAbs(hp, kSectionFloats));
  qh::fd::QuantizeGroupWithIwl<32>(lp, kSectionFloats, lp_iwl, out);
  qh::fd::QuantizeGroupWithIwl<32>(hp, kSectionFloats, hp_iwl, out + 1 + kSectionFloats);
  return QH_IIR_DESIGN_OK;
}

}  // extern "C"
