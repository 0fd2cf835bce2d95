// Fixed-point Butterworth designers: float design in the caller's workspace,
// overflow scaling, quantisation, and for 16 bits the numerator repair.
#include "iir_internal.h"

namespace qh {
namespace fd {
namespace {

// 16-bit only: b1 of every second-order section becomes exactly +/-2 * b0
// (low 16 bits), restoring the 1, +/-2, 1 numerator that separate rounding
// can break. The first-order section of an odd order is left alone.
void RepairNumerators16(int filter_type, int order, int16_t* out) {
  const int sections = QH_IirSectionCount(order);
  const int factor = filter_type == QH_IIR_LOWPASS ? 2 : -2;
  for (int s = order % 2 != 0 ? 1 : 0; s < sections; ++s) RepairB1FromB0(out + 6 * s, factor);
}

template <int W>
int IirDesignFxp(float cutoff_hz, int order, int sample_rate, int filter_type, FxpWord<W>* out,
                 void* workspace) {
  float* cascade = AlignWorkspace8(workspace);
  if (filter_type != QH_IIR_LOWPASS && filter_type != QH_IIR_HIGHPASS)
    return QH_IIR_DESIGN_REJECTED;
  const int rc = OVA_IirFilterDesignFloat(cutoff_hz, order, sample_rate, filter_type, cascade);
  if (rc != QH_IIR_DESIGN_OK) return rc;

  const int sections = QH_IirSectionCount(order);
  ScaleCascadedTransposedDirectForm2IIR(cascade, sections, cascade + 5 * sections + 1);
  if (order > 0) QuantizeCascade<W>(cascade, sections, out);
  if constexpr (W == 16) RepairNumerators16(filter_type, order, out);
  return QH_IIR_DESIGN_OK;
}

}  // namespace
}  // namespace fd
}  // namespace qh

extern "C" {

QH_EXPORT int OVA_IirFilterDesignFxp32(float cutoff_hz, int order, int sample_rate,
                                       int filter_type, int32_t* out, void* workspace) {
  return qh::fd::IirDesignFxp<32>(cutoff_hz, order, sample_rate, filter_type, out, workspace);
}

QH_EXPORT int OVA_IirFilterDesignFxp24(float cutoff_hz, int order, int sample_rate,
                                       int filter_type, int32_t* out, void* workspace) {
  return qh::fd::IirDesignFxp<24>(cutoff_hz, order, sample_rate, filter_type, out, workspace);
}

QH_EXPORT int OVA_IirFilterDesignFxp16(float cutoff_hz, int order, int sample_rate,
                                       int filter_type, int16_t* out, void* workspace) {
  return qh::fd::IirDesignFxp<16>(cutoff_hz, order, sample_rate, filter_type, out, workspace);
}

}  // extern "C"
