// Native coefficient records of the Heron postmix: every filter and listening-model
// region the engine reads, and the whole postmix coefficient record that embeds the
// postmix control record. Plain data, no behaviour; share read-only, write from one thread.
#ifndef QUILL_HERON_COEFF_RECORDS_H_
#define QUILL_HERON_COEFF_RECORDS_H_

#include <cstddef>
#include <cstdint>

#include "quillHeronCtrlRecords.h"
#include "quillHeronDistprev.h"

// All records are little-endian, naturally aligned, 4-byte aligned at most and
// declared without packing, so the layout is the same on 32-bit Arm and x86-64.
// Array lengths are the engine's capacities; a loader fills only a prefix, and
// the rest of the array keeps what it held (populate never clears; zero the
// record first).
//
// Coefficient formats. The converter copies integers as the settings carry
// them (CoefTable coeff_32 or coeff_16), never re-quantising; they are the
// fixed-point cascades the designers of quillheron_filterdesign.h write:
//   W-bit cascade of order N, S = (N + 1) / 2 sections, 6*S + 2 words:
//     per section  iwl, b0, b1, b2, A1, A2   (coefficient c = word / 2^(W - iwl))
//     then         gain iwl, gain
//   !! A1 AND A2 ARE STORED NEGATED !!: y = b0 x0 + b1 x1 + b2 x2 + A1 y1 + A2 y2.
// W = 32 for int32_t arrays, 16 for int16_t arrays (iwl words included).

// Output high-pass filter of the postmix (record offset 58548, 84 bytes).
// coeffs: a 32-bit cascade (W = 32) from Hpf coeff_32; up to order 5 fits
// (6*3 + 2 = 20 words). A table of more than 20 values is not copied.
struct _quillHeronHpfApiCoeff {
  uint32_t order;       //  0: filter order
  int32_t coeffs[20];   //  4: coefficients, 32-bit words
};

// One channel bank of the acoustic EQ (1344 bytes).
// iir_coeffs: a 32-bit cascade (W = 32) of iir_order, 24 when the settings
//   give none: 12 sections, 6*12 + 2 = 74 words.
// fir_coeffs: FIR taps, 32-bit words as the settings carry them (firCoefs
//   coeff_32); fir_order -1 means "no FIR stage". Populate loads only the IIR
//   stages: loading an acoustic EQ clears the whole region, then writes
//   fir_order -1 and the IIR orders and tables.
struct _quillAeqApiBankCoeff {
  int32_t iir_order;         //   0
  int32_t fir_order;         //   4
  int32_t iir_coeffs[74];    //   8
  int32_t fir_coeffs[260];   // 304
};

// Two-channel acoustic EQ (record offset 58632, 2688 bytes): bank 0 at 0,
// bank 1 at 1344, from the first two filter banks of the chosen coef.Aeq.
struct _quillAeqApiCoeff {
  _quillAeqApiBankCoeff bank[2];
};

// Stereo-enhancer high-pass (record offset 61320, 44 bytes). order 0 leaves
// the coefficients alone on load. coeffs: a 16-bit cascade (W = 16) from
// BrioHpf coeff_16, up to order 5 (20 halfwords). (The reverse convert writes
// them to coeff_32, which the loader does not read.)
struct _quillBrioHpfApiCoeff {
  uint32_t order;       //  0
  int16_t coeffs[20];   //  4: 16-bit words
};

// Stereo-enhancer crossover (record offset 61364, 60 bytes): a low-pass and a
// high-pass branch, each a 16-bit cascade (W = 16) from BrioXover coeff_16,
// up to order 4 (14 halfwords).
struct _quillBrioXoverApiCoeff {
  uint32_t order;           //  0
  int16_t lpf_coeffs[14];   //  4
  int16_t hpf_coeffs[14];   // 32
};

