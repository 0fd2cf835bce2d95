// Four single-precision lanes with the few operations the scaling pass runs
// across sections: SSE2 on x86-64 (its baseline), NEON on 32-bit Arm builds
// that enable it, and a plain four-float fallback. Every arithmetic operation
// is one IEEE single-precision add or multiply per lane, never fused, so a
// lane computes exactly what scalar code computes from the same operands.
// Exception: NEON flushes subnormal operands and results to zero; its Watch
// reports the values after which that could happen (see Watch below).
// Header-only, stateless; safe on any thread. Internal linkage throughout, for
// the reason given in iir_scale_wavefront.h.
#ifndef QUILLHERON_FILTERDESIGN_LANES4_H_
#define QUILLHERON_FILTERDESIGN_LANES4_H_

#include <cstdint>
#include <cstring>

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define QH_LANES4_SSE2 1
#elif defined(__ARM_NEON) || defined(__ARM_NEON__)
#include <arm_neon.h>
#define QH_LANES4_NEON 1
#endif

namespace qh {
namespace fd {
namespace {

// Bit masks selecting one lane, for KeepLane / ClearLane.
alignas(16) constexpr uint32_t kLaneMask4[4][4] = {
    {~0u, 0, 0, 0}, {0, ~0u, 0, 0}, {0, 0, ~0u, 0}, {0, 0, 0, ~0u}};

// The four-float fallback; also the reference the vector types follow.
struct PlainLanes4 {
  static constexpr int kWidth = 4;
  static constexpr bool kFlushesSubnormals = false;
  float v[4];

  static PlainLanes4 Load(const float* p) { return {{p[0], p[1], p[2], p[3]}}; }
  void Store(float* p) const { std::memcpy(p, v, sizeof v); }
  static PlainLanes4 Zero() { return {{0.0f, 0.0f, 0.0f, 0.0f}}; }
  friend PlainLanes4 operator+(const PlainLanes4& a, const PlainLanes4& b) {
    return {{a.v[0] + b.v[0], a.v[1] + b.v[1], a.v[2] + b.v[2], a.v[3] + b.v[3]}};
  }
  friend PlainLanes4 operator*(const PlainLanes4& a, const PlainLanes4& b) {
    return {{a.v[0] * b.v[0], a.v[1] * b.v[1], a.v[2] * b.v[2], a.v[3] * b.v[3]}};
  }
  friend PlainLanes4 Abs(const PlainLanes4& a) {
    return {{__builtin_fabsf(a.v[0]), __builtin_fabsf(a.v[1]), __builtin_fabsf(a.v[2]), __builtin_fabsf(a.v[3])}};
  }
  // {x, cur[0], cur[1], cur[2]} / {+0, cur[0], cur[1], cur[2]}: lanes move up by one.
  friend PlainLanes4 ShiftIn(float x, const PlainLanes4& cur) { return {{x, cur.v[0], cur.v[1], cur.v[2]}}; }
  friend PlainLanes4 ShiftInZero(const PlainLanes4& cur) { return {{0.0f, cur.v[0], cur.v[1], cur.v[2]}}; }
  // a with every lane but d set to +0 / a with lane d set to +0.
  friend PlainLanes4 KeepLane(const PlainLanes4& a, int d) {
    PlainLanes4 r = Zero();
    r.v[d] = a.v[d];
    return r;
  }
  friend PlainLanes4 ClearLane(const PlainLanes4& a, int d) {
    PlainLanes4 r = a;
    r.v[d] = 0.0f;
    return r;
  }
  friend float Lane(const PlainLanes4& a, int d) { return a.v[d]; }
  friend float LastLane(const PlainLanes4& a) { return a.v[3]; }

  // Never reports anything: these lanes keep subnormals.
  struct Watch {
    void See(const PlainLanes4&) {}
    bool SawBelow(float) const { return false; }
  };
};

#if defined(QH_LANES4_SSE2)
struct SseLanes4 {
  static constexpr int kWidth = 4;
  static constexpr bool kFlushesSubnormals = false;  // MXCSR as the caller left it, as for scalar code
  __m128 v;

