// Eight single-precision lanes in one AVX2 vector, with the operations of the
// four-lane types in lanes4.h. Every arithmetic operation is one IEEE
// single-precision add or multiply per lane, never fused (the unit including
// this is built with -mavx2 only, never -mfma, and without contraction), and
// subnormals are kept as MXCSR keeps them for scalar code: a lane computes
// exactly what scalar code computes from the same operands. Only for a unit
// built with -mavx2, whose code runs after the processor has been asked.
// Header-only, stateless, internal linkage; safe on any thread.
#ifndef QUILLHERON_FILTERDESIGN_LANES8_AVX2_H_
#define QUILLHERON_FILTERDESIGN_LANES8_AVX2_H_

#include <immintrin.h>

#include <cstdint>

namespace qh {
namespace fd {
namespace {

// Bit masks selecting one lane, for KeepLane / ClearLane.
alignas(32) constexpr uint32_t kLaneMask8[8][8] = {
    {~0u, 0, 0, 0, 0, 0, 0, 0}, {0, ~0u, 0, 0, 0, 0, 0, 0}, {0, 0, ~0u, 0, 0, 0, 0, 0},
    {0, 0, 0, ~0u, 0, 0, 0, 0}, {0, 0, 0, 0, ~0u, 0, 0, 0}, {0, 0, 0, 0, 0, ~0u, 0, 0},
    {0, 0, 0, 0, 0, 0, ~0u, 0}, {0, 0, 0, 0, 0, 0, 0, ~0u}};

struct Avx2Lanes8 {
  static constexpr int kWidth = 8;
  static constexpr bool kFlushesSubnormals = false;
  __m256 v;

  static Avx2Lanes8 Load(const float* p) { return {_mm256_loadu_ps(p)}; }
  void Store(float* p) const { _mm256_storeu_ps(p, v); }
  friend Avx2Lanes8 operator+(Avx2Lanes8 a, Avx2Lanes8 b) { return {_mm256_add_ps(a.v, b.v)}; }
  friend Avx2Lanes8 operator*(Avx2Lanes8 a, Avx2Lanes8 b) { return {_mm256_mul_ps(a.v, b.v)}; }
  friend Avx2Lanes8 Abs(Avx2Lanes8 a) {
    return {_mm256_and_ps(a.v, _mm256_castsi256_ps(_mm256_set1_epi32(0x7fffffff)))};
  }
  // {x, cur[0], ..., cur[6]}: the halves {x x x x, cur[0..3]}, then per
  // 128-bit half twelve bytes on.
  friend Avx2Lanes8 ShiftIn(float x, Avx2Lanes8 cur) {
    return UpOne(cur, _mm256_permute2f128_ps(_mm256_set1_ps(x), cur.v, 0x21));
  }
  // {+0, cur[0], ..., cur[6]}: the halves {0, cur[0..3]}, then as above.
  friend Avx2Lanes8 ShiftInZero(Avx2Lanes8 cur) { return UpOne(cur, _mm256_permute2f128_ps(cur.v, cur.v, 0x08)); }
  friend Avx2Lanes8 KeepLane(Avx2Lanes8 a, int d) {
    return {_mm256_and_ps(a.v, _mm256_load_ps(reinterpret_cast<const float*>(kLaneMask8[d])))};
  }
  friend Avx2Lanes8 ClearLane(Avx2Lanes8 a, int d) {
    return {_mm256_andnot_ps(_mm256_load_ps(reinterpret_cast<const float*>(kLaneMask8[d])), a.v)};
  }
  friend float Lane(Avx2Lanes8 a, int d) {
    alignas(32) float t[8];
    _mm256_store_ps(t, a.v);
    return t[d];
  }
  friend float LastLane(Avx2Lanes8 a) {
    const __m128 high = _mm256_extractf128_ps(a.v, 1);
    return _mm_cvtss_f32(_mm_shuffle_ps(high, high, _MM_SHUFFLE(3, 3, 3, 3)));
  }

  // cur's lanes one up within each 128-bit half, the top lane of below's
  // halves entering: below holds {what enters lane 0 in its lane 3, cur[0..3]}.
  static Avx2Lanes8 UpOne(Avx2Lanes8 cur, __m256 below) {
    return {_mm256_castsi256_ps(_mm256_alignr_epi8(_mm256_castps_si256(cur.v), _mm256_castps_si256(below), 12))};
  }

  struct Watch {
    void See(Avx2Lanes8) {}
    bool SawBelow(float) const { return false; }
  };
};

}  // namespace
}  // namespace fd
}  // namespace qh

#endif  // QUILLHERON_FILTERDESIGN_LANES8_AVX2_H_
