#include "design_output.h"

#include <cmath>

namespace heron_tool {

namespace {

Biquad ToBiquad(const std::vector<double>& v) {
  // Five values: b0 b1 b2 A1 A2; three (first order): b0 b1 A1.
  if (v.size() == 3) return {v[0], v[1], 0.0, v[2], 0.0};
  return {v[0], v[1], v[2], v[3], v[4]};
}

std::vector<std::string> CoefNames(int values) {
  if (values == 3) return {"b0", "b1", "A1"};
  return {"b0", "b1", "b2", "A1", "A2"};
}

}  // namespace

Biquad FloatBiquad(const float* c, int values) {
  return values == 3 ? Biquad{c[0], c[1], 0, c[2], 0} : Biquad{c[0], c[1], c[2], c[3], c[4]};
}

Biquad AddFixedSection(DesignOutput* out, const std::string& name, const int64_t* group, int values, int width) {
  SectionView s;
  s.name = name;
  s.iwl = static_cast<int>(group[0]);
  s.coef_names = CoefNames(values);
  for (int i = 0; i < values; ++i) {
    s.words.push_back(group[1 + i]);
    s.values.push_back(quillheron::analysis::WordValue(group[1 + i], width, *s.iwl));
  }
  const Biquad b = ToBiquad(s.values);
  out->sections.push_back(std::move(s));
  return b;
}

Biquad AddFloatSection(DesignOutput* out, const std::string& name, const float* coefs, int values) {
  SectionView s;
  s.name = name;
  s.coef_names = CoefNames(values);
  for (int i = 0; i < values; ++i) s.values.push_back(coefs[i]);
  const Biquad b = ToBiquad(s.values);
  out->sections.push_back(std::move(s));
  return b;
}

void AddAnalysedGroup(Analysed* a, const Biquad& design, const int64_t* group, int values, int width) {
  a->reference.sections.push_back(design);
  a->quantised.sections.push_back(quillheron::analysis::FixedSection(group, values, width));
  a->coefficient_words.insert(a->coefficient_words.end(), group + 1, group + 1 + values);
  a->numerator_words.insert(a->numerator_words.end(), group + 1, group + (values == 3 ? 3 : 4));
  a->width = width;
}

}  // namespace heron_tool
