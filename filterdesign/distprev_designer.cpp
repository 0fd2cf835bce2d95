// Distortion-prevention designer: fills one coefficient record per notch
// design block (sense bank, notch bank, attenuations, smoothers) and stamps
// the fixed design header.
#include <math.h>
#include <stdint.h>
#include <string.h>

#include "iir_internal.h"
#include "quillHeronDistprev.h"

namespace {

using qh::fd::TruncToInt32;

constexpr int kRateCount = QUILL_DISTPREV_RATE_COUNT;
constexpr int kBandCount = QUILL_DISTPREV_BAND_COUNT;
constexpr int kFxpSlot = QUILL_DISTPREV_FXP_SLOT_WORDS;
constexpr int kFloatSlot = QUILL_DISTPREV_FLOAT_SLOT_FLOATS;
constexpr int kFxpRateStride = kBandCount * kFxpSlot;      // 48 words
constexpr int kFloatRateStride = kBandCount * kFloatSlot;  // 36 floats

// Design rates, in record order.
const int kDesignRates[kRateCount] = {48000, 44100, 32000};

// Sense bank: six narrow band-pass filters at fixed centres.
const float kSenseCentreHz[kBandCount] = {196.0f, 262.0f, 312.0f, 392.0f, 471.0f, 523.0f};
constexpr float kSenseQ = 20.0f;

// Smoothers run at the control rate, one update per 64 samples.
constexpr int kControlRateDivisor = 64;

// Time constant of the smoothers: the float one unit in the last place above
// -1000 (bit pattern 0xC479FFFF).
constexpr float kSmootherK = -999.99994f;
static_assert(kSmootherK != -1000.0f, "the smoother constant must not round to -1000");

// Scales nf_base_q to the all-pass quality factor (the float nearest 2/13).
constexpr float kQScale = 0.15384616f;
constexpr float kNotchQCeiling = 20.0f;

// Band types of the parametric designer used here.
constexpr int kBandPass = PEQ_BAND_TYPE_BANDPASS;
constexpr int kAllPass = PEQ_BAND_TYPE_ALLPASS;

// Scratch of the one-band unscaled fixed-point design: 20 * 1 + 11 bytes.
constexpr int kOneBandWorkspaceBytes = 20 * 1 + 11;

// Header constants.
constexpr uint8_t kHeaderKind = 0x50;  // 'P'
constexpr uint32_t kHeaderSize = 4592;
const char kHeaderTag[4] = {'D', 'I', 'S', 'T'};
const char kHeaderName[] = "HP:P9+:Portrait";

// float or double to int32 toward zero. Out-of-range values saturate and a
// value that is not a number gives 0, as the engine's target converts.
// Linear value to Q31: x * (2^31 - 1) toward zero, saturating.
int32_t Q31(float x) { return TruncToInt32(static_cast<double>(x) * 2147483647.0); }

void StampHeader(quillDistprevDesignHeader* h) {
  strncpy(h->name, kHeaderName, sizeof(h->name));
  h->reserved2 = 0;
  h->size = kHeaderSize;
  memcpy(h->tag, kHeaderTag, sizeof(h->tag));
  h->reserved3 = 0;
  h->reserved1 = 0;
  h->kind = kHeaderKind;  // the three bytes after it are left alone
  for (int i = 0; i < 16; ++i) h->uuid[i] = static_cast<uint8_t>(i);
}

// Designs one band at one rate into a float slot (6 floats) and a fixed-point
// slot (8 words). A band at or above half the rate is refused by the
// parametric designer and leaves both slots as they were.
void DesignBand(int type, float centre_hz, float q, int rate, float* float_slot,
                int32_t* fixed_slot) {
  OVAParametriceqBandSpec band;
  band.type = type;
  band.center_freq = centre_hz;
  band.q = q;
  band.gain = 0.0f;  // unity
  band.invert = 0;
  OVAParametriceqSpec request;
  request.band_count = 1;
  request.bands = &band;
  request.sample_rate = rate;
  // Scratch for the one-band fixed-point design; its contents are not kept.
  unsigned char workspace[kOneBandWorkspaceBytes];
  (void)OVA_ParametriceqDesignFloat(&request, float_slot);
  (void)OVA_ParametriceqDesignFxp32NoScale(&request, fixed_slot, workspace);
}

void DesignSenseBank(quillMBHLDistprevCoeff* r) {
  for (int ri = 0; ri < kRateCount; ++ri) {
    for (int b = 0; b < kBandCount; ++b) {
      r->sense_band_sos_count[b] = 2;
      DesignBand(kBandPass, kSenseCentreHz[b], kSenseQ, kDesignRates[ri],
                 &r->sense_band_coeffs_float32[ri * kFloatRateStride + b * kFloatSlot],
                 &r->sense_band_coeffs[ri * kFxpRateStride + b * kFxpSlot]);
    }
    r->sense_band_count = kBandCount;
  }
}

// Maximum attenuation of each band in whole dB. Band 0 takes the truncated
// base; each further band inside the count steps by the slope from the band
// before, rounded to the nearest dB (halves upward) and never above 0 dB;
// bands beyond the count are 0 dB.
void Attenuations(const quillDistprevNotchDesignBlock& blk, int32_t a[kBandCount]) {
  a[0] = TruncToInt32(blk.nf_base_attn_max);
  for (int i = 1; i < kBandCount; ++i) {
    float t = static_cast<float>(a[i - 1]) + blk.nf_slope;
    if (!(t < 0.0f)) t = 0.0f;
    // Nearest whole dB with halves upward: -15 stays -15, -2.5 becomes -2,
    // -0.5 becomes 0 (the floor of t + 0.5; t is never positive here).
    a[i] = blk.nf_band_ct > i ? TruncToInt32(floorf(t + 0.5f)) : 0;
  }
}

void BandLevels(const quillDistprevNotchDesignBlock& blk, quillMBHLDistprevCoeff* r) {
  int32_t a[kBandCount];
  Attenuations(blk, a);
  for (int i = 0; i < kBandCount; ++i) {
    // The exponents 0.05 * dB are formed in single precision like the powf
    // they feed; only the Q31 and x 32767 scalings are done in double.
    const float attn_db = static_cast<float>(a[i]);
    r->notch_band_attenuation_max[i] = Q31(powf(10.0f, 0.05f * attn_db));
    // Relative to the untruncated base: band 0 of a fractional base is
    // deliberately a little off 32767.
    const float rel = powf(10.0f, 0.05f * (attn_db - blk.nf_base_attn_max));
    r->notch_band_gain_scalars[i] = TruncToInt32(static_cast<double>(rel) * 32767.0);
  }
}

void Smoothers(const quillDistprevNotchDesignBlock& blk, int rate_index, int32_t* s) {
  const float n = static_cast<float>(kDesignRates[rate_index] / kControlRateDivisor);
  const float attack = expf(kSmootherK / (n * blk.nf_attk_ms));
  const float release = expf(kSmootherK / (n * blk.nf_rel_ms));
  const float level = powf(10.0f, -(blk.nf_attk_thld * 0.05f));
  s[3 * rate_index + 0] = Q31(level);
  s[3 * rate_index + 1] = Q31(1.0f - attack);
  s[3 * rate_index + 2] = Q31(1.0f - release);
}

// Notch bands placed at harmonic (0), octave (1) or equal (any other)
// spacing above the base frequency. With nf_width set the bandwidth in Hz
// stays that of band 0, so q grows with the centre up to the ceiling.
void DesignNotchBank(const quillDistprevNotchDesignBlock& blk, int band_count, int rate_index,
                     quillMBHLDistprevCoeff* r) {
  const float f0 = blk.nf_base_freq;
  const float q0 = blk.nf_base_q * kQScale;
  float octave_f = f0;
  for (int b = 0; b < band_count; ++b) {
    float f = f0;
    if (blk.nf_spacing == 0) {
      f = static_cast<float>(b + 1) * f0;
    } else if (blk.nf_spacing == 1) {
      f = octave_f;
      octave_f = octave_f * 2.0f;
    }
    float q = q0;
    if (blk.nf_width != 0) {
      q = (f / f0) * q0;
      if (!(q < kNotchQCeiling)) q = kNotchQCeiling;
    }
    DesignBand(kAllPass, f, q, kDesignRates[rate_index],
               &r->notch_band_coeffs_float32[rate_index * kFloatRateStride + b * kFloatSlot],
               &r->notch_band_coeffs[rate_index * kFxpRateStride + b * kFxpSlot]);
  }
}

void DesignOne(const quillDistprevNotchDesignBlock& blk, quillMBHLDistprevCoeff* r) {
  memset(r, 0, sizeof(*r));
  DesignSenseBank(r);

  r->notch_mode = blk.nf_mode;
  r->notch_threshold_db = TruncToInt32(blk.nf_thld);
  r->notch_sensitivity_db = TruncToInt32(blk.nf_sense);
  r->notch_band_count = blk.nf_band_ct;
  BandLevels(blk, r);

  // Counts above the record's six bands are cut to six.
  int bands = blk.nf_band_ct;
  if (bands > kBandCount) bands = kBandCount;
  if (bands < 0) bands = 0;
  for (int b = 0; b < bands; ++b) r->notch_band_sos_count[b] = 1;

  for (int ri = 0; ri < kRateCount; ++ri) {
    Smoothers(blk, ri, r->notch_smoothers);
    DesignNotchBank(blk, bands, ri, r);
  }
}

}  // namespace

extern "C" QH_EXPORT int32_t quill_distprev_config_designer(quillDistprevDesignHeader* header,
                                                           quillMBHLDistprevCoeff* records,
                                                           const quillDistprevNotchDesignBlock* blocks,
                                                           int32_t count) {
  if (header != nullptr) StampHeader(header);
  if (count < 1 || records == nullptr || blocks == nullptr) return 0;
  for (int32_t k = 0; k < count; ++k) DesignOne(blocks[k], &records[k]);
  return 0;
}