  static SseLanes4 Load(const float* p) { return {_mm_load_ps(p)}; }
  void Store(float* p) const { _mm_store_ps(p, v); }
  friend SseLanes4 operator+(SseLanes4 a, SseLanes4 b) { return {_mm_add_ps(a.v, b.v)}; }
  friend SseLanes4 operator*(SseLanes4 a, SseLanes4 b) { return {_mm_mul_ps(a.v, b.v)}; }
  // AND with 0x7fffffff: a commutative operation, so a value that is not
  // needed afterwards can be cleared in place.
  friend SseLanes4 Abs(SseLanes4 a) {
    return {_mm_and_ps(a.v, _mm_castsi128_ps(_mm_set1_epi32(0x7fffffff)))};
  }
  friend SseLanes4 ShiftIn(float x, SseLanes4 cur) {
    const __m128 t = _mm_shuffle_ps(cur.v, cur.v, _MM_SHUFFLE(2, 1, 0, 0));  // c0 c0 c1 c2
    return {_mm_move_ss(t, _mm_set_ss(x))};
  }
  friend SseLanes4 ShiftInZero(SseLanes4 cur) {
    return {_mm_castsi128_ps(_mm_slli_si128(_mm_castps_si128(cur.v), 4))};
  }
  friend SseLanes4 KeepLane(SseLanes4 a, int d) {
    return {_mm_and_ps(a.v, _mm_load_ps(reinterpret_cast<const float*>(kLaneMask4[d])))};
  }
  friend SseLanes4 ClearLane(SseLanes4 a, int d) {
    return {_mm_andnot_ps(_mm_load_ps(reinterpret_cast<const float*>(kLaneMask4[d])), a.v)};
  }
  friend float Lane(SseLanes4 a, int d) {
    alignas(16) float t[4];
    _mm_store_ps(t, a.v);
    return t[d];
  }
  friend float LastLane(SseLanes4 a) { return _mm_cvtss_f32(_mm_shuffle_ps(a.v, a.v, _MM_SHUFFLE(3, 3, 3, 3))); }

  struct Watch {
    void See(SseLanes4) {}
    bool SawBelow(float) const { return false; }
  };
};
using NativeLanes4 = SseLanes4;
#define QH_LANES4_NATIVE 1

#elif defined(QH_LANES4_NEON)
struct NeonLanes4 {
  // Advanced SIMD always flushes subnormals to zero (and returns the default
  // NaN), whatever the VFP control register says.
  static constexpr int kWidth = 4;
  static constexpr bool kFlushesSubnormals = true;
  float32x4_t v;

  static NeonLanes4 Load(const float* p) { return {vld1q_f32(p)}; }
  void Store(float* p) const { vst1q_f32(p, v); }
  friend NeonLanes4 operator+(NeonLanes4 a, NeonLanes4 b) { return {vaddq_f32(a.v, b.v)}; }
  friend NeonLanes4 operator*(NeonLanes4 a, NeonLanes4 b) { return {vmulq_f32(a.v, b.v)}; }
  friend NeonLanes4 Abs(NeonLanes4 a) { return {vabsq_f32(a.v)}; }
  friend NeonLanes4 ShiftIn(float x, NeonLanes4 cur) {
    return {vsetq_lane_f32(x, vextq_f32(cur.v, cur.v, 3), 0)};
  }
  friend NeonLanes4 ShiftInZero(NeonLanes4 cur) { return {vextq_f32(vdupq_n_f32(0.0f), cur.v, 3)}; }
  friend NeonLanes4 KeepLane(NeonLanes4 a, int d) {
    return {vreinterpretq_f32_u32(vandq_u32(vreinterpretq_u32_f32(a.v), vld1q_u32(kLaneMask4[d])))};
  }
  friend NeonLanes4 ClearLane(NeonLanes4 a, int d) {
    return {vreinterpretq_f32_u32(vbicq_u32(vreinterpretq_u32_f32(a.v), vld1q_u32(kLaneMask4[d])))};
  }
  friend float Lane(NeonLanes4 a, int d) {
    float t[4];
    vst1q_f32(t, a.v);
    return t[d];
  }
  friend float LastLane(NeonLanes4 a) { return vgetq_lane_f32(a.v, 3); }

  // Keeps the smallest non-zero magnitude seen. The bits of a non-negative
  // float order like the value; minus one sends +0 to the top, so zeros (and
  // not-a-numbers, above infinity) never count as small.
  struct Watch {
    uint32x4_t lowest = vdupq_n_u32(~0u);
    void See(NeonLanes4 magnitude) {
      lowest = vminq_u32(lowest, vsubq_u32(vreinterpretq_u32_f32(magnitude.v), vdupq_n_u32(1)));
    }
    // True when some magnitude seen was non-zero and below `limit` (> 0).
    bool SawBelow(float limit) const {
      uint32_t bits;
      std::memcpy(&bits, &limit, sizeof bits);
      const uint32x4_t below = vcltq_u32(lowest, vdupq_n_u32(bits - 1));
      const uint32x2_t any = vorr_u32(vget_low_u32(below), vget_high_u32(below));
      return (vget_lane_u32(any, 0) | vget_lane_u32(any, 1)) != 0;
    }
  };
};
using NativeLanes4 = NeonLanes4;
#define QH_LANES4_NATIVE 1
#endif

}  // namespace
}  // namespace fd
}  // namespace qh

#endif  // QUILLHERON_FILTERDESIGN_LANES4_H_
