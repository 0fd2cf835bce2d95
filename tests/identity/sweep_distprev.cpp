// Sweep of the distortion-prevention designer: notch design blocks covering
// every spacing and width rule, the attenuation steps, bands beyond the half
// rate, and the degenerate times and q values that are stored as they come.
// Each call designs two records, as the converter does.
#include <cstring>
#include <limits>

#include "quillHeronDistprev.h"
#include "quillheron_filterdesign.h"
#include "sweep_cases.h"

namespace qh_identity {
namespace {

using Block = quillDistprevNotchDesignBlock;

// nf_mode, thld, sense, attk_thld, attk_ms, rel_ms, band_ct, base_freq,
// base_q, base_attn_max, spacing, width, slope.
const Block kBlocks[] = {
    {0, 0.0f, 0.0f, 0.0f, 200.0f, 50.0f, 0, 100.0f, 10.0f, 0.0f, 0, 0, 0.0f},  // defaults
    {1, -3.7f, 2.9f, 6.0f, 10.0f, 300.0f, 4, 80.0f, 6.0f, -12.0f, 0, 0, -3.0f},
    {2, 12.5f, -0.4f, -6.0f, 1.0f, 1.0f, 6, 120.0f, 4.0f, -2.0f, 0, 1, 1.5f},
    {0, -20.0f, 6.0f, 3.0f, 20.0f, 80.0f, 6, 5000.0f, 8.0f, -9.0f, 0, 0, -1.0f},  // above the half rate
    {1, 0.0f, 0.0f, 0.0f, 5.0f, 40.0f, 5, 60.0f, 4.0f, -7.6f, 1, 1, -2.5f},       // octaves
    {0, 0.0f, 0.0f, 0.0f, 200.0f, 50.0f, 3, 250.0f, 3.0f, 7.6f, 2, 0, -1.0f},     // all at the base
    {0, 0.0f, 0.0f, 0.0f, 200.0f, 50.0f, 6, 90.0f, 40.0f, -15.0f, 0, 1, -4.0f},   // q ceiling
    {0, 0.0f, 0.0f, 0.0f, 200.0f, 50.0f, 6, 50.0f, 30.0f, -10.0f, 1, 1, -0.4f},   // q ceiling, octaves
    {0, 0.0f, 0.0f, 0.0f, 0.0f, -5.0f, 2, 200.0f, 10.0f, -6.0f, 0, 0, -6.0f},     // zero, negative times
    {0, 0.0f, 0.0f, 0.0f, 200.0f, 50.0f, 2, 200.0f, 0.0f, -6.0f, 0, 1, -6.0f},    // q 0
    {3, 1e9f, -1e9f, 40.0f, 1e-3f, 1e6f, 1, 20.0f, 0.5f, -60.5f, 7, 3, -100.0f},
};
constexpr int kBlockCount = sizeof kBlocks / sizeof kBlocks[0];

void DesignPair(SweepSink& sink, const Block* blocks, int count, int label) {
  quillDistprevDesignHeader header;
  quillMBHLDistprevCoeff records[2];
  std::memset(&header, kFillByte, sizeof header);
  std::memset(records, kFillByte, sizeof records);
  sink.Begin(Fmt("distprev blocks from %g, count %g", label, count));
  sink.I32(qh_design::Run(qh_design::DistprevRequest{blocks, count}, &header, records));
  sink.Raw(&header, sizeof header);
  sink.Raw(records, sizeof records);
}

}  // namespace

void SweepDistprev(SweepSink& sink) {
  for (int k = 0; k + 1 < kBlockCount; ++k) DesignPair(sink, &kBlocks[k], 2, k);
  Block last[2] = {kBlocks[kBlockCount - 1], kBlocks[0]};
  DesignPair(sink, last, 2, kBlockCount - 1);
  DesignPair(sink, kBlocks, 1, 0);
  DesignPair(sink, kBlocks, 0, 0);  // the header alone
}

}  // namespace qh_identity