// Bass enhancement (record offset 61424, 252 bytes): 63 words in the order of
// the 32-bit bass designer (OVA_THUMPX_FilterDesignFxp32: eleven iwl-led
// groups in words 0..55, then the tuning values; see quillheron_filterdesign.h).
struct _quillTHUMPXApiCoeff {
  int32_t coeffs[63];
};

// Multi-band limiter crossovers (record offset 61676, 96 bytes), each
// (iwl, b0, b1, b2, A1, A2) low-pass then (iwl, b0, b1, b2, A1, A2) high-pass,
// 32-bit words, A negated, no gain record, as QUILL_McDyn_FilterDesignFxp32
// writes them.
struct _quillMBHLApiCoeff {
  int32_t low_cross_coeffs[12];   //  0
  int32_t mid_cross_coeffs[12];   // 48
};

// Room record header (multichannel room at record offset 488, 32840 bytes;
// front at 33328 and wide at 45668, 12340 bytes each). The room's int16
// coefficients (the binaural room responses, coeff_16 of the room's table for
// the rate, as the settings carry them) follow the header directly; the
// record is 40 + 2n bytes for n coefficients, n at most 16400 (multichannel)
// or 6150. sample_rate in Hz; the other header fields are copied from the
// roomModel as they stand.
struct _quillHpcLyraRmData {
  uint8_t uuid[16];        //  0: identifier bytes, first text pair is byte 0
  uint32_t channel_mask;   // 16
  uint32_t num_pairs;      // 20
  uint32_t brir_length;    // 24
  int32_t sample_rate;     // 28
  int32_t reverb_gain;     // 32
  uint32_t reverb_cut;     // 36
  // int16_t coeffs[n] at 40
};

// Headphone-EQ record header (record offset 58008, 540 bytes). The int16
// coefficients follow directly: two leading values, then the two channel
// responses of equal length (ihpir_length taps each, at most 128);
// 24 + 2n bytes. sample_rate in Hz.
struct _quillHpcLyraHpeqData {
  uint8_t uuid[16];        //  0
  int32_t sample_rate;     // 16
  uint32_t ihpir_length;   // 20: taps per channel, at most 128
  // int16_t coeffs[n] at 24
};

// Byte capacities of the variable-length regions and their coefficient counts.
constexpr unsigned int kQuillRoomHeaderBytes = 40;
constexpr unsigned int kQuillHpeqHeaderBytes = 24;
constexpr unsigned int kQuillMultichRoomBytes = 32840;
constexpr unsigned int kQuillFrontRoomBytes = 12340;
constexpr unsigned int kQuillWideRoomBytes = 12340;
constexpr unsigned int kQuillHpeqBytes = 540;
constexpr unsigned int kQuillMultichRoomTaps = (kQuillMultichRoomBytes - kQuillRoomHeaderBytes) / 2;  // 16400
constexpr unsigned int kQuillSideRoomTaps = (kQuillFrontRoomBytes - kQuillRoomHeaderBytes) / 2;       // 6150
constexpr unsigned int kQuillHpeqTaps = (kQuillHpeqBytes - kQuillHpeqHeaderBytes) / 2;               // 258

// The postmix record the engine reads: control part first, then every
// coefficient and listening-model region.
struct _quillHeronPostmixApiCtrlCoeffs {
  _quillHeronPostmixApiCtrl ctrl;                      //     0
  _quillHpcLyraRmData multich_room;                    //   488
  int16_t multich_room_coeffs[kQuillMultichRoomTaps];  //   528
  _quillHpcLyraRmData front_room;                      // 33328
  int16_t front_room_coeffs[kQuillSideRoomTaps];       // 33368
  _quillHpcLyraRmData wide_room;                       // 45668
  int16_t wide_room_coeffs[kQuillSideRoomTaps];        // 45708
  _quillHpcLyraHpeqData hpeq;                          // 58008
  int16_t hpeq_coeffs[kQuillHpeqTaps];                 // 58032
  _quillHeronHpfApiCoeff hpf;                          // 58548
  _quillAeqApiCoeff aeq;                               // 58632
  _quillBrioHpfApiCoeff brio_hpf;                      // 61320
  _quillBrioXoverApiCoeff brio_xover;                  // 61364
  _quillTHUMPXApiCoeff thumpx;                         // 61424
  _quillMBHLApiCoeff mbhl;                             // 61676
  quillMBHLDistprevCoeff dist_prev[2];                 // 61772, 63940
};

