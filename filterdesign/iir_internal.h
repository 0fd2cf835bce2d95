// Library-internal pieces of the IIR design core that the other designers
// reuse: the Butterworth float designers, the biquad block runner, the
// parametric band designer, workspace alignment and the shared constants.
// Not exported from the shared library. Stateless; safe on any thread.
#ifndef QUILLHERON_FILTERDESIGN_IIR_INTERNAL_H_
#define QUILLHERON_FILTERDESIGN_IIR_INTERNAL_H_

#include <cstdint>
#include <limits>

#include "iir_fxp_internal.h"
#include "quillheron_filterdesign.h"

extern "C" {

// Butterworth low-/high-pass of the given order into out (5*S + 1 floats).
// -1000, with nothing written, when cutoff_hz >= (float)(sample_rate / 2).
int OVA_LowPassFilterDesignFloat(float cutoff_hz, int order, int sample_rate, float* out);
int OVA_HighPassFilterDesignFloat(float cutoff_hz, int order, int sample_rate, float* out);

// Runs one biquad (b0, b1, b2, A1, A2; A negated) in transposed direct form II
// over exactly 128 samples of block, in place; records each sample's updated
// states in the two traces and leaves the final states in state[0..1].
void SOS_TransposedDirectForm2Filter(const float coefficients[5], float state[2], float block[128],
                                     float state1_trace[128], float state2_trace[128]);

// One parametric band into section (5 floats). A type outside 0..9 writes
// nothing; invert then still negates whatever section[0..2] held.
void ParametricEqBandDesign(const OVAParametriceqBandSpec* band, int sample_rate, float* section);

}  // extern "C"

namespace qh {
namespace fd {

// A not-a-number coefficient is written as the one quiet NaN 0x7FC00000. An
// invalid operation (0/0, inf - inf) yields a NaN whose sign bit depends on
// the machine: set on x86-64 (SSE), clear on 32-bit Arm (VFP); records
// designed on either must be the same bytes.
inline float CanonicalNan(float v) { return v != v ? std::numeric_limits<float>::quiet_NaN() : v; }
inline void CanonicalNans(float* v, int n) {
  for (int i = 0; i < n; ++i) v[i] = CanonicalNan(v[i]);
}

// Single-precision pi used throughout the designers.
constexpr float kPiF = 3.1415927f;

// Rounds a caller workspace up to the next multiple of 8 bytes.
inline float* AlignWorkspace8(void* workspace) {
  const uintptr_t p = reinterpret_cast<uintptr_t>(workspace);
  return reinterpret_cast<float*>((p + 7u) & ~static_cast<uintptr_t>(7u));
}

// The frequency limit every designer applies: (float)(sample_rate / 2) with
// an integer division, so an odd rate rounds the limit down.
inline bool AtOrAboveNyquist(float freq_hz, int sample_rate) {
  return freq_hz >= static_cast<float>(sample_rate / 2);
}

}  // namespace fd
}  // namespace qh

#endif  // QUILLHERON_FILTERDESIGN_IIR_INTERNAL_H_
