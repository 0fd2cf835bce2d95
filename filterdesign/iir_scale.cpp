// Overflow scaling of a biquad cascade: the L1 norm of every node (each
// section's output and both of its transposed-direct-form-II states), measured
// by running a unit impulse through the cascade in 128-sample blocks, sets
// the numerator scaling of each section.
#include <cmath>
#include <cstring>

#include "iir_internal.h"
#include "iir_scale_internal.h"

namespace qh {
namespace fd {
namespace {

constexpr int kBlock = QH_IIR_SCALE_BLOCK_LENGTH;
// Decay blocks after which the pass gives up, so that every call returns.
// A cascade whose sections all have their poles strictly inside the unit
// circle always decays; it gets 2^18 blocks (2^25 samples, about 0.1 s per
// section), more than any design worth playing needs: the slowest are narrow
// low bands, a q 20 band at 1 Hz at 192 kHz needs about 2*10^5 blocks, a
// q 100 band at 20 Hz about 5.5*10^4, a 20 Hz eighth-order Butterworth about
// 10^3 (lower Butterworth corners underflow at once or turn unstable in
// float), and designs at 20 Hz or above with q of a few tens at most about
// 10^4. Only poles within about 10^-6 of the circle are measured short. A
// cascade with a pole on or outside the circle (or a not-a-number
// coefficient) is not expected to decay: it either diverges, which ends the
// pass, or rings for ever; it gets 2^10 blocks.
constexpr long kScaleDecayBlockCap = 1L << 18;
constexpr long kUnstableDecayBlockCap = 1L << 10;

// True when both poles of every section lie strictly inside the unit circle.
// With A1 and A2 stored negated the denominator is 1 - A1 z^-1 - A2 z^-2,
// stable exactly when |A2| < 1 and |A1| < 1 - A2 (a first-order section has
// A2 = 0). Compared in double, where 1 - A2 is exact for every A2 that
// matters; a not-a-number coefficient fails both tests.
bool StrictlyStable(const float* cascade, int sections) {
  for (int s = 0; s < sections; ++s) {
    const double a1 = cascade[5 * s + 3];
    const double a2 = cascade[5 * s + 4];
    if (!(std::fabs(a2) < 1.0 && std::fabs(a1) < 1.0 - a2)) return false;
  }
  return true;
}

// Views of the caller's workspace (5*S + 384 floats).
struct ScaleWorkspace {
  explicit ScaleWorkspace(float* ws, int sections)
      : state(ws),
        block(ws + 2 * sections),
        trace1(block + kBlock),
        trace2(trace1 + kBlock),
        sums(trace2 + kBlock) {}
  float* state;   // 2 per section
  float* block;   // the signal, filtered in place section after section
  float* trace1;  // state 1 after each sample
  float* trace2;  // state 2 after each sample
  float* sums;    // 3 per section: output, state 1, state 2; later the peaks
};

// Runs K consecutive sections over the block, sample by sample: each sample
// goes through section 0 of the group, then 1, and so on. Every section sees
// exactly the inputs, and performs exactly the operations, of a run of the
// whole block through one section after the other, so the results are the
// same bit for bit; interleaving only lets the sections' recursions overlap
// in the processor. Each node's magnitudes are summed left to right from 0,
// as a plain loop over the finished block would, and that block sum is added
// to the node's running sum. kTrace writes the traces of the group's last
// section (the workspace then ends as the section-by-section run leaves it).
// Returns the output sum of the group's last section over this block.
template <int K, bool kTrace>
float RunSections(const float* cascade, float* state, float* block, float* trace1, float* trace2,
                  float* sums) {
  float b0[K], b1[K], b2[K], a1[K], a2[K], s1[K], s2[K];
  float out_sum[K], s1_sum[K], s2_sum[K];
  for (int k = 0; k < K; ++k) {
    b0[k] = cascade[5 * k];
    b1[k] = cascade[5 * k + 1];
    b2[k] = cascade[5 * k + 2];
    a1[k] = cascade[5 * k + 3];  // stored negated
    a2[k] = cascade[5 * k + 4];
    s1[k] = state[2 * k];
    s2[k] = state[2 * k + 1];
    out_sum[k] = 0.0f;
    s1_sum[k] = 0.0f;
    s2_sum[k] = 0.0f;
  }
  for (int n = 0; n < kBlock; ++n) {
    float x = block[n];
    for (int k = 0; k < K; ++k) {
      // Same expressions, in the same order, as SOS_TransposedDirectForm2Filter.
      const float y = s1[k] + b0[k] * x;
      s1[k] = s2[k] + b1[k] * x + a1[k] * y;
      s2[k] = b2[k] * x + a2[k] * y;
      out_sum[k] += std::fabs(y);
      s1_sum[k] += std::fabs(s1[k]);
      s2_sum[k] += std::fabs(s2[k]);
      x = y;
    }
    block[n] = x;
    if (kTrace) {
      trace1[n] = s1[K - 1];
      trace2[n] = s2[K - 1];
    }
  }
  for (int k = 0; k < K; ++k) {
    state[2 * k] = s1[k];
    state[2 * k + 1] = s2[k];
    sums[3 * k] += out_sum[k];
    sums[3 * k + 1] += s1_sum[k];
    sums[3 * k + 2] += s2_sum[k];
  }
  return out_sum[K - 1];
}

// One group of K sections starting at section s; the last group keeps the
// traces.
template <int K>
float RunGroup(const float* cascade, int s, bool last_group, const ScaleWorkspace& w) {
  float* const state = w.state + 2 * s;
  float* const sums = w.sums + 3 * s;
  return last_group ? RunSections<K, true>(cascade + 5 * s, state, w.block, w.trace1, w.trace2, sums)
                    : RunSections<K, false>(cascade + 5 * s, state, w.block, w.trace1, w.trace2, sums);
}

// Runs the current block through every section, adding each node's block
// magnitude to its running sum. Sections go in pairs, the last one alone when
// the count is odd (larger groups measured no faster: their states no longer
// fit the registers). Returns the last section's output sum over this block.
float RunBlock(const float* cascade, int sections, const ScaleWorkspace& w) {
  float last = 0.0f;
  int s = 0;
  for (; s + 2 <= sections; s += 2) last = RunGroup<2>(cascade, s, s + 2 == sections, w);
  if (s < sections) last = RunGroup<1>(cascade, s, true, w);
  return last;
}

void ZeroBlock(const ScaleWorkspace& w) { std::memset(w.block, 0, sizeof(float) * kBlock); }

// Steps 1-4, section after section: impulse, nine silent blocks, then silent
// blocks until the cascade's output has died away (or the safety cap /
// divergence stops it).
void MeasureNodeSums(const float* cascade, int sections, long cap, const ScaleWorkspace& w) {
  std::memset(w.state, 0, sizeof(float) * 2 * sections);
  std::memset(w.sums, 0, sizeof(float) * 3 * sections);
  ZeroBlock(w);
  w.block[0] = 1.0f;
  RunBlock(cascade, sections, w);
  for (int b = 1; b < kScaleInitialBlocks; ++b) {
    ZeroBlock(w);
    RunBlock(cascade, sections, w);
  }
  for (long b = 0; b < cap; ++b) {
    ZeroBlock(w);
    const float last = RunBlock(cascade, sections, w);
    if (static_cast<double>(last) <= kScaleDecayThreshold) break;
    if (!std::isfinite(last)) break;  // diverged: it will never decay
  }
}

// Step 5: per-section peak over its three nodes, stored over the sums.
void CollapseToPeaks(int sections, float* sums) {
  for (int s = 0; s < sections; ++s) {
    float peak = sums[3 * s];
    if (sums[3 * s + 1] > peak) peak = sums[3 * s + 1];
    if (sums[3 * s + 2] > peak) peak = sums[3 * s + 2];
    sums[s] = peak;  // index s <= 3s: only already-consumed sums are overwritten
  }
}

// Steps 6-7: numerator of section s times peak(s-1) / peak(s); the gain
// float is replaced by the last peak.
void ApplyScaling(float* cascade, int sections, const float* peaks) {
  float prev = 1.0f;
  for (int s = 0; s < sections; ++s) {
    const float f = 1.0f / (peaks[s] / prev);
    for (int i = 0; i < 3; ++i) cascade[5 * s + i] = qh::fd::CanonicalNan(cascade[5 * s + i] * f);
    prev = peaks[s];
  }
  cascade[5 * sections] = qh::fd::CanonicalNan(peaks[sections - 1]);
}

}  // namespace

void ScaleCascade(float* cascade, int section_count, float* workspace, ScalePath path) {
  if (section_count <= 0) return;
  const ScaleWorkspace w(workspace, section_count);
  const long cap = StrictlyStable(cascade, section_count) ? kScaleDecayBlockCap : kUnstableDecayBlockCap;
  bool measured = false;
  switch (path) {
    case ScalePath::kAuto:
      measured = section_count >= kLaneMinSections &&
                 MeasureNodeSumsLanes(cascade, section_count, cap,
                                      section_count >= kWideLaneMinSections ? ScalePath::kWideLanes
                                                                            : ScalePath::kLanes,
                                      w.sums);
      break;
    case ScalePath::kLanes:
    case ScalePath::kWideLanes:
    case ScalePath::kPlainLanes:
      measured = MeasureNodeSumsLanes(cascade, section_count, cap, path, w.sums);
      break;
    case ScalePath::kSections:
      break;
  }
  if (!measured) MeasureNodeSums(cascade, section_count, cap, w);
  CollapseToPeaks(section_count, w.sums);
  ApplyScaling(cascade, section_count, w.sums);
}

}  // namespace fd
}  // namespace qh

