// A biquad cascade as real numbers, read from the layouts the designers
// write. Sections follow the library's convention: A1 and A2 are stored
// negated, so each section computes
//   y[n] = b0 x[n] + b1 x[n-1] + b2 x[n-2] + A1 y[n-1] + A2 y[n-2]
// and its transfer function is (b0 + b1 z^-1 + b2 z^-2) / (1 - A1 z^-1 - A2 z^-2).
// Threading: plain values; no shared state.
#ifndef QUILLHERON_ANALYSIS_CASCADE_H_
#define QUILLHERON_ANALYSIS_CASCADE_H_

#include <cstdint>
#include <vector>

namespace quillheron::analysis {

struct Section {
  double b0 = 0, b1 = 0, b2 = 0, a1 = 0, a2 = 0;  // a1, a2: the stored (negated) A1, A2
};

struct Cascade {
  std::vector<Section> sections;
  double gain = 1.0;
};

// A fixed-point word as a real value: v * 2^(iwl - width), exact in double.
double WordValue(int64_t word, int width, int iwl);

// The float layout: S sections of b0 b1 b2 A1 A2, then the gain (5*S+1 floats).
Cascade FromFloatLayout(const float* values, int sections);
// The fixed-point layout: S sections of iwl b0 b1 b2 A1 A2, then iwl and gain
// (6*S+2 words), each word read as a real value of `width` bits (32, 24, 16).
Cascade FromFixedLayout(const int32_t* words, int sections, int width);
Cascade FromFixedLayout(const int16_t* words, int sections);
// One fixed-point section group at `group`: iwl then b0 b1 b2 A1 A2, or, for
// a first-order group of three values, iwl then b0 b1 A1.
Section FixedSection(const int64_t* group, int values, int width);

}  // namespace quillheron::analysis

#endif  // QUILLHERON_ANALYSIS_CASCADE_H_
