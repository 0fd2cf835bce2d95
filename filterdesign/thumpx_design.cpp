// Bass-enhancement (Thumpx) filter set, floating point: the 52-float array of
// sections and tuning values that the fixed-point forms quantise.
//
// Arithmetic is single precision throughout, as the engine's tuning tables
// were derived that way; the trigonometric functions are evaluated in double
// precision and rounded to float when stored. Constants are float literals.
#include <math.h>

#include "iir_internal.h"

namespace {

using qh::fd::kPiF;
constexpr float kSqrt2 = 1.4142135f;

// Index of every block inside the 52-float array. First-order sections are
// three floats (b0, b1, A1), second-order ones five (b0, b1, b2, A1, A2), A
// values stored negated. Floats 24..26 are never written: the engine's layout
// keeps a hole there and the caller's contents stay.
enum ThumpxIndex {
  kLowPass1 = 0,       // first-order part of the lp_ratio low-pass
  kLowPass2 = 3,       // second-order part of the lp_ratio low-pass
  kHarmonicHp1 = 8,    // first-order harmonics high-pass
  kSpeakerHp = 11,     // second-order hp_ratio high-pass, or bypass
  kPreLowPass1 = 16,   // first-order part of the pre_lp_freq low-pass
  kPreLowPass2 = 19,   // second-order part
  kHarmonicHp2 = 27,   // second-order harmonics high-pass, or bypass
  kPeak1 = 32,
  kPeak2 = 37,
  kShelf = 42,         // first-order: b0, b1, A1
  kSize = 45,
  kParams = 46,        // bass_ctrl, hp_ratio, ext_bass, lp_ratio, pre_lp, harm_hp
};

// Tuning values that the bass boost follows.
struct Derived {
  float size;   // custom_speaker_size
  float k;      // effective-frequency factor
  float f_eff;  // effective speaker frequency, Hz
  float w;      // pi * f_eff
  float omega;  // w / sampling_rate
  float g;      // 1 + bass_ctrl
};

bool InUnitRange(float x) { return x >= 0.0f && x <= 1.0f; }  // NaN rejected

bool Validate(int size, float bass_ctrl, float hp_ratio, float ext_bass, int rate) {
  if (size < 40 || size > 600) return false;
  if (rate != 44100 && rate != 32000 && rate != 48000) return false;
  return InUnitRange(bass_ctrl) && InUnitRange(hp_ratio) && InUnitRange(ext_bass);
}

// tan of a single-precision angle, evaluated in double, stored as float.
float TanF(float angle) { return static_cast<float>(tan(static_cast<double>(angle))); }
float CotF(float angle) { return static_cast<float>(1.0 / tan(static_cast<double>(angle))); }
float CosF(float angle) { return static_cast<float>(cos(static_cast<double>(angle))); }

// Third-order Butterworth low-pass, corner at the given half-angle, written
// as a first-order section (b0, b1, A1) and a second-order section.
void ThirdOrderLowPass(float angle, float* first, float* second) {
  const float c = CotF(angle);
  const float e = 1.0f / (c + 1.0f);
  first[0] = e;
  first[1] = e;
  first[2] = 2.0f * c / (c + 1.0f) - 1.0f;
  const float d = (c + kSqrt2) * c + 1.0f;
  second[0] = 1.0f / d;
  second[1] = 2.0f / d;
  second[2] = 1.0f / d;
  second[3] = -2.0f * (1.0f - c * c) / d;
  second[4] = -((c - kSqrt2) * c + 1.0f) / d;
}

// Second-order Butterworth high-pass from the prewarped tangent t.
void SecondOrderHighPass(float t, float* s) {
  const float d = (t + kSqrt2) * t + 1.0f;
  s[0] = 1.0f / d;
  s[1] = -2.0f / d;
  s[2] = 1.0f / d;
  s[3] = -2.0f * (t * t - 1.0f) / d;
  s[4] = -((t - kSqrt2) * t + 1.0f) / d;
}

// A section that passes the signal unchanged; the negative zeros are part of
// the stored pattern.
void HighPassBypass(float* s) {
  s[0] = 1.0f;
  s[1] = 0.0f;
  s[2] = 0.0f;
  s[3] = -0.0f;
  s[4] = -0.0f;
}

void Identity2(float* s) {
  s[0] = 1.0f;
  s[1] = s[2] = s[3] = s[4] = 0.0f;
}

// Below this ratio of the corner to the speaker frequency a high-pass is
// replaced by the bypass section.
constexpr float kMinHighPassRatio = 0.05f;

// Bandwidth factor by effective speaker frequency: rows of (upper limit, m).
struct BandwidthRow {
  float below;
  float m;
};
const BandwidthRow kBandwidth[] = {
    {100.0f, 0.85f}, {200.0f, 1.2f}, {300.0f, 1.35f}, {400.0f, 1.55f}, {INFINITY, 1.7f}};

float BandwidthFactor(float f_eff) {
  for (const BandwidthRow& row : kBandwidth) {
    if (f_eff < row.below) return row.m;
  }
  return kBandwidth[4].m;  // f_eff not a number
}

// Peak amplitude a and shaped boost h for the bass boost g, by speaker size.
void BoostMapping(int size, float g, float* a, float* h) {
  if (size > 100) {
    *a = g * 1.2624519f;
    *h = g;
    if (g > 1.818f) *h = 1.818f + (g - 1.818f) * 0.27740178f;
  } else if (size > 75) {
    *a = g * 1.2877009f;
    *h = g >= 1.5f ? g * 1.07f : g;
    if (*h > 1.984f) *h = 1.984f + (*h - 1.984f) * 0.57236946f;
  } else {
    *a = g * 1.2877009f;
    if (g <= 1.32f) {
      *h = g * 1.005f;
    } else if (g < 1.5f) {
      *h = g * 1.04f;
    } else {
      *h = g * 1.09f;
    }
    if (*h > 1.6f) *h = *h * 1.04f;
  }
}

// Bilinear peak: unity at DC and Nyquist, gain at the centre angle x, with
// bandwidth half-angle beta.
void PeakSection(float x, float beta, float gain, float* s) {
  const float t = TanF(beta);
  const float d = 1.0f / (t + 1.0f);
  const float c = CosF(x);
  s[0] = d + t * gain * d;
  s[1] = -2.0f * d * c;
  s[2] = (1.0f - t * gain) * d;
  s[3] = 2.0f * d * c;
  s[4] = t * d - d;
}

void BassPeaks(const Derived& v, int size, float ext_bass, float clip_level, int rate,
               float* out) {
  if (!(v.g > 1.0f)) {
    Identity2(out + kPeak1);
    Identity2(out + kPeak2);
    return;
  }
  const float m = BandwidthFactor(v.f_eff);
  float a = 0.0f;
  float h = 0.0f;
  BoostMapping(size, v.g, &a, &h);
  float level = clip_level;
  if (h < 1.33f) {
    level = clip_level / ((clip_level * 3.030303f + 3.030303f) * (1.33f - h) + 1.0f);
  }
  float gain = level * a;
  if (size > 300) gain = gain * powf(10.0f, (v.size - 300.0f) * 0.000125f);
  const bool wide = fabs(static_cast<double>(level) - 1.0) > 0.01;
  const float fs = static_cast<float>(rate);

  float x1 = v.w * 1.232f / fs;
  if (wide) x1 = x1 * 1.4f;
  const float spread1 = wide ? 1.125f + 1.125f * ext_bass : 1.0f + ext_bass;
  const float beta1 = spread1 / fs * m * v.w * 0.5f;
  PeakSection(x1, beta1, gain, out + kPeak1);

  float x2 = v.f_eff * 6.047566f / fs;
  if (wide) x2 = x2 * 1.4f;
  float beta2 = (1.7f * m * v.w / fs) * 0.5f;
  if (wide) beta2 = beta2 * 1.125f;
  PeakSection(x2, beta2, gain, out + kPeak2);
}

// High-shelf scale by speaker size: rows of (largest size, factor).
struct ShelfRow {
  int up_to;
  float factor;
};
const ShelfRow kShelfFactor[] = {{60, 1.377f},  {100, 1.262f}, {200, 1.187f}, {300, 1.04f},
                                 {400, 0.972f}, {500, 0.9826f}, {600, 1.07f}};

float ShelfFactor(int size) {
  for (const ShelfRow& row : kShelfFactor) {
    if (size <= row.up_to) return row.factor;
  }
  return kShelfFactor[6].factor;
}

// First-order high shelf: unity at low frequencies, p*g at high ones.
void Shelf(const Derived& v, int size, int rate, float* s) {
  const float g = v.g;
  float p = g * g * 0.22138274f - g * 0.0067901528f + 1.1869731f;
  p = p * ShelfFactor(size);
  if (!(p * g > 1.0f)) {
    s[0] = 1.0f;
    s[1] = 0.0f;
    s[2] = 0.0f;
    return;
  }
  const float fs = static_cast<float>(rate);
  float f = v.f_eff * 1.5f;
  if (fs * 0.5f < f) f = fs * 0.5f;
  const float c = CotF((f * 6.2831855f / fs) * 0.5f);
  const float d = 1.0f / (c + 1.0f);
  const float q = c * p * g;
  s[0] = d + q * d;
  s[1] = (1.0f - q) * d;
  s[2] = c * d - d;
}

}  // namespace

