// The scaling measurement as a wavefront across the cascade, for any lane type
// (see lanes4.h and lanes8_avx2.h). Section k runs in a lane of its own; at
// step t it processes sample t - k, taking as input what section k - 1
// produced at step t - 1. The lanes of V vectors of W = L::kWidth lanes each
// advance together, and each performs exactly the operations, on exactly the
// operands, of the section-after-section pass:
//   y = s1 + b0*x;  s1 = (s2 + b1*x) + A1*y;  s2 = b2*x + A2*y
// and each node's magnitudes are summed over its block from 0, left to right,
// that block sum then added to the node's total. So the totals, and all that
// is derived from them, are the same bytes.
//
// A step adds the magnitudes of the values of the step before, once they have
// served as operands (so no copy of them is kept), and then computes new ones.
// Section k's block b covers steps 128b + k .. 128b + 127 + k, so its block
// sums are complete during step 128b + 128 + k. Steps run in frames aligned on
// the last section: frame f is steps 128f + S .. 128f + 127 + S, after a
// prologue of S steps, so that every section completes block f within frame f
// (section k at frame step 128 - S + k) and the last section's block, which
// decides whether the decay phase is over, completes in the frame's last step.
// What leading sections run past it belongs to block f + 1 and is dropped when
// the pass stops. Before its first sample a lane sees only zero inputs and
// keeps zero states and sums (signs of zeros aside, which no magnitude or
// non-zero value depends on), provided every coefficient is finite: 0 * inf
// would be a not-a-number.
//
// Up to W * ChunkVectors sections run as one chunk held in registers; longer
// cascades run chunk after chunk through each frame, a chunk handing its last
// section's outputs to the next one in LaneState::link. Within a chunk of V
// vectors, section i sits in vector i % V, lane i / V (see ChunkSlot): a
// section's input is then the output of the same lane of the vector before,
// and only vector 0 takes its inputs a lane down, from the last vector. So one
// lane shift per step, and the vectors' recursions wait on it only once in V
// steps.
//
// NEON flushes subnormals to zero. A chunk's frame that starts from, or meets,
// a value small enough for that to matter runs (again, from a snapshot) on the
// four-float fallback lanes, which the VFP unit computes in full IEEE
// arithmetic.
//
// Everything here has internal linkage: translation units built for different
// instruction sets each keep their own copy, so the linker never picks one
// unit's instructions for another's callers.
#ifndef QUILLHERON_FILTERDESIGN_IIR_SCALE_WAVEFRONT_H_
#define QUILLHERON_FILTERDESIGN_IIR_SCALE_WAVEFRONT_H_

#include <cfloat>
#include <climits>
#include <cstring>

#include "iir_internal.h"
#include "iir_scale_internal.h"
#include "lanes4.h"

