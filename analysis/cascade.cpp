#include "cascade.h"

#include <cmath>

namespace quillheron::analysis {
namespace {

template <typename Word>
Cascade FixedLayout(const Word* words, int sections, int width) {
  Cascade c;
  for (int s = 0; s < sections; ++s) {
    const int64_t group[6] = {words[6 * s], words[6 * s + 1], words[6 * s + 2],
                              words[6 * s + 3], words[6 * s + 4], words[6 * s + 5]};
    c.sections.push_back(FixedSection(group, 5, width));
  }
  c.gain = WordValue(words[6 * sections + 1], width, static_cast<int>(words[6 * sections]));
  return c;
}

}  // namespace

double WordValue(int64_t word, int width, int iwl) { return std::ldexp(static_cast<double>(word), iwl - width); }

Cascade FromFloatLayout(const float* values, int sections) {
  Cascade c;
  for (int s = 0; s < sections; ++s) {
    const float* v = &values[5 * s];
    c.sections.push_back({v[0], v[1], v[2], v[3], v[4]});
  }
  c.gain = values[5 * sections];
  return c;
}

Cascade FromFixedLayout(const int32_t* words, int sections, int width) {
  return FixedLayout(words, sections, width);
}

Cascade FromFixedLayout(const int16_t* words, int sections) { return FixedLayout(words, sections, 16); }

Section FixedSection(const int64_t* group, int values, int width) {
  const int iwl = static_cast<int>(group[0]);
  const auto v = [&](int i) { return WordValue(group[1 + i], width, iwl); };
  if (values == 3) return {v(0), v(1), 0.0, v(2), 0.0};
  return {v(0), v(1), v(2), v(3), v(4)};
}

}  // namespace quillheron::analysis
