// Integer word length selection and the float-to-fixed cascade quantisers.
#include <climits>
#include <cmath>

#include "iir_internal.h"

namespace {

template <int W>
void QuantizeIir(const float* cascade, int order, qh::fd::FxpWord<W>* out) {
  if (order <= 0) return;
  qh::fd::QuantizeCascade<W>(cascade, QH_IirSectionCount(order), out);
}

}  // namespace

extern "C" {

QH_EXPORT int MinimalIwl(float x) {
  if (x == 0.0f) return 0;
  // log2|x| + 1 via log10 in double, rounded to float before adding 1.
  const float t =
      static_cast<float>(std::log10(std::fabs(static_cast<double>(x))) * 3.321928094887362) + 1.0f;
  if (t != t) return 0;                      // not a number
  if (t > static_cast<float>(INT_MAX)) return INT_MAX;  // infinity
  float c = std::ceil(t);
  // +2^k needs one more bit than -2^k.
  if (c == t && x > 0.0f) c += 1.0f;
  if (c < 0.0f) return 0;
  return static_cast<int>(c);
}

QH_EXPORT float MaxAbs(const float* x, int count) {
  float m = std::fabs(x[0]);
  for (int i = 1; i < count; ++i) {
    const float a = std::fabs(x[i]);
    if (a > m) m = a;
  }
  return m;
}

QH_EXPORT void OVA_QuantizeIIR_Fxp32(const float* cascade, int order, int32_t* out) {
  QuantizeIir<32>(cascade, order, out);
}

QH_EXPORT void OVA_QuantizeIIR_Fxp24(const float* cascade, int order, int32_t* out) {
  QuantizeIir<24>(cascade, order, out);
}

QH_EXPORT void OVA_QuantizeIIR_Fxp16(const float* cascade, int order, int16_t* out) {
  QuantizeIir<16>(cascade, order, out);
}

}  // extern "C"