namespace qh {
namespace fd {
namespace {

constexpr int kBlock = QH_IIR_SCALE_BLOCK_LENGTH;
constexpr int kMaxLanes = kLaneMaxSections;
static_assert(kMaxLanes % 8 == 0, "lanes come in whole vectors");
static_assert(kMaxLanes < kBlock, "a lane may not end two blocks within one frame");

// Vectors per chunk: as many as keep a chunk's states and sums in registers
// (16 of them on x86-64; measured, one more vector runs slower).
template <class L>
constexpr int ChunkVectors() {
  return L::kWidth == 8 ? 2 : 3;
}
template <class L>
constexpr int ChunkLanes() {
  return L::kWidth * ChunkVectors<L>();
}

// Every lane's coefficients and progress between frames, lane-major, so that
// neighbouring lanes load as one vector: a chunk starting at section `first`
// has its vector v at lanes first + W*v ... Lanes that hold no section have
// zero coefficients; their values are never read.
struct alignas(32) LaneState {
  float coef[5][kMaxLanes];   // b0, b1, b2, A1, A2 (A1, A2 stored negated)
  float s1[kMaxLanes];
  float s2[kMaxLanes];
  float y[kMaxLanes];         // output of the latest step
  float block[3][kMaxLanes];  // output, state-1, state-2 sums of the block under way
  float total[3][kMaxLanes];  // the same over the finished blocks
  float link[kBlock];         // a chunk's input per frame step; see RunChunk
};

// Vectors a chunk of `lanes` sections takes: as many as it needs, at most
// ChunkVectors.
template <class L>
constexpr int VectorsFor(int lanes) {
  return (lanes + L::kWidth - 1) / L::kWidth;
}

// The lane of LaneState holding section s of a cascade of `sections`.
template <class L>
int ChunkSlot(int s, int sections) {
  constexpr int kChunk = ChunkLanes<L>();
  const int first = s / kChunk * kChunk;
  const int lanes = sections - first < kChunk ? sections - first : kChunk;
  const int vectors = VectorsFor<L>(lanes);
  const int i = s - first;
  return first + L::kWidth * (i % vectors) + i / vectors;
}

// Runs steps [begin, end) of the chunk of `lanes` sections (V vectors, held
// in registers) starting at section `first`. With kLinkIn step j takes its
// input from link[j], otherwise the input is 0. With kLinkOut (only a full
// chunk, whose last section is the last vector's last lane) step j leaves in
// link[j] the chunk's last section's output of step j - 1, which is the next
// chunk's input at step j. Chunk section i completes its block in step
// ends_at + i (none when that is outside the run). Returns the block output
// sum of the chunk's last section when it completes one, else 0.
template <class L, int V, bool kLinkIn, bool kLinkOut>
float RunChunk(LaneState& st, int first, int lanes, int begin, int end, int ends_at,
               typename L::Watch& watch) {
  constexpr int W = L::kWidth;
  L b0[V], b1[V], b2[V], a1[V], a2[V], s1[V], s2[V], y[V], out_sum[V], s1_sum[V], s2_sum[V];
#pragma GCC unroll 4
  for (int v = 0; v < V; ++v) {
    const int i = first + W * v;
    b0[v] = L::Load(&st.coef[0][i]);
    b1[v] = L::Load(&st.coef[1][i]);
    b2[v] = L::Load(&st.coef[2][i]);
    a1[v] = L::Load(&st.coef[3][i]);
    a2[v] = L::Load(&st.coef[4][i]);
    s1[v] = L::Load(&st.s1[i]);
    s2[v] = L::Load(&st.s2[i]);
    y[v] = L::Load(&st.y[i]);
    out_sum[v] = L::Load(&st.block[0][i]);
    s1_sum[v] = L::Load(&st.block[1][i]);
    s2_sum[v] = L::Load(&st.block[2][i]);
  }
  const auto step = [&](int j) {
    // Each vector takes the old outputs of the one before; vector 0 those of
    // the last one, a lane up, the input entering lane 0. Vectors are updated
    // from the last one down, so each still finds the old output it takes.
    const float in = kLinkIn ? st.link[j] : 0.0f;
    if (kLinkOut) st.link[j] = LastLane(y[V - 1]);
    const L x0 = kLinkIn ? ShiftIn(in, y[V - 1]) : ShiftInZero(y[V - 1]);
#pragma GCC unroll 4
    for (int v = V - 1; v >= 0; --v) {
      const L x = v > 0 ? y[v - 1] : x0;
      // Each old value's magnitude is taken right after its last use, which
      // keeps few values alive at once.
      out_sum[v] = out_sum[v] + Abs(y[v]);
      const L out = s1[v] + b0[v] * x;
      s1_sum[v] = s1_sum[v] + Abs(s1[v]);
      const L partial = s2[v] + b1[v] * x;
      s2_sum[v] = s2_sum[v] + Abs(s2[v]);
      s2[v] = b2[v] * x + a2[v] * out;
      s1[v] = partial + a1[v] * out;
      y[v] = out;
      watch.See(Abs(out));
    }
  };
  // Section i's block is complete: its sums go to its totals and restart from
  // 0 (adding +0 leaves the other lanes' totals as they are).
  float last = 0.0f;
  const auto complete = [&](int i) {
#pragma GCC unroll 4
    for (int v = 0; v < V; ++v) {
      if (v != i % V) continue;
      const int d = i / V;
      float* const t0 = &st.total[0][first + W * v];
      float* const t1 = &st.total[1][first + W * v];
      float* const t2 = &st.total[2][first + W * v];
      if (i + 1 == lanes) last = Lane(out_sum[v], d);
      (L::Load(t0) + KeepLane(out_sum[v], d)).Store(t0);
      (L::Load(t1) + KeepLane(s1_sum[v], d)).Store(t1);
      (L::Load(t2) + KeepLane(s2_sum[v], d)).Store(t2);
      out_sum[v] = ClearLane(out_sum[v], d);
      s1_sum[v] = ClearLane(s1_sum[v], d);
      s2_sum[v] = ClearLane(s2_sum[v], d);
    }
  };
  // The steps before the first section ends its block, those in which one
  // does, and the rest.
  const auto within = [begin, end](long t) { return static_cast<int>(t < begin ? begin : t > end ? end : t); };
  const int quiet_end = within(ends_at);
  const int ending_end = within(static_cast<long>(ends_at) + lanes);
  int j = begin;
  for (; j < quiet_end; ++j) step(j);
  for (; j < ending_end; ++j) {
    step(j);
    complete(j - ends_at);
  }
  for (; j < end; ++j) step(j);
#pragma GCC unroll 4
  for (int v = 0; v < V; ++v) {
    const int i = first + W * v;
    s1[v].Store(&st.s1[i]);
    s2[v].Store(&st.s2[i]);
    y[v].Store(&st.y[i]);
    out_sum[v].Store(&st.block[0][i]);
    s1_sum[v].Store(&st.block[1][i]);
    s2_sum[v].Store(&st.block[2][i]);
  }
  return last;
}

// RunChunk with V = VectorsFor(lanes). The first chunk's input is the
// impulse: 1 at global step 0, else 0.
template <class L, int V = ChunkVectors<L>()>
float RunChunkOf(LaneState& st, int first, int lanes, bool link_out, int steps, bool impulse_first,
                 int ends_at, typename L::Watch& watch) {
  if constexpr (V > 1) {
    if (VectorsFor<L>(lanes) < V) {
      return RunChunkOf<L, V - 1>(st, first, lanes, link_out, steps, impulse_first, ends_at, watch);
    }
  }
  if (first > 0) {
    return link_out ? RunChunk<L, V, true, true>(st, first, lanes, 0, steps, ends_at, watch)
                    : RunChunk<L, V, true, false>(st, first, lanes, 0, steps, ends_at, watch);
  }
  // The impulse step completes no block (it is the prologue's first).
  const int begin = impulse_first && steps > 0 ? 1 : 0;
  if (begin == 1) {
    if (link_out) RunChunk<L, V, true, true>(st, first, lanes, 0, 1, ends_at, watch);
    else RunChunk<L, V, true, false>(st, first, lanes, 0, 1, ends_at, watch);
  }
  return link_out ? RunChunk<L, V, false, true>(st, first, lanes, begin, steps, ends_at, watch)
                  : RunChunk<L, V, false, false>(st, first, lanes, begin, steps, ends_at, watch);
}

// 2^-103: a non-zero float of at least this magnitude is a multiple of 2^-126,
// the smallest normal float.
constexpr double kFullSpacing = 0x1p-103;

// A chunk's progress and the link, kept to run a frame again.
template <int kChunk>
class Snapshot {
 public:
  Snapshot(LaneState& st, int first, int steps)
      : first_(first), lanes_(kMaxLanes - first < kChunk ? kMaxLanes - first : kChunk), steps_(steps) {
    Copy<true>(st);
  }
  void Restore(LaneState& st) { Copy<false>(st); }

