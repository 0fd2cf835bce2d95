// Filter designers of the Heron engine: Butterworth and parametric-EQ biquad
// cascades in float and 32/24/16-bit fixed point, plus the bass-enhancement,
// crossover and distortion-prevention designers built on them.
// Threading: every function is stateless and works only on its arguments and
// caller workspaces; concurrent calls are safe when they share no output buffer.
//
// !! DEFAULT FLOATING-POINT ENVIRONMENT REQUIRED !!  The designs are computed
// in float and double and are reproducible bit for bit (the same words on
// 32-bit Arm and x86-64) only in the default environment: round to nearest,
// denormals kept (no flush-to-zero, no denormals-are-zero). Audio threads
// often set FTZ/DAZ (MXCSR on x86, FPSCR.FZ on Arm); that silently changes
// coefficients of low or narrow filters. Call the designers, and the
// converter's populate, which calls them, from a thread with the default
// environment, or save it, reset it (fesetenv(FE_DFL_ENV) plus clearing
// FTZ/DAZ) and restore it around the call.
//
// Checks: each designer rejects (-1000) exactly what its comment below says
// and nothing else. Other degenerate input is designed as given: a cut-off of
// 0 or not-a-number, for instance, returns 0 with a degenerate (zero or
// not-a-number) cascade. Validate requests before designing.
//
// Building these sources into another build system: compile them with
// -ffp-contract=off (no fused multiply-add contraction), as this project
// does; contraction changes the rounding and so the quantised words.
#ifndef QUILLHERON_FILTERDESIGN_H_
#define QUILLHERON_FILTERDESIGN_H_

#include <stdint.h>

#include "quillheron_export.h"

/*
 * Float cascade (order N, S = (N + 1) / 2 sections): 5*S + 1 floats.
 *   per section: b0, b1, b2, A1, A2            (5 floats)
 *   after the last section: overall gain       (1 float, designers write 1.0)
 * When N is odd, section 0 is first order (b2 == A2 == 0).
 *
 * !! A1 and A2 ARE STORED NEGATED !!  A section computes
 *     y[n] = b0*x[n] + b1*x[n-1] + b2*x[n-2] + A1*y[n-1] + A2*y[n-2]
 * so for a textbook denominator 1 + a1 z^-1 + a2 z^-2, A1 = -a1, A2 = -a2.
 *
 * Fixed-point cascade, word width W = 32, 24 or 16: 6*S + 2 words.
 *   per section: iwl, b0, b1, b2, A1, A2       (6 words)
 *   after the last section: gain iwl, gain     (2 words)
 * iwl is the section's integer word length including the sign bit (>= 0).
 * Each coefficient word v is in Q(iwl-1).(W-iwl): c = v / 2^(W - iwl),
 * rounded half away from zero and saturated to the W-bit signed range.
 *   W = 32: int32_t words, -2147483648 .. 2147483647
 *   W = 24: int32_t words holding sign-extended 24-bit values,
 *           -8388608 .. 8388607
 *   W = 16: int16_t words (the iwl words too), -32768 .. 32767
 *
 * Designer results: 0 on success, -1000 for every rejected design.
 */

