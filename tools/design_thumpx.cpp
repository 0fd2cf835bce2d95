// heron design thumpx: the bass-enhancement filter set, laid out by the
// catalogue's groups and parameter words.
#include "design_output.h"
#include "designer_catalogue.h"

namespace heron_tool {

void DesignThumpx(const qh_design::ThumpxRequest& request, DesignOutput* out) {
  // Zeroed workspace: the float gap the designer leaves is quantised as zeros.
  RunDesigner(request, out);
  if (out->result != 0) {
    const qh_design::Objection o = qh_design::CheckContract(request, out->format);
    out->reject_reason = o ? o.reason : "rejected by the designer";
    return;
  }
  DesignOutput design;
  design.format = qh_design::Format::kFloat;
  RunDesigner(request, &design);
  const std::vector<float>& floats = design.floats;
  const qh_design::DesignerEntry& entry = *qh_design::FindDesigner(qh_design::Family::kThumpx);
  const int width = qh_design::WordWidth(out->format);
  out->detail = "speaker size " + std::to_string(request.custom_speaker_size);

  Curve boost, quantised;
  boost.name = quantised.name = "bass-boost path (peaks and shelf)";
  quantised.quantised = true;
  for (int g = 0; g < entry.groups.count; ++g) {
    const qh_design::OutputGroup& group = entry.groups.items[g];
    const bool shown = g >= qh_design::kThumpxBoostGroupFirst;
    if (shown) boost.sections.push_back(FloatBiquad(&floats[group.float_first], group.values));
    if (width == 0) {
      AddFloatSection(out, group.name, &out->floats[group.float_first], group.values);
    } else {
      const Biquad b = AddFixedSection(out, group.name, &out->words[group.word_first], group.values, width);
      if (shown) quantised.sections.push_back(b);
      // Each biquad group is its own filter; the group the designer leaves
      // unwritten (all zero in the float design) is not analysed.
      const Biquad design = FloatBiquad(&floats[group.float_first], group.values);
      if (design.b0 != 0 || design.b1 != 0 || design.b2 != 0 || design.a1 != 0 || design.a2 != 0) {
        Analysed a;
        a.name = group.name;
        a.rate = out->rate;
        AddAnalysedGroup(&a, design, &out->words[group.word_first], group.values, width);
        out->analysed.push_back(a);
      }
    }
  }
  out->curves.push_back(boost);
  if (width != 0) out->curves.push_back(quantised);

  SectionView params;
  params.name = "parameters";
  for (const qh_design::ParameterWord& p : entry.parameter_words) {
    params.coef_names.push_back(p.name);
    if (width == 0) {
      params.values.push_back(out->floats[p.float_index]);
    } else {
      params.words.push_back(out->words[p.word_index]);
      params.values.push_back(qh_design::ParameterValue(p.encoding, out->words[p.word_index], width));
    }
  }
  out->sections.push_back(params);
}

}  // namespace heron_tool
