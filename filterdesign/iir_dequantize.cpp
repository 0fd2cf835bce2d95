// Fixed-point cascades back to float. The divisor of every record is formed
// the way the engine forms it: a 32-bit shift of 1 by (W - iwl) taken modulo
// 256, zero for shifts of 32 or more, read as a signed 32-bit integer.
#include <cstdint>

#include "iir_internal.h"

namespace {

float RecordDivisor(int width, int32_t iwl) {
  const uint32_t shift = (static_cast<uint32_t>(width) - static_cast<uint32_t>(iwl)) & 0xFFu;
  if (shift >= 32u) return 0.0f;
  // 1 << 31 reads as -2^31: a 32-bit record with iwl 1 comes back negated.
  return static_cast<float>(static_cast<int32_t>(1u << shift));
}

// Word readers: 32-bit words as they are, 24-bit words sign-extended from
// bit 23 (stored with or without extension), 16-bit words as they are.
struct Read32 {
  static int32_t Value(int32_t w) { return w; }
};
struct Read24 {
  static int32_t Value(int32_t w) {
    const uint32_t low = static_cast<uint32_t>(w) & 0xFFFFFFu;
    return static_cast<int32_t>(low ^ 0x800000u) - 0x800000;
  }
};
struct Read16 {
  static int32_t Value(int16_t w) { return w; }
};

template <int W, typename Reader, typename Word>
void FixedToFloat(const Word* fixed, int order, float* out) {
  if (order <= 0) return;
  const int sections = QH_IirSectionCount(order);
  for (int s = 0; s < sections; ++s) {
    const Word* rec = fixed + 6 * s;
    const float inv = 1.0f / RecordDivisor(W, rec[0]);
    for (int i = 0; i < 5; ++i) out[5 * s + i] = qh::fd::CanonicalNan(static_cast<float>(Reader::Value(rec[1 + i])) * inv);
  }
  const Word* gain = fixed + 6 * sections;
  out[5 * sections] = qh::fd::CanonicalNan(static_cast<float>(Reader::Value(gain[1])) / RecordDivisor(W, gain[0]));
}

}  // namespace

extern "C" {

QH_EXPORT void OVA_Fxp32IIRToFloat(const int32_t* fixed, int order, float* out) {
  FixedToFloat<32, Read32>(fixed, order, out);
}

QH_EXPORT void OVA_Fxp24IIRToFloat(const int32_t* fixed, int order, float* out) {
  FixedToFloat<24, Read24>(fixed, order, out);
}

QH_EXPORT void OVA_Fxp16IIRToFloat(const int16_t* fixed, int order, float* out) {
  FixedToFloat<16, Read16>(fixed, order, out);
}

}  // extern "C"