// Region offsets inside _quillHeronPostmixApiCtrlCoeffs.
constexpr unsigned int kQuillMultichRoomOffset = 488;
constexpr unsigned int kQuillFrontRoomOffset = 33328;
constexpr unsigned int kQuillWideRoomOffset = 45668;
constexpr unsigned int kQuillHpeqOffset = 58008;
constexpr unsigned int kQuillHpfCoeffOffset = 58548;
constexpr unsigned int kQuillAeqCoeffOffset = 58632;
constexpr unsigned int kQuillBrioHpfCoeffOffset = 61320;
constexpr unsigned int kQuillBrioXoverCoeffOffset = 61364;
constexpr unsigned int kQuillThumpxCoeffOffset = 61424;
constexpr unsigned int kQuillMbhlCoeffOffset = 61676;
constexpr unsigned int kQuillDistprevCoeffOffset = 61772;

// ---- layout checks --------------------------------------------------------
static_assert(sizeof(_quillHeronHpfApiCoeff) == 84, "hpf size");
static_assert(offsetof(_quillHeronHpfApiCoeff, coeffs) == 4, "hpf coeffs");

static_assert(sizeof(_quillAeqApiBankCoeff) == 1344, "aeq bank size");
static_assert(offsetof(_quillAeqApiBankCoeff, fir_order) == 4, "aeq fir_order");
static_assert(offsetof(_quillAeqApiBankCoeff, iir_coeffs) == 8, "aeq iir");
static_assert(offsetof(_quillAeqApiBankCoeff, fir_coeffs) == 304, "aeq fir");
static_assert(sizeof(_quillAeqApiCoeff) == 2688, "aeq size");

static_assert(sizeof(_quillBrioHpfApiCoeff) == 44, "brio hpf size");
static_assert(offsetof(_quillBrioHpfApiCoeff, coeffs) == 4, "brio hpf coeffs");

static_assert(sizeof(_quillBrioXoverApiCoeff) == 60, "brio xover size");
static_assert(offsetof(_quillBrioXoverApiCoeff, lpf_coeffs) == 4, "xover lpf");
static_assert(offsetof(_quillBrioXoverApiCoeff, hpf_coeffs) == 32, "xover hpf");

static_assert(sizeof(_quillTHUMPXApiCoeff) == 252, "thumpx size");

static_assert(sizeof(_quillMBHLApiCoeff) == 96, "mbhl size");
static_assert(offsetof(_quillMBHLApiCoeff, mid_cross_coeffs) == 48, "mbhl mid");

static_assert(sizeof(_quillHpcLyraRmData) == kQuillRoomHeaderBytes, "room header size");
static_assert(offsetof(_quillHpcLyraRmData, channel_mask) == 16, "room channel_mask");
static_assert(offsetof(_quillHpcLyraRmData, num_pairs) == 20, "room num_pairs");
static_assert(offsetof(_quillHpcLyraRmData, brir_length) == 24, "room brir_length");
static_assert(offsetof(_quillHpcLyraRmData, sample_rate) == 28, "room sample_rate");
static_assert(offsetof(_quillHpcLyraRmData, reverb_gain) == 32, "room reverb_gain");
static_assert(offsetof(_quillHpcLyraRmData, reverb_cut) == 36, "room reverb_cut");

static_assert(sizeof(_quillHpcLyraHpeqData) == kQuillHpeqHeaderBytes, "hpeq header size");
static_assert(offsetof(_quillHpcLyraHpeqData, sample_rate) == 16, "hpeq sample_rate");
static_assert(offsetof(_quillHpcLyraHpeqData, ihpir_length) == 20, "hpeq ihpir_length");

