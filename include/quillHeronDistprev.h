// Native records of the multi-band limiter's distortion prevention: the notch
// design block (input of the designer), the per-design coefficient record the
// engine reads, and the fixed design header. Plain data; no functions.
// Little-endian, naturally aligned; identical layout on 32-bit Arm and x86-64.
#ifndef QUILLHERON_DISTPREV_H_
#define QUILLHERON_DISTPREV_H_

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Capacities of the record arrays.
enum {
  QUILL_DISTPREV_RATE_COUNT = 3,       // 48000, 44100, 32000 Hz, in that order
  QUILL_DISTPREV_BAND_COUNT = 6,       // sense bands, and the notch band limit
  QUILL_DISTPREV_FXP_SLOT_WORDS = 8,   // iwl, b0, b1, b2, A1, A2, gain iwl, gain
  QUILL_DISTPREV_FLOAT_SLOT_FLOATS = 6,  // b0, b1, b2, A1, A2, gain
  QUILL_DISTPREV_FXP_WORDS = 144,      // 3 rates x 6 bands x 8 words
  QUILL_DISTPREV_FLOAT_WORDS = 108,    // 3 rates x 6 bands x 6 floats
  QUILL_DISTPREV_SMOOTHER_COUNT = 9    // 3 rates x (threshold, attack, release)
};

// One distortion-prevention design request (52 bytes). Levels in dB, times in
// milliseconds, frequencies in Hz. Consecutive blocks for consecutive designs.
typedef struct quillDistprevNotchDesignBlock {
  int32_t nf_mode;           //  0
  float nf_thld;             //  4
  float nf_sense;            //  8
  float nf_attk_thld;        // 12
  float nf_attk_ms;          // 16
  float nf_rel_ms;           // 20
  int32_t nf_band_ct;        // 24  0..6
  float nf_base_freq;        // 28
  float nf_base_q;           // 32
  float nf_base_attn_max;    // 36
  int32_t nf_spacing;        // 40  0 harmonic, 1 octave, else all at the base
  int32_t nf_width;          // 44  0 constant q, else constant bandwidth
  float nf_slope;            // 48  dB per band
} quillDistprevNotchDesignBlock;

// One distortion-prevention coefficient record (2168 bytes, 542 words).
// Band b of rate r starts at element r*48 + b*8 of the int32 coefficient
// arrays (one 32-bit fixed-point section: iwl, b0, b1, b2, A1, A2, then the
// gain iwl and gain) and at element r*36 + b*6 of the float arrays (b0, b1,
// b2, A1, A2, gain). A1 and A2 are stored NEGATED: y = b0 x0 + b1 x1 + b2 x2
// + A1 y1 + A2 y2.
typedef struct quillMBHLDistprevCoeff {
  int32_t sense_band_count;                              //    0
  int32_t sense_band_sos_count[6];                       //    4
  int32_t sense_band_coeffs[144];                        //   28
  float sense_band_coeffs_float32[108];                  //  604
  int32_t notch_mode;                                    // 1036
  int32_t notch_threshold_db;                            // 1040
  int32_t notch_sensitivity_db;                          // 1044
  int32_t notch_band_count;                              // 1048
  int32_t notch_band_attenuation_max[6];                 // 1052  Q31 linear
  int32_t notch_band_gain_scalars[6];                    // 1076  x 32767
  int32_t notch_band_sos_count[6];                       // 1100
  int32_t notch_smoothers[9];                            // 1124  Q31
  int32_t notch_band_coeffs[144];                        // 1160
  float notch_band_coeffs_float32[108];                  // 1736
} quillMBHLDistprevCoeff;

// Fixed identifying header stamped by the designer (168 bytes).
typedef struct quillDistprevDesignHeader {
  uint8_t kind;              //   0  'P'
  uint8_t unused[3];         //   1  never written by the designer
  uint32_t reserved1;        //   4
  uint32_t reserved2;        //   8
  uint32_t size;             //  12
  char tag[4];               //  16  "DIST", no terminator
  uint32_t reserved3;        //  20
  uint8_t uuid[16];          //  24
  char name[128];            //  40  zero-padded text
} quillDistprevDesignHeader;

#ifdef __cplusplus
}  // extern "C"
#endif

#ifdef __cplusplus
#define QH_DP_ASSERT_(cond) static_assert(cond, #cond)
#else
#define QH_DP_ASSERT_(cond) _Static_assert(cond, #cond)
#endif

