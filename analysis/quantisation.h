// How far a fixed-point cascade is from the filter it was designed as: the
// largest magnitude error against a reference, saturated words, sections
// whose stability the quantisation changed, and a silent (all-zero) cascade.
#ifndef QUILLHERON_ANALYSIS_QUANTISATION_H_
#define QUILLHERON_ANALYSIS_QUANTISATION_H_

#include <cstdint>
#include <optional>
#include <vector>

#include "cascade.h"
#include "poles.h"

namespace quillheron::analysis {

struct QuantisationReport {
  // Largest |quantised - reference| in dB and where, over 20 Hz to
  // min(20 kHz, 0.45 rate) wherever the reference is above -60 dB; empty
  // when the cascade is silent or no frequency qualifies.
  std::optional<double> max_error_db;
  double at_hz = 0;
  bool silent = false;        // every stored numerator word is zero
  int saturated = 0;          // coefficient words at the width's extremes
  std::vector<SectionRoots> sections;       // of the quantised cascade
  std::vector<int> stability_changed;       // section indexes
};

// Reference magnitude below which errors are not counted, in dB.
constexpr double kErrorFloorDb = -60.0;

// The words a coefficient value of `width` bits saturates at.
bool IsSaturated(int64_t word, int width);

// `coefficient_words`: the stored b0..A2 and gain words (iwl words left
// out), for the saturation count; `numerator_words`: the stored b0 b1 b2
// words, for the silence test.
QuantisationReport Quantisation(const Cascade& reference, const Cascade& quantised, double rate,
                                 const std::vector<int64_t>& coefficient_words,
                                 const std::vector<int64_t>& numerator_words, int width);

}  // namespace quillheron::analysis

#endif  // QUILLHERON_ANALYSIS_QUANTISATION_H_
