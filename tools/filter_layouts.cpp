#include "filter_layouts.h"

#include "design_requests.h"
#include "designer_catalogue.h"
#include "quantisation.h"

namespace heron_tool {
namespace {

namespace an = quillheron::analysis;

const qh_design::DesignerEntry& GroupsOf(FilterLayout layout) {
  return *qh_design::FindDesigner(layout == FilterLayout::kCrossover ? qh_design::Family::kCrossover
                                                                     : qh_design::Family::kThumpx);
}

}  // namespace

int LayoutLength(FilterLayout layout, int sections) {
  switch (layout) {
    case FilterLayout::kCascade: return 6 * sections + 2;
    case FilterLayout::kCrossover: return qh_design::OutputLength(qh_design::CrossoverRequest{}, qh_design::Format::kFxp32);
    case FilterLayout::kThumpx: return qh_design::OutputLength(qh_design::ThumpxRequest{}, qh_design::Format::kFxp32);
  }
  return 0;
}

std::vector<an::Cascade> LayoutFilters(FilterLayout layout, int sections, const std::vector<int64_t>& w, int width) {
  std::vector<an::Cascade> out;
  if (static_cast<int>(w.size()) < LayoutLength(layout, sections)) return out;
  if (layout == FilterLayout::kCascade) {
    an::Cascade c;
    for (int s = 0; s < sections; ++s) c.sections.push_back(an::FixedSection(&w[6 * s], 5, width));
    c.gain = an::WordValue(w[6 * sections + 1], width, static_cast<int>(w[6 * sections]));
    out.push_back(c);
    return out;
  }
  for (const qh_design::OutputGroup& g : GroupsOf(layout).groups) {
    out.push_back({{an::FixedSection(&w[g.word_first], g.values, width)}, 1.0});
  }
  return out;
}

std::optional<std::pair<double, double>> LargestDifference(const std::vector<an::Cascade>& a,
                                                           const std::vector<an::Cascade>& b, int rate) {
  std::optional<std::pair<double, double>> worst;
  for (size_t i = 0; i < a.size() && i < b.size(); ++i) {
    // No saturation or silence test here: only the responses are compared.
    const an::QuantisationReport r = an::Quantisation(a[i], b[i], rate, {}, {1}, 32);
    if (r.max_error_db && (!worst || *r.max_error_db > worst->first)) worst = std::make_pair(*r.max_error_db, r.at_hz);
  }
  return worst;
}

}  // namespace heron_tool