 private:
  template <bool kTake>
  void Copy(LaneState& st) {
    const auto move = [](float* mine, float* theirs, int n) {
      if (kTake) std::memcpy(mine, theirs, sizeof(float) * n);
      else std::memcpy(theirs, mine, sizeof(float) * n);
    };
    move(s1_, &st.s1[first_], lanes_);
    move(s2_, &st.s2[first_], lanes_);
    move(y_, &st.y[first_], lanes_);
    for (int n = 0; n < 3; ++n) {
      move(block_[n], &st.block[n][first_], lanes_);
      move(total_[n], &st.total[n][first_], lanes_);
    }
    move(link_, st.link, steps_);
  }

  const int first_, lanes_, steps_;
  float s1_[kChunk], s2_[kChunk], y_[kChunk];
  float block_[3][kChunk], total_[3][kChunk];
  float link_[kBlock];
};

// Runs `steps` steps of every lane, from global step t0, chunk after chunk.
// Lane k ends its block after step ends_at + k. Returns the last section's
// block output sum when it ends its block.
template <class L>
class Wavefront {
 public:
  Wavefront(LaneState& st, int sections, float small_limit)
      : st_(st), sections_(sections), small_limit_(small_limit) {}

  float Run(int steps, long t0, int ends_at) {
    constexpr int kChunk = ChunkLanes<L>();
    const bool impulse = t0 == 0;
    if (impulse) st_.link[0] = 1.0f;  // the unit impulse, read by the first chunk's first step
    float last = 0.0f;
    for (int first = 0; first < sections_; first += kChunk) {
      const int lanes = sections_ - first < kChunk ? sections_ - first : kChunk;
      last = RunChecked(first, lanes, first + lanes < sections_, steps, impulse, ends_at + first);
    }
    return last;
  }

