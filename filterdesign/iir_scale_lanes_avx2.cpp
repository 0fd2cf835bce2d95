// The scaling measurement's wavefront in eight-lane AVX2 vectors. This unit
// alone is built with -mavx2 (on x86-64 builds that can); its code runs only
// after Avx2Lanes() has found the processor able.
#if defined(QH_SCALE_AVX2)
#include "iir_scale_wavefront.h"
#include "lanes8_avx2.h"

namespace qh {
namespace fd {

bool MeasureNodeSumsAvx2(const float* cascade, int sections, long decay_cap_blocks, float* sums) {
  return MeasureWavefront<Avx2Lanes8>(cascade, sections, decay_cap_blocks, sums);
}

}  // namespace fd
}  // namespace qh
#endif
