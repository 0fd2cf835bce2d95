// Coefficient words read as the filters the engine runs: a cascade of S
// sections (6*S+2 words), the limiter's two crossover halves, or the
// bass-enhancement groups; and how far apart two forms of one filter are.
#ifndef QUILLHERON_TOOLS_FILTER_LAYOUTS_H_
#define QUILLHERON_TOOLS_FILTER_LAYOUTS_H_

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "cascade.h"

namespace heron_tool {

enum class FilterLayout { kCascade, kCrossover, kThumpx };

// Words the layout needs (cascades: of `sections` sections).
int LayoutLength(FilterLayout layout, int sections);

// The filters `words` hold, each read as real values of `width` bits: one
// cascade, or one single-section filter per group. Empty when there are too
// few words.
std::vector<quillheron::analysis::Cascade> LayoutFilters(FilterLayout layout, int sections,
                                                         const std::vector<int64_t>& words, int width);

// The largest magnitude difference in dB between filter i of `a` and of `b`
// over 20 Hz to min(20 kHz, 0.45 rate), and where; empty when none compares.
std::optional<std::pair<double, double>> LargestDifference(const std::vector<quillheron::analysis::Cascade>& a,
                                                           const std::vector<quillheron::analysis::Cascade>& b,
                                                           int rate);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_FILTER_LAYOUTS_H_