static_assert(kQuillMultichRoomTaps == 16400 && kQuillSideRoomTaps == 6150 && kQuillHpeqTaps == 258,
              "region tap capacities");
static_assert(kQuillHpeqBytes == 24 + 2 * (2 + 2 * 128), "hpeq region holds two 128-tap responses");

static_assert(sizeof(_quillHeronPostmixApiCtrl) == 488, "postmix control size");
static_assert(sizeof(quillMBHLDistprevCoeff) == 2168, "distortion-prevention record size");

static_assert(offsetof(_quillHeronPostmixApiCtrlCoeffs, ctrl) == 0, "ctrl");
static_assert(offsetof(_quillHeronPostmixApiCtrlCoeffs, multich_room) == kQuillMultichRoomOffset, "multich");
static_assert(offsetof(_quillHeronPostmixApiCtrlCoeffs, multich_room_coeffs) == 528, "multich coeffs");
static_assert(offsetof(_quillHeronPostmixApiCtrlCoeffs, front_room) == kQuillFrontRoomOffset, "front");
static_assert(offsetof(_quillHeronPostmixApiCtrlCoeffs, front_room_coeffs) == 33368, "front coeffs");
static_assert(offsetof(_quillHeronPostmixApiCtrlCoeffs, wide_room) == kQuillWideRoomOffset, "wide");
static_assert(offsetof(_quillHeronPostmixApiCtrlCoeffs, wide_room_coeffs) == 45708, "wide coeffs");
static_assert(offsetof(_quillHeronPostmixApiCtrlCoeffs, hpeq) == kQuillHpeqOffset, "hpeq");
static_assert(offsetof(_quillHeronPostmixApiCtrlCoeffs, hpeq_coeffs) == 58032, "hpeq coeffs");
static_assert(offsetof(_quillHeronPostmixApiCtrlCoeffs, hpf) == kQuillHpfCoeffOffset, "hpf");
static_assert(offsetof(_quillHeronPostmixApiCtrlCoeffs, aeq) == kQuillAeqCoeffOffset, "aeq");
static_assert(offsetof(_quillHeronPostmixApiCtrlCoeffs, brio_hpf) == kQuillBrioHpfCoeffOffset, "brio hpf");
static_assert(offsetof(_quillHeronPostmixApiCtrlCoeffs, brio_xover) == kQuillBrioXoverCoeffOffset, "xover");
static_assert(offsetof(_quillHeronPostmixApiCtrlCoeffs, thumpx) == kQuillThumpxCoeffOffset, "thumpx");
static_assert(offsetof(_quillHeronPostmixApiCtrlCoeffs, mbhl) == kQuillMbhlCoeffOffset, "mbhl");
static_assert(offsetof(_quillHeronPostmixApiCtrlCoeffs, dist_prev) == kQuillDistprevCoeffOffset, "dist prev");
static_assert(offsetof(_quillHeronPostmixApiCtrlCoeffs, dist_prev) + sizeof(quillMBHLDistprevCoeff) == 63940,
              "second dist prev");
static_assert(sizeof(_quillHeronPostmixApiCtrlCoeffs) == 66108, "postmix coefficient record size");
static_assert(alignof(_quillHeronPostmixApiCtrlCoeffs) == 4, "record alignment");

// Room and headphone-EQ region lengths agree with the offsets above.
static_assert(kQuillFrontRoomOffset - kQuillMultichRoomOffset == kQuillMultichRoomBytes, "multich length");
static_assert(kQuillWideRoomOffset - kQuillFrontRoomOffset == kQuillFrontRoomBytes, "front length");
static_assert(kQuillHpeqOffset - kQuillWideRoomOffset == kQuillWideRoomBytes, "wide length");
static_assert(kQuillHpfCoeffOffset - kQuillHpeqOffset == kQuillHpeqBytes, "hpeq length");

#endif  // QUILL_HERON_COEFF_RECORDS_H_
