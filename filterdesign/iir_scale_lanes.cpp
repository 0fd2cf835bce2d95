// The scaling measurement in SIMD lanes: which lanes this build and this
// processor have, and the checks before the wavefront (iir_scale_wavefront.h)
// runs on them.
#include <cmath>

#include "iir_scale_wavefront.h"

namespace qh {
namespace fd {

#if defined(QH_SCALE_AVX2)
// In iir_scale_lanes_avx2.cpp, built for AVX2.
bool MeasureNodeSumsAvx2(const float* cascade, int sections, long decay_cap_blocks, float* sums);
#endif

bool HasNativeLanes() {
#if defined(QH_LANES4_NATIVE)
  return true;
#else
  return false;
#endif
}

bool HasWideLanes() {
#if defined(QH_SCALE_AVX2)
  return __builtin_cpu_supports("avx2");
#else
  return false;
#endif
}

bool MeasureNodeSumsLanes(const float* cascade, int sections, long decay_cap_blocks, ScalePath lanes,
                          float* sums) {
  if (sections < 1 || sections > kMaxLanes) return false;
  for (int i = 0; i < 5 * sections; ++i) {
    if (!std::isfinite(cascade[i])) return false;
  }
  if (lanes == ScalePath::kPlainLanes) {
    return MeasureWavefront<PlainLanes4>(cascade, sections, decay_cap_blocks, sums);
  }
#if defined(QH_SCALE_AVX2)
  if (lanes == ScalePath::kWideLanes && HasWideLanes()) {
    return MeasureNodeSumsAvx2(cascade, sections, decay_cap_blocks, sums);
  }
#endif
#if defined(QH_LANES4_NATIVE)
  return MeasureWavefront<NativeLanes4>(cascade, sections, decay_cap_blocks, sums);
#else
  return false;
#endif
}

}  // namespace fd
}  // namespace qh
