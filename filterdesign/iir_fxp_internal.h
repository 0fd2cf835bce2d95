// Fixed-point word formats and the one quantisation rule shared by every
// designer: scale by 2^(W - iwl), round half away from zero, saturate to W bits.
// Header-only templates on the word width W (32, 24 or 16); no state.
#ifndef QUILLHERON_FILTERDESIGN_IIR_FXP_INTERNAL_H_
#define QUILLHERON_FILTERDESIGN_IIR_FXP_INTERNAL_H_

#include <cmath>
#include <cstdint>

#include "quillheron_filterdesign.h"

namespace qh {
namespace fd {

// Word type and saturation range of each width. 24-bit values live in
// sign-extended 32-bit words; 16-bit cascades store their iwl in 16 bits too.
template <int W>
struct FxpFormat;
template <>
struct FxpFormat<32> {
  using Word = int32_t;
  static constexpr int32_t kMax = 2147483647;
  static constexpr int32_t kMin = -2147483647 - 1;
};
template <>
struct FxpFormat<24> {
  using Word = int32_t;
  static constexpr int32_t kMax = 8388607;
  static constexpr int32_t kMin = -8388608;
};
template <>
struct FxpFormat<16> {
  using Word = int16_t;
  static constexpr int32_t kMax = 32767;
  static constexpr int32_t kMin = -32768;
};

template <int W>
using FxpWord = typename FxpFormat<W>::Word;

// 2^(W - iwl) as a float. For 0 <= W - iwl <= 32 this equals the 64-bit
// integer power of two converted to float; an iwl above W (coefficients of
// 2^(W-1) or more) gives the matching negative power instead of a shift by a
// negative count.
template <int W>
inline float IwlScale(int iwl) {
  const long long exponent = static_cast<long long>(W) - iwl;
  if (exponent >= 0) return static_cast<float>(static_cast<int64_t>(1) << exponent);
  return std::ldexp(1.0f, exponent < -1000 ? -1000 : static_cast<int>(exponent));
}

// round(scale * c) half away from zero, saturated to the W-bit range.
// The product is taken in single precision, the half added in double.
// A not-a-number value stores 0 (what the engine's converter produces).
template <int W>
inline FxpWord<W> RoundSaturate(float scale, float c) {
  const float p = scale * c;
  const double v = (c >= 0.0f) ? static_cast<double>(p) + 0.5 : static_cast<double>(p) - 0.5;
  if (v > FxpFormat<W>::kMax) return static_cast<FxpWord<W>>(FxpFormat<W>::kMax);
  if (v < FxpFormat<W>::kMin) return static_cast<FxpWord<W>>(FxpFormat<W>::kMin);
  if (v != v) return 0;
  return static_cast<FxpWord<W>>(static_cast<int32_t>(v));  // truncates toward zero
}

// One group with a given iwl: the iwl word, then each value quantised.
// out: count + 1 words.
template <int W>
inline void QuantizeGroupWithIwl(const float* values, int count, int iwl, FxpWord<W>* out) {
  out[0] = static_cast<FxpWord<W>>(iwl);
  const float scale = IwlScale<W>(iwl);
  for (int i = 0; i < count; ++i) out[1 + i] = RoundSaturate<W>(scale, values[i]);
}

// One group: iwl = MinimalIwl(MaxAbs(values)), then each value quantised.
template <int W>
inline void QuantizeGroup(const float* values, int count, FxpWord<W>* out) {
  QuantizeGroupWithIwl<W>(values, count, MinimalIwl(MaxAbs(values, count)), out);
}

// A whole float cascade of `sections` sections (5*S + 1 floats) into its
// fixed-point form (6*S + 2 words): every section as a group of five, then
// the gain record with iwl = MinimalIwl(|gain|). sections may be 0 (gain only).
template <int W>
inline void QuantizeCascade(const float* cascade, int sections, FxpWord<W>* out) {
  for (int s = 0; s < sections; ++s) QuantizeGroup<W>(cascade + 5 * s, 5, out + 6 * s);
  const float gain = cascade[5 * sections];
  const int iwl = MinimalIwl(std::fabs(gain));
  out[6 * sections] = static_cast<FxpWord<W>>(iwl);
  out[6 * sections + 1] = RoundSaturate<W>(IwlScale<W>(iwl), gain);
}

// Keeps the low 16 bits of v as a signed value (two's complement wrap).
inline int16_t Truncate16(int32_t v) {
  return static_cast<int16_t>(static_cast<uint16_t>(static_cast<uint32_t>(v) & 0xFFFFu));
}

// 16-bit numerator repair of one section record (iwl, b0, b1, ...): b1
// becomes b0 * factor kept to its low 16 bits, so the 1, +/-2, 1 numerator
// survives the separate rounding of b0 and b1.
inline void RepairB1FromB0(int16_t* section, int32_t factor) {
  section[2] = Truncate16(static_cast<int32_t>(section[1]) * factor);
}

// x converted to int32 toward zero, saturating at the int32 limits; a
// not-a-number gives 0 (as a 32-bit Arm conversion does).
template <typename Real>
inline int32_t TruncToInt32(Real x) {
  if (!(x == x)) return 0;
  if (x >= static_cast<Real>(2147483648.0)) return INT32_MAX;
  if (x < static_cast<Real>(-2147483648.0)) return INT32_MIN;
  return static_cast<int32_t>(x);
}

}  // namespace fd
}  // namespace qh

#endif  // QUILLHERON_FILTERDESIGN_IIR_FXP_INTERNAL_H_