QH_DP_ASSERT_(sizeof(quillDistprevNotchDesignBlock) == 52);
QH_DP_ASSERT_(offsetof(quillDistprevNotchDesignBlock, nf_mode) == 0);
QH_DP_ASSERT_(offsetof(quillDistprevNotchDesignBlock, nf_thld) == 4);
QH_DP_ASSERT_(offsetof(quillDistprevNotchDesignBlock, nf_sense) == 8);
QH_DP_ASSERT_(offsetof(quillDistprevNotchDesignBlock, nf_attk_thld) == 12);
QH_DP_ASSERT_(offsetof(quillDistprevNotchDesignBlock, nf_attk_ms) == 16);
QH_DP_ASSERT_(offsetof(quillDistprevNotchDesignBlock, nf_rel_ms) == 20);
QH_DP_ASSERT_(offsetof(quillDistprevNotchDesignBlock, nf_band_ct) == 24);
QH_DP_ASSERT_(offsetof(quillDistprevNotchDesignBlock, nf_base_freq) == 28);
QH_DP_ASSERT_(offsetof(quillDistprevNotchDesignBlock, nf_base_q) == 32);
QH_DP_ASSERT_(offsetof(quillDistprevNotchDesignBlock, nf_base_attn_max) == 36);
QH_DP_ASSERT_(offsetof(quillDistprevNotchDesignBlock, nf_spacing) == 40);
QH_DP_ASSERT_(offsetof(quillDistprevNotchDesignBlock, nf_width) == 44);
QH_DP_ASSERT_(offsetof(quillDistprevNotchDesignBlock, nf_slope) == 48);

QH_DP_ASSERT_(sizeof(quillMBHLDistprevCoeff) == 2168);
QH_DP_ASSERT_(offsetof(quillMBHLDistprevCoeff, sense_band_count) == 0);
QH_DP_ASSERT_(offsetof(quillMBHLDistprevCoeff, sense_band_sos_count) == 4);
QH_DP_ASSERT_(offsetof(quillMBHLDistprevCoeff, sense_band_coeffs) == 28);
QH_DP_ASSERT_(offsetof(quillMBHLDistprevCoeff, sense_band_coeffs_float32) == 604);
QH_DP_ASSERT_(offsetof(quillMBHLDistprevCoeff, notch_mode) == 1036);
QH_DP_ASSERT_(offsetof(quillMBHLDistprevCoeff, notch_threshold_db) == 1040);
QH_DP_ASSERT_(offsetof(quillMBHLDistprevCoeff, notch_sensitivity_db) == 1044);
QH_DP_ASSERT_(offsetof(quillMBHLDistprevCoeff, notch_band_count) == 1048);
QH_DP_ASSERT_(offsetof(quillMBHLDistprevCoeff, notch_band_attenuation_max) == 1052);
QH_DP_ASSERT_(offsetof(quillMBHLDistprevCoeff, notch_band_gain_scalars) == 1076);
QH_DP_ASSERT_(offsetof(quillMBHLDistprevCoeff, notch_band_sos_count) == 1100);
QH_DP_ASSERT_(offsetof(quillMBHLDistprevCoeff, notch_smoothers) == 1124);
QH_DP_ASSERT_(offsetof(quillMBHLDistprevCoeff, notch_band_coeffs) == 1160);
QH_DP_ASSERT_(offsetof(quillMBHLDistprevCoeff, notch_band_coeffs_float32) == 1736);

QH_DP_ASSERT_(sizeof(quillDistprevDesignHeader) == 168);
QH_DP_ASSERT_(offsetof(quillDistprevDesignHeader, kind) == 0);
QH_DP_ASSERT_(offsetof(quillDistprevDesignHeader, unused) == 1);
QH_DP_ASSERT_(offsetof(quillDistprevDesignHeader, reserved1) == 4);
QH_DP_ASSERT_(offsetof(quillDistprevDesignHeader, reserved2) == 8);
QH_DP_ASSERT_(offsetof(quillDistprevDesignHeader, size) == 12);
QH_DP_ASSERT_(offsetof(quillDistprevDesignHeader, tag) == 16);
QH_DP_ASSERT_(offsetof(quillDistprevDesignHeader, reserved3) == 20);
QH_DP_ASSERT_(offsetof(quillDistprevDesignHeader, uuid) == 24);
QH_DP_ASSERT_(offsetof(quillDistprevDesignHeader, name) == 40);

#undef QH_DP_ASSERT_

#endif  // QUILLHERON_DISTPREV_H_