extern "C" {

void SOS_TransposedDirectForm2Filter(const float coefficients[5], float state[2], float block[128],
                                     float state1_trace[128], float state2_trace[128]) {
  const float b0 = coefficients[0], b1 = coefficients[1], b2 = coefficients[2];
  const float a1 = coefficients[3], a2 = coefficients[4];  // stored negated
  float s1 = state[0], s2 = state[1];
  for (int n = 0; n < 128; ++n) {
    const float x = block[n];
    const float y = s1 + b0 * x;
    s1 = s2 + b1 * x + a1 * y;
    s2 = b2 * x + a2 * y;
    block[n] = y;
    state1_trace[n] = s1;
    state2_trace[n] = s2;
  }
  state[0] = s1;
  state[1] = s2;
}

QH_EXPORT void ScaleCascadedTransposedDirectForm2IIR(float* cascade, int section_count,
                                                     float* workspace) {
  qh::fd::ScaleCascade(cascade, section_count, workspace, qh::fd::ScalePath::kAuto);
}

QH_EXPORT void OVA_ScaleCascadedTransposedDirectForm2IIR(float* cascade, int order, void* workspace) {
  ScaleCascadedTransposedDirectForm2IIR(cascade, QH_IirSectionCount(order),
                                        qh::fd::AlignWorkspace8(workspace));
}

}  // extern "C"
