// Butterworth low- and high-pass cascades in float: prototype poles,
// pre-warped bilinear transform, one first-order section for odd orders.
#include <cmath>

#include "iir_internal.h"

namespace qh {
namespace fd {
namespace {

enum class Pass { kLow, kHigh };

// Pre-warped analogue corner: K = tan(pi * fc / fs). pi is the float
// constant; the product and the division are single precision, the tangent
// double precision, the result rounded to float.
float PrewarpedCorner(float cutoff_hz, int sample_rate) {
  const float angle = (cutoff_hz * kPiF) / static_cast<float>(sample_rate);
  return static_cast<float>(std::tan(static_cast<double>(angle)));
}

// First-order section of an odd order: single real pole.
void FirstOrderSection(Pass pass, float K, float* s) {
  if (pass == Pass::kLow) {
    s[0] = K / (K + 1.0f);
    s[1] = K / (K + 1.0f);
  } else {
    s[0] = 1.0f / (K + 1.0f);
    s[1] = -1.0f / (K + 1.0f);
  }
  s[2] = 0.0f;
  s[3] = -(K - 1.0f) / (K + 1.0f);
  s[4] = 0.0f;
}

// Second-order section k of order N: the prototype pole pair at angle
// theta = pi / (2N) * (N + 1 + 2k), mapped through the bilinear transform.
void SecondOrderSection(Pass pass, float K, int order, int k, float* s) {
  const float theta = (kPiF / (2.0f * static_cast<float>(order))) * static_cast<float>(order + 1 + 2 * k);
  // 2K * cos(theta) is formed in double (the cosine is double) and rounded.
  const float c = static_cast<float>(static_cast<double>(2.0f * K) * std::cos(static_cast<double>(theta)));
  const float K2 = K * K;
  const float r = 1.0f / ((K2 + 1.0f) - c);
  if (pass == Pass::kLow) {
    s[0] = K2 * r;
    s[1] = s[0] + s[0];
    s[2] = s[0];
  } else {
    s[0] = r;
    s[1] = -2.0f * r;
    s[2] = r;
  }
  s[3] = -(2.0f * (K2 - 1.0f)) * r;
  s[4] = -((K2 + 1.0f) + c) * r;
}

// The one Butterworth engine behind both float designers.
int ButterworthDesign(Pass pass, float cutoff_hz, int order, int sample_rate, float* out) {
  const float K = PrewarpedCorner(cutoff_hz, sample_rate);
  if (AtOrAboveNyquist(cutoff_hz, sample_rate)) return QH_IIR_DESIGN_REJECTED;

  float* section = out;
  if (order > 0 && order % 2 != 0) {
    FirstOrderSection(pass, K, section);
    section += 5;
  }
  for (int k = 0; order > 0 && k < order / 2; ++k, section += 5) {
    SecondOrderSection(pass, K, order, k, section);
  }
  *section = 1.0f;  // overall gain
  return QH_IIR_DESIGN_OK;
}

}  // namespace
}  // namespace fd
}  // namespace qh

extern "C" {

int OVA_LowPassFilterDesignFloat(float cutoff_hz, int order, int sample_rate, float* out) {
  return qh::fd::ButterworthDesign(qh::fd::Pass::kLow, cutoff_hz, order, sample_rate, out);
}

int OVA_HighPassFilterDesignFloat(float cutoff_hz, int order, int sample_rate, float* out) {
  return qh::fd::ButterworthDesign(qh::fd::Pass::kHigh, cutoff_hz, order, sample_rate, out);
}

QH_EXPORT int OVA_IirFilterDesignFloat(float cutoff_hz, int order, int sample_rate,
                                       int filter_type, float* out) {
  if (filter_type == QH_IIR_LOWPASS)
    return OVA_LowPassFilterDesignFloat(cutoff_hz, order, sample_rate, out);
  if (filter_type == QH_IIR_HIGHPASS)
    return OVA_HighPassFilterDesignFloat(cutoff_hz, order, sample_rate, out);
  return QH_IIR_DESIGN_REJECTED;
}

}  // extern "C"