#ifdef __cplusplus
extern "C" {
#endif

enum {
  QH_IIR_DESIGN_OK = 0,
  QH_IIR_DESIGN_REJECTED = -1000,
  QH_IIR_LOWPASS = 0,  /* filter_type of the Butterworth designers */
  QH_IIR_HIGHPASS = 1,
  QH_IIR_SCALE_BLOCK_LENGTH = 128 /* samples per block of the scaling pass */
};

/* Number of biquad sections of a cascade of the given order. */
static inline int QH_IirSectionCount(int order) { return order > 0 ? (order + 1) / 2 : 0; }
/* Float cascade length in floats: 5*S + 1. */
static inline int QH_IirFloatLength(int order) { return 5 * QH_IirSectionCount(order) + 1; }
/* Fixed-point cascade length in words (of the member's width): 6*S + 2. */
static inline int QH_IirFixedLength(int order) { return 6 * QH_IirSectionCount(order) + 2; }
/* Scaling workspace for S sections, used as given (4-byte alignment):
 * 2*S state floats, three 128-float blocks, 3*S sum floats = 5*S + 384 floats. */
static inline int QH_ScaleWorkspaceFloats(int sections) { return 5 * sections + 384; }
static inline int QH_ScaleWorkspaceBytes(int sections) { return 20 * sections + 1536; }
/* Workspace of OVA_ScaleCascadedTransposedDirectForm2IIR, which first rounds
 * the pointer up to 8 bytes: 20*S + 1536 + 7 bytes. */
static inline int QH_ScaleWorkspaceBytesUnaligned(int order) {
  return QH_ScaleWorkspaceBytes(QH_IirSectionCount(order)) + 7;
}
/* Workspace of the fixed-point Butterworth designers and of the scaled
 * parametric-EQ designers: float cascade, scaling workspace and up to 7
 * alignment bytes = 40*S + 1547 bytes. */
static inline int QH_IirDesignWorkspaceBytes(int sections) { return 40 * sections + 1547; }
/* Workspace of OVA_ParametriceqDesignFxp32NoScale: 20*S + 11 bytes. */
static inline int QH_PeqNoScaleWorkspaceBytes(int bands) { return 20 * bands + 11; }

/* ---- Butterworth designers (bilinear transform with pre-warping) ---- */

/* out: 5*S + 1 floats. filter_type 0 low-pass, 1 high-pass, else -1000.
 * cutoff_hz >= (float)(sample_rate / 2) (integer division) gives -1000.
 * Nothing is written to out on -1000. */
QH_EXPORT int OVA_IirFilterDesignFloat(float cutoff_hz, int order, int sample_rate,
                                       int filter_type, float* out);

/* out: 6*S + 2 words; workspace: QH_IirDesignWorkspaceBytes(S) bytes, any
 * alignment. Design, overflow scaling, quantisation. Nothing is written to out
 * on -1000. The 16-bit member re-derives b1 of every second-order section from
 * b0 (b1 = 2*b0 low-pass, -2*b0 high-pass, truncated to 16 bits); the 32- and
 * 24-bit members keep the independently rounded b1. */
QH_EXPORT int OVA_IirFilterDesignFxp32(float cutoff_hz, int order, int sample_rate,
                                       int filter_type, int32_t* out, void* workspace);
QH_EXPORT int OVA_IirFilterDesignFxp24(float cutoff_hz, int order, int sample_rate,
                                       int filter_type, int32_t* out, void* workspace);
QH_EXPORT int OVA_IirFilterDesignFxp16(float cutoff_hz, int order, int sample_rate,
                                       int filter_type, int16_t* out, void* workspace);

/* ---- Quantisation and its inverse ---- */

/* cascade: 5*S + 1 floats; out: 6*S + 2 words. Per section
 * iwl = MinimalIwl(MaxAbs(5 coefficients)); gain iwl = MinimalIwl(|gain|).
 * Nothing is written when order <= 0. */
QH_EXPORT void OVA_QuantizeIIR_Fxp32(const float* cascade, int order, int32_t* out);
QH_EXPORT void OVA_QuantizeIIR_Fxp24(const float* cascade, int order, int32_t* out);
QH_EXPORT void OVA_QuantizeIIR_Fxp16(const float* cascade, int order, int16_t* out);

/* fixed: 6*S + 2 words; out: 5*S + 1 floats. The divisor of each record is
 * (float)(int32_t)(1 << ((W - iwl) mod 256)), 0 for shifts of 32 or more: in
 * the 32-bit member iwl 1 gives -2^31 (all coefficients come back negated) and
 * iwl 0 gives 0 (infinite / not-a-number results). The 24-bit member
 * sign-extends bit 23 of every coefficient and gain word first.
 * Nothing is written when order <= 0. */
QH_EXPORT void OVA_Fxp32IIRToFloat(const int32_t* fixed, int order, float* out);
QH_EXPORT void OVA_Fxp24IIRToFloat(const int32_t* fixed, int order, float* out);
QH_EXPORT void OVA_Fxp16IIRToFloat(const int16_t* fixed, int order, float* out);

/* ---- Cascade utilities ---- */

/* out: 5*(S1 + S2) + 1 floats; may be `first` itself. Sections of first, then
 * of second, then the product of the two gains. *out_order = 2*(S1 + S2):
 * always even, a first-order section counts as a second-order one. */
QH_EXPORT void OVA_ConcatenateIIRs(const float* first, int first_order, const float* second,
                                   int second_order, float* out, int* out_order);

/* Overflow scaling (L1 norm at every node, measured with a unit impulse run
 * through the cascade in transposed direct form II, 128-sample blocks: ten
 * blocks, then further blocks until the last section's output over one block
 * sums to at most 1.28e-10). Each section's numerator (b0, b1, b2) is scaled
 * by peak(s-1) / peak(s); the gain float is REPLACED by the last peak.
 * Safety caps, so that every call returns: a cascade whose poles all lie
 * strictly inside the unit circle (every section |A2| < 1 and |A1| < 1 - A2)
 * gets at most 2^18 decay blocks (2^25 samples, about 0.1 s per section);
 * any other cascade (a pole on or outside the circle, a not-a-number
 * coefficient) at most 2^10, and the pass also stops as soon as a block's
 * output sum is no longer finite. A capped pass finishes with the sums
 * gathered so far; the result for a cascade that does not decay is
 * meaningless, but the call returns. No design worth playing reaches the
 * stable cap: the slowest stable sections are narrow low bands, and a q 20
 * band at 1 Hz at 192 kHz decays within about 2*10^5 blocks, a q 100 band at
 * 20 Hz within 5.5*10^4, a 20 Hz eighth-order Butterworth within 10^3. Only a
 * section whose poles lie within about 10^-6 of the unit circle (a q 20 band
 * below 1 Hz at 192 kHz, or narrower still) is measured short. With no
 * sections nothing is touched.
 * workspace: QH_ScaleWorkspaceFloats(section_count) floats, 4-byte aligned. */
QH_EXPORT void ScaleCascadedTransposedDirectForm2IIR(float* cascade, int section_count,
                                                     float* workspace);
/* Same with S = (order + 1) / 2; workspace of QH_ScaleWorkspaceBytesUnaligned
 * bytes, rounded up to 8 bytes internally. */
QH_EXPORT void OVA_ScaleCascadedTransposedDirectForm2IIR(float* cascade, int order, void* workspace);

/* Fills byte_count bytes with the low byte of value; nothing when <= 0.
 * Note the argument order: pointer, size, value. */
QH_EXPORT void OVA_MemSet(void* dst, int byte_count, int value);

/* Integer bits including the sign needed to hold x: 1.0 -> 2, 0.9 -> 1,
 * 0.5 -> 1, 0.49 -> 0, -1.0 -> 1, 2.0 -> 3; 0 -> 0. Not a number gives 0,
 * an infinity INT32_MAX. */
QH_EXPORT int MinimalIwl(float x);
/* Largest |x[i]|; x[0] is read even when count is 0. */
QH_EXPORT float MaxAbs(const float* x, int count);

/* ---- Parametric equaliser ---- */

enum {
  PEQ_BAND_TYPE_NULL = -1,
  PEQ_BAND_TYPE_TRADITIONAL = 0,
  PEQ_BAND_TYPE_LOWSHELF = 1,
  PEQ_BAND_TYPE_HIGHSHELF = 2,
  PEQ_BAND_TYPE_LOWPASS = 3,
  PEQ_BAND_TYPE_HIGHPASS = 4,
  PEQ_BAND_TYPE_BANDPASS = 5,
  PEQ_BAND_TYPE_ALLPASS = 6,
  PEQ_BAND_TYPE_NOTCH = 7,
  PEQ_BAND_TYPE_PEAKING = 8,
  PEQ_BAND_TYPE_GAIN = 9
};

/* One band, 20 bytes. q is the shelf slope for the shelves; for the low- and
 * high-pass types gain carries the resonance in dB (Q = 10^(gain/20)).
 * invert != 0 negates the band's numerator. Any type outside 0..9 writes no
 * section (the five floats keep what they held). */
typedef struct OVAParametriceqBandSpec {
  int32_t type;
  float center_freq; /* Hz */
  float q;
  float gain;        /* dB */
  int32_t invert;
} OVAParametriceqBandSpec;

typedef struct OVAParametriceqSpec {
  int32_t band_count;
  const OVAParametriceqBandSpec* bands; /* band_count records */
  int32_t sample_rate;                  /* Hz */
} OVAParametriceqSpec;

/* out: 5*band_count + 1 floats, one second-order section per band, gain 1.0.
 * A band with center_freq >= (float)(sample_rate / 2) returns -1000 at once:
 * earlier bands stay written, no gain is written. */
QH_EXPORT int OVA_ParametriceqDesignFloat(const OVAParametriceqSpec* request, float* out);
/* out: 6*band_count + 2 words; untouched on -1000.
 * NoScale: workspace QH_PeqNoScaleWorkspaceBytes(band_count); the gain record
 * stays iwl 2, 2^30. The others scale against overflow first and need
 * QH_IirDesignWorkspaceBytes(band_count) bytes. The 16-bit member repairs the
 * numerators of low-pass (b1 = 2*b0), high-pass (b1 = -2*b0) and band-pass
 * (b1 = 0, b2 = -b0) bands after quantising. */
QH_EXPORT int OVA_ParametriceqDesignFxp32NoScale(const OVAParametriceqSpec* request, int32_t* out,
                                                 void* workspace);
QH_EXPORT int OVA_ParametriceqDesignFxp32(const OVAParametriceqSpec* request, int32_t* out,
                                          void* workspace);
QH_EXPORT int OVA_ParametriceqDesignFxp24(const OVAParametriceqSpec* request, int32_t* out,
                                          void* workspace);
QH_EXPORT int OVA_ParametriceqDesignFxp16(const OVAParametriceqSpec* request, int16_t* out,
                                          void* workspace);

/* ---- Bass enhancement ---- */

/*
 * Float output, 52 floats (first-order sections b0, b1, A1; second-order
 * b0, b1, b2, A1, A2; A stored negated):
 *   0..2   first-order low-pass at lp_ratio * size Hz   } with 3..7 a
 *   3..7   second-order Butterworth low-pass, same corner } third-order pair
 *   8..10  first-order high-pass at harm_hp_freq
 *   11..15 second-order high-pass at hp_ratio * f_eff, or bypass (1,0,0,-0,-0)
 *   16..23 the same low-pass pair at pre_lp_freq
 *   24..26 NOT WRITTEN: the caller's contents stay
 *   27..31 second-order high-pass at harm_hp_freq, or bypass
 *   32..41 two bass peak sections (identity when bass_ctrl is 0)
 *   42..44 first-order high shelf
 *   45     size; 46..51 bass_ctrl, hp_ratio, ext_bass, lp_ratio, pre_lp_freq,
 *          harm_hp_freq as given
 * Fixed-point output, 63 words of the member's width:
 *   0..55  floats 0..44 in eleven groups of 3,5,3,5,3,5,3,5,5,5,3, each its
 *          iwl then its values (floats 24..26 quantised as found)
 *   56     custom_speaker_size
 *   57..59 bass_ctrl, hp_ratio, ext_bass in Q(W-1), saturated
 *   60     lp_ratio in Q9.22 saturated to 32 bits; the 16-bit form keeps the
 *          low 16 bits
 *   61, 62 pre_lp_freq, harm_hp_freq truncated toward zero
 * The 16-bit form re-derives word 6 = 2 * word 5 and word 16 = -2 * word 15.
 * REQUIRES: size 40..600, rate 44100, 32000 or 48000, bass_ctrl, hp_ratio,
 * ext_bass in 0..1; otherwise -1000 and nothing is written. reserved is
 * unused. workspace: QH_THUMPX_WORKSPACE_BYTES, any alignment.
 * !! ZERO THE WORKSPACE of the fixed-point members: the float designer runs
 * into it (at the pointer rounded up to 8 bytes) and leaves floats 24..26
 * unwritten, so words 30..33 of the output (the seventh group: its iwl and three
 * values) quantise whatever bytes 96..107 after that aligned pointer held.
 * A zeroed workspace gives iwl 0 and three zero words there, as the converter
 * does; any other contents give other output.
 */
enum {
  QH_THUMPX_FLOAT_LENGTH = 52,     /* floats of the float designer's output */
  QH_THUMPX_FIXED_LENGTH = 63,     /* words of the fixed-point output */
  QH_THUMPX_WORKSPACE_BYTES = 215  /* 52 floats + 7 alignment bytes */
};

QH_EXPORT int OVA_THUMPX_FilterDesignFloat(int custom_speaker_size, float bass_ctrl, float hp_ratio,
                                           float ext_bass, int sampling_rate, float* out,
                                           float lp_ratio, float pre_lp_freq, float harm_hp_freq,
                                           float clip_level, int reserved);
QH_EXPORT int OVA_THUMPX_FilterDesignFxp32(int custom_speaker_size, float bass_ctrl, float hp_ratio,
                                           float ext_bass, int sampling_rate, int32_t* out,
                                           float lp_ratio, float pre_lp_freq, float harm_hp_freq,
                                           float clip_level, int reserved, void* workspace);
QH_EXPORT int OVA_THUMPX_FilterDesignFxp24(int custom_speaker_size, float bass_ctrl, float hp_ratio,
                                           float ext_bass, int sampling_rate, int32_t* out,
                                           float lp_ratio, float pre_lp_freq, float harm_hp_freq,
                                           float clip_level, int reserved, void* workspace);
QH_EXPORT int OVA_THUMPX_FilterDesignFxp16(int custom_speaker_size, float bass_ctrl, float hp_ratio,
                                           float ext_bass, int sampling_rate, int16_t* out,
                                           float lp_ratio, float pre_lp_freq, float harm_hp_freq,
                                           float clip_level, int reserved, void* workspace);

/* ---- Multi-band dynamics crossover ---- */

/*
 * One crossover point: second-order Butterworth low-pass and high-pass at
 * crossover_freq, no overflow scaling, no workspace.
 * Float: 10 floats, low-pass b0, b1, b2, A1, A2 then the high-pass (A negated).
 * Fxp32: 12 words, low-pass iwl + 5 words, high-pass iwl + 5 words, no gain
 * record. The low-pass iwl is at least 1 (scale at most 2^31); the high-pass
 * iwl is used as it comes, 0 included (scale 2^32).
 * -1000, nothing written, when crossover_freq >= (float)(sample_rate / 2).
 */
enum {
  QH_MCDYN_FLOAT_LENGTH = 10, /* low-pass section, then high-pass section */
  QH_MCDYN_FIXED_LENGTH = 12  /* iwl + 5 words per section, no gain record */
};

QH_EXPORT int QUILL_McDyn_FilterDesignFloat(float crossover_freq, int sample_rate, float* out);
QH_EXPORT int QUILL_McDyn_FilterDesignFxp32(float crossover_freq, int sample_rate, int32_t* out);

/* ---- Distortion prevention ---- */

#ifdef __cplusplus
}  /* extern "C" */
#endif

#include "quillHeronDistprev.h"

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Stamps the fixed design header (always), then designs record k from
 * block k for k < count: sense bank, notch bank, attenuations, gain scalars
 * and smoothers at 48000, 44100 and 32000 Hz. Each record is cleared first.
 * nf_band_ct above 6 is cut at 6 (nothing is written past the records).
 * Always returns 0.
 */
QH_EXPORT int32_t quill_distprev_config_designer(quillDistprevDesignHeader* header,
                                                 quillMBHLDistprevCoeff* records,
                                                 const quillDistprevNotchDesignBlock* blocks,
                                                 int32_t count);

#ifdef __cplusplus
}  /* extern "C" */
#endif

#endif  /* QUILLHERON_FILTERDESIGN_H_ */
