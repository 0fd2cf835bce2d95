// Parametric-equaliser designers: one biquad section per band, gain 1.0,
// then optionally overflow scaling and quantisation to 32, 24 or 16 bits.
#include "iir_internal.h"

namespace qh {
namespace fd {
namespace {

int BandCount(const OVAParametriceqSpec& request) { return request.band_count > 0 ? request.band_count : 0; }

// The float design shared by every member: bands in order, stopping with
// -1000 at the first band at or above half the rate (earlier bands written,
// no gain), then the gain 1.0.
int DesignBands(const OVAParametriceqSpec& request, float* out) {
  const int bands = BandCount(request);
  for (int b = 0; b < bands; ++b) {
    if (AtOrAboveNyquist(request.bands[b].center_freq, request.sample_rate)) return QH_IIR_DESIGN_REJECTED;
    ParametricEqBandDesign(&request.bands[b], request.sample_rate, out + 5 * b);
  }
  out[5 * bands] = 1.0f;
  return QH_IIR_DESIGN_OK;
}

// 16-bit only: restore the exact numerator symmetry of the low-pass,
// high-pass and band-pass bands that separate rounding may have broken.
void RepairNumerators16(const OVAParametriceqSpec& request, int16_t* out) {
  const int bands = BandCount(request);
  for (int b = 0; b < bands; ++b) {
    int16_t* rec = out + 6 * b;  // iwl, b0, b1, b2, A1, A2
    switch (request.bands[b].type) {
      case PEQ_BAND_TYPE_LOWPASS:
        RepairB1FromB0(rec, 2);
        break;
      case PEQ_BAND_TYPE_HIGHPASS:
        RepairB1FromB0(rec, 65534);  // -2 * b0 in 16 bits
        break;
      case PEQ_BAND_TYPE_BANDPASS:
        rec[2] = 0;
        rec[3] = Truncate16(-rec[1]);
        break;
      default:
        break;
    }
  }
}

enum class Scaling { kNone, kL1 };

template <int W>
int ParametricEqDesignFxp(const OVAParametriceqSpec& request, Scaling scaling, FxpWord<W>* out,
                          void* workspace) {
  float* cascade = AlignWorkspace8(workspace);
  const int rc = DesignBands(request, cascade);
  if (rc != QH_IIR_DESIGN_OK) return rc;

  const int bands = BandCount(request);
  if (scaling == Scaling::kL1) ScaleCascadedTransposedDirectForm2IIR(cascade, bands, cascade + 5 * bands + 1);
  QuantizeCascade<W>(cascade, bands, out);
  if constexpr (W == 16) RepairNumerators16(request, out);
  return QH_IIR_DESIGN_OK;
}

}  // namespace
}  // namespace fd
}  // namespace qh

extern "C" {

QH_EXPORT int OVA_ParametriceqDesignFloat(const OVAParametriceqSpec* request, float* out) {
  return qh::fd::DesignBands(*request, out);
}

QH_EXPORT int OVA_ParametriceqDesignFxp32NoScale(const OVAParametriceqSpec* request, int32_t* out,
                                                 void* workspace) {
  return qh::fd::ParametricEqDesignFxp<32>(*request, qh::fd::Scaling::kNone, out, workspace);
}

QH_EXPORT int OVA_ParametriceqDesignFxp32(const OVAParametriceqSpec* request, int32_t* out,
                                          void* workspace) {
  return qh::fd::ParametricEqDesignFxp<32>(*request, qh::fd::Scaling::kL1, out, workspace);
}

QH_EXPORT int OVA_ParametriceqDesignFxp24(const OVAParametriceqSpec* request, int32_t* out,
                                          void* workspace) {
  return qh::fd::ParametricEqDesignFxp<24>(*request, qh::fd::Scaling::kL1, out, workspace);
}

QH_EXPORT int OVA_ParametriceqDesignFxp16(const OVAParametriceqSpec* request, int16_t* out,
                                          void* workspace) {
  return qh::fd::ParametricEqDesignFxp<16>(*request, qh::fd::Scaling::kL1, out, workspace);
}

}  // extern "C"
