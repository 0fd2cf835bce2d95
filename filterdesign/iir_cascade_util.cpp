// Joining two float cascades, and the byte fill the engine's tools use.
#include <cstring>

#include "iir_internal.h"

extern "C" {

QH_EXPORT void OVA_ConcatenateIIRs(const float* first, int first_order, const float* second,
                                   int second_order, float* out, int* out_order) {
  const int s1 = QH_IirSectionCount(first_order);
  const int s2 = QH_IirSectionCount(second_order);
  // Both gains are read before anything is written: out may alias first.
  const float g1 = first[5 * s1];
  const float g2 = second[5 * s2];
  std::memmove(out, first, sizeof(float) * 5 * static_cast<size_t>(s1));
  std::memmove(out + 5 * s1, second, sizeof(float) * 5 * static_cast<size_t>(s2));
  out[5 * (s1 + s2)] = g1 * g2;
  // Always even: a first-order section counts as a second-order one.
  *out_order = 2 * (s1 + s2);
}

QH_EXPORT void OVA_MemSet(void* dst, int byte_count, int value) {
  if (byte_count <= 0) return;
  std::memset(dst, value & 0xFF, static_cast<size_t>(byte_count));
}

}  // extern "C"
