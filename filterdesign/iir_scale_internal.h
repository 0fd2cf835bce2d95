// The two implementations of the overflow-scaling measurement behind
// ScaleCascadedTransposedDirectForm2IIR, for the library and its tests: the
// section-after-section pass and the wavefront pass that runs sections in
// SIMD lanes. Both produce the same bytes. Stateless; safe on any thread.
#ifndef QUILLHERON_FILTERDESIGN_IIR_SCALE_INTERNAL_H_
#define QUILLHERON_FILTERDESIGN_IIR_SCALE_INTERNAL_H_

namespace qh {
namespace fd {

// The measurement runs a unit impulse and then silence in blocks of
// QH_IIR_SCALE_BLOCK_LENGTH samples: this many blocks, then decay blocks until
// the last section's output over one block sums to no more than
// kScaleDecayThreshold (a mean magnitude of 1e-12 per sample, compared in
// double) or a cap is reached.
constexpr int kScaleInitialBlocks = 10;
constexpr double kScaleDecayThreshold = 1.28e-10;

enum class ScalePath {
  kAuto,        // what the exported entry points use
  kSections,    // section after section, block after block
  kLanes,       // wavefront in this build's four-lane SIMD vectors (kSections when it has none)
  kWideLanes,   // wavefront in eight-lane AVX2 vectors where the build and the processor
                // have them, else as kLanes
  kPlainLanes,  // the same wavefront on the four-float fallback lanes
};

// Cascades the wavefront takes: from 1 to this many sections, every
// coefficient finite. kAuto takes it from 2 sections (measured on x86-64: a
// lone section runs faster section after section, two already run faster in
// lanes and with 40% fewer instructions); a single section goes section after
// section.
constexpr int kLaneMaxSections = 64;
constexpr int kLaneMinSections = 2;
// kAuto takes eight-lane vectors, where there are, for more sections than one
// of them holds: a single vector waits on its lane shift every step, and two
// or more four-lane vectors run faster (measured on x86-64: a 16th-order
// high-pass 45 us in four lanes, 53 in eight; an 18th-order 60 against 54).
constexpr int kWideLaneMinSections = 9;

// ScaleCascadedTransposedDirectForm2IIR with a chosen path (REQUIRES:
// workspace of QH_ScaleWorkspaceFloats(section_count) floats). A cascade the
// chosen path does not take runs section after section.
void ScaleCascade(float* cascade, int section_count, float* workspace, ScalePath path);

// True when this build has four-lane SIMD vectors for the wavefront.
bool HasNativeLanes();
// True when this build has eight-lane AVX2 vectors and the processor runs them.
bool HasWideLanes();

// The wavefront measurement: for each section s, sums[3s], sums[3s + 1] and
// sums[3s + 2] receive the L1 sums of its output, state 1 and state 2 over the
// impulse blocks and the decay blocks. Returns false, writing nothing, for a
// cascade it does not take (see kLaneMaxSections; on lanes that flush
// subnormals also any coefficient below 2^-103), and always in a build
// without SIMD lanes unless on kPlainLanes. `lanes` is kLanes, kWideLanes or
// kPlainLanes. decay_cap_blocks bounds the decay phase as the
// section-after-section pass does.
bool MeasureNodeSumsLanes(const float* cascade, int sections, long decay_cap_blocks, ScalePath lanes,
                          float* sums);

}  // namespace fd
}  // namespace qh

#endif  // QUILLHERON_FILTERDESIGN_IIR_SCALE_INTERNAL_H_
