// Responses for `heron design`: the frequency grid it shows and the curves
// of a design evaluated on it, through the analysis component.
#ifndef QUILLHERON_TOOLS_DESIGN_RESPONSE_H_
#define QUILLHERON_TOOLS_DESIGN_RESPONSE_H_

#include <vector>

#include "cascade.h"
#include "response.h"  // analysis/

namespace heron_tool {

// One section in the library's float convention: A1 and A2 are stored
// negated, so y = b0 x + b1 x1 + b2 x2 + A1 y1 + A2 y2.
using Biquad = quillheron::analysis::Section;
using ResponsePoint = quillheron::analysis::ResponsePoint;

// Points of a log-spaced grid from 10 Hz to half the rate (inclusive).
std::vector<double> LogFrequencyGrid(int sample_rate, int points = 200);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_DESIGN_RESPONSE_H_