extern "C" QH_EXPORT int OVA_THUMPX_FilterDesignFloat(int custom_speaker_size, float bass_ctrl,
                                                      float hp_ratio, float ext_bass,
                                                      int sampling_rate, float* out,
                                                      float lp_ratio, float pre_lp_freq,
                                                      float harm_hp_freq, float clip_level,
                                                      int /*reserved*/) {
  if (!Validate(custom_speaker_size, bass_ctrl, hp_ratio, ext_bass, sampling_rate)) {
    return QH_IIR_DESIGN_REJECTED;
  }
  Derived v;
  v.size = static_cast<float>(custom_speaker_size);
  v.k = 0.7368902f + 0.00033211955f * v.size;
  v.f_eff = v.k * v.size;
  v.w = v.size * kPiF * v.k;
  v.omega = v.w / static_cast<float>(sampling_rate);
  v.g = 1.0f + bass_ctrl;

  ThirdOrderLowPass((lp_ratio / v.k) * v.omega, out + kLowPass1, out + kLowPass2);
  ThirdOrderLowPass((pre_lp_freq / v.f_eff) * v.omega, out + kPreLowPass1, out + kPreLowPass2);

  if (hp_ratio >= kMinHighPassRatio) {
    SecondOrderHighPass(TanF(v.omega * hp_ratio), out + kSpeakerHp);
  } else {
    HighPassBypass(out + kSpeakerHp);
  }

  const float harm_ratio = harm_hp_freq / v.f_eff;
  const float harm_t = TanF(harm_ratio * v.omega);
  if (harm_ratio >= kMinHighPassRatio) {
    SecondOrderHighPass(harm_t, out + kHarmonicHp2);
  } else {
    HighPassBypass(out + kHarmonicHp2);
  }
  // The first-order harmonics high-pass is always designed, bypass or not.
  float* hp1 = out + kHarmonicHp1;
  hp1[0] = 1.0f / (harm_t + 1.0f);
  hp1[1] = -hp1[0];
  hp1[2] = 1.0f - 2.0f * harm_t / (harm_t + 1.0f);

  BassPeaks(v, custom_speaker_size, ext_bass, clip_level, sampling_rate, out);
  Shelf(v, custom_speaker_size, sampling_rate, out + kShelf);

  qh::fd::CanonicalNans(out, 24);            // 24..26 are not written
  qh::fd::CanonicalNans(out + 27, 45 - 27);
  out[kSize] = v.size;
  const float params[6] = {bass_ctrl, hp_ratio, ext_bass, lp_ratio, pre_lp_freq, harm_hp_freq};
  for (int i = 0; i < 6; ++i) out[kParams + i] = params[i];
  return QH_IIR_DESIGN_OK;
}