 private:
  float RunChecked(int first, int lanes, bool link_out, int steps, bool impulse, int ends_at) {
    typename L::Watch watch;
    if constexpr (!L::kFlushesSubnormals) {
      return RunChunkOf<L>(st_, first, lanes, link_out, steps, impulse, ends_at, watch);
    } else {
      static_assert(L::kWidth == 4, "the fallback runs the same chunk layout");
      PlainLanes4::Watch none;
      if (!CarriesOnlyCoarseValues(first, lanes)) {
        return RunChunkOf<PlainLanes4, ChunkVectors<L>()>(st_, first, lanes, link_out, steps,
                                                                            impulse, ends_at, none);
      }
      Snapshot<ChunkLanes<L>()> snapshot(st_, first, steps);
      const float last = RunChunkOf<L>(st_, first, lanes, link_out, steps, impulse, ends_at, watch);
      if (!watch.SawBelow(small_limit_)) return last;
      snapshot.Restore(st_);
      return RunChunkOf<PlainLanes4, ChunkVectors<L>()>(st_, first, lanes, link_out, steps,
                                                                          impulse, ends_at, none);
    }
  }

  // True when every value the chunk carries into a frame is 0 or at least
  // 2^-103 (a multiple of 2^-126, so sums with it never land in the subnormal
  // range) and every output, a multiplicand, also at least the small-signal
  // limit. A frame run on the fallback lanes may leave finer values behind.
  bool CarriesOnlyCoarseValues(int first, int lanes) const {
    const int end = first + (lanes + L::kWidth - 1) / L::kWidth * L::kWidth;
    const auto coarse = [](const float* v, int from, int to, float limit) {
      for (int i = from; i < to; ++i) {
        const float m = __builtin_fabsf(v[i]);
        if (m != 0.0f && m < limit) return false;
      }
      return true;
    };
    const float fine = static_cast<float>(kFullSpacing);
    bool ok = coarse(st_.s1, first, end, fine) && coarse(st_.s2, first, end, fine) &&
              coarse(st_.y, first, end, small_limit_ > fine ? small_limit_ : fine);
    for (int n = 0; n < 3 && ok; ++n) {
      ok = coarse(st_.block[n], first, end, fine) && coarse(st_.total[n], first, end, fine);
    }
    return ok;
  }

  LaneState& st_;
  const int sections_;
  const float small_limit_;
};

// The magnitude under which a section output makes NEON's flushing matter.
// Products of non-zero coefficients and signals of at least this magnitude
// are at least 2^-103, so every addend is 0 or a multiple of 2^-126 and every
// sum is 0 or normal: the subnormal range is never met. 0 when some non-zero
// coefficient is itself below 2^-103 (the impulse makes it an addend).
inline float SmallSignalLimit(const float* cascade, int sections) {
  double smallest = HUGE_VAL;
  for (int i = 0; i < 5 * sections; ++i) {
    const double c = __builtin_fabs(cascade[i]);
    if (c != 0.0 && c < smallest) smallest = c;
  }
  if (smallest < kFullSpacing) return 0.0f;
  if (smallest == HUGE_VAL) return FLT_MIN;  // all zero: nothing can be small
  return static_cast<float>(kFullSpacing / smallest * (1.0 + 0x1p-20));
}

// The wavefront measurement on lanes L; see MeasureNodeSumsLanes. The caller
// has checked the section count and that every coefficient is finite.
template <class L>
bool MeasureWavefront(const float* cascade, int sections, long decay_cap_blocks, float* sums) {
  const float small_limit = SmallSignalLimit(cascade, sections);  // used where lanes flush
  if (L::kFlushesSubnormals && small_limit == 0.0f) return false;
  LaneState st;
  std::memset(&st, 0, sizeof st);
  for (int s = 0; s < sections; ++s) {
    for (int n = 0; n < 5; ++n) st.coef[n][ChunkSlot<L>(s, sections)] = cascade[5 * s + n];
  }
  Wavefront<L> wave(st, sections, small_limit);
  // Prologue: the impulse enters, the wavefront fills, no block completes.
  wave.Run(sections, 0, INT_MAX / 2);
  for (long f = 0;; ++f) {
    const long t0 = sections + kBlock * f;
    const float last = wave.Run(kBlock, t0, kBlock - sections);
    if (f < kScaleInitialBlocks) continue;
    if (static_cast<double>(last) <= kScaleDecayThreshold) break;
    if (!__builtin_isfinite(last)) break;  // diverged: it will never decay
    if (f - kScaleInitialBlocks + 1 >= decay_cap_blocks) break;
  }
  for (int s = 0; s < sections; ++s) {
    for (int n = 0; n < 3; ++n) sums[3 * s + n] = st.total[n][ChunkSlot<L>(s, sections)];
  }
  return true;
}

}  // namespace
}  // namespace fd
}  // namespace qh

#endif  // QUILLHERON_FILTERDESIGN_IIR_SCALE_WAVEFRONT_H_
