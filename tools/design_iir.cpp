// heron design butterworth|peq|crossover: cascades of biquad sections.
#include <cstdio>
#include <string>

#include "design_output.h"
#include "designer_catalogue.h"

namespace heron_tool {
namespace {

using qh_design::Format;

// The request's float design, for the response beside a fixed-point one.
template <typename Request>
std::vector<float> FloatDesign(const Request& request) {
  DesignOutput f;
  f.format = Format::kFloat;
  RunDesigner(request, &f);
  return f.floats;
}

template <typename Request>
std::string RejectReason(const Request& request, Format format) {
  const qh_design::Objection o = qh_design::CheckContract(request, format);
  return o ? o.reason : "rejected by the designer";
}

Curve CascadeCurve(const std::string& name, const std::vector<Biquad>& sections, double gain, bool quantised) {
  Curve c;
  c.name = name;
  c.quantised = quantised;
  c.sections = sections;
  c.gain = gain;
  return c;
}

// Lists the cascade in out (floats or words, S sections and a gain) as
// sections and sets the response curves: the float design `cascade`, then
// for fixed point the de-quantised words.
void AddCascade(DesignOutput* out, const std::vector<std::string>& names, const std::vector<float>& cascade,
                const std::string& label) {
  const int sections = static_cast<int>(names.size());
  const int width = qh_design::WordWidth(out->format);
  std::vector<Biquad> design, quantised;
  Analysed analysed;
  analysed.rate = out->rate;
  for (int s = 0; s < sections; ++s) {
    const qh_design::OutputGroup g = qh_design::CascadeSection(s);
    design.push_back(FloatBiquad(&cascade[g.float_first], g.values));
    if (width == 0) {
      AddFloatSection(out, names[s], &out->floats[g.float_first], g.values);
    } else {
      quantised.push_back(AddFixedSection(out, names[s], &out->words[g.word_first], g.values, width));
      AddAnalysedGroup(&analysed, design.back(), &out->words[g.word_first], g.values, width);
    }
  }
  const qh_design::OutputGroup g = qh_design::CascadeGain(sections);
  SectionView gain;
  gain.name = "gain";
  gain.coef_names = {"gain"};
  if (width == 0) {
    gain.values = {out->floats[g.float_first]};
  } else {
    gain.iwl = static_cast<int>(out->words[g.word_first]);
    gain.words = {out->words[g.word_first + 1]};
    gain.values = {quillheron::analysis::WordValue(gain.words[0], width, *gain.iwl)};
  }
  out->sections.push_back(gain);
  out->curves.push_back(CascadeCurve(label, design, cascade[g.float_first], false));
  if (width != 0) {
    out->curves.push_back(CascadeCurve(label, quantised, gain.values[0], true));
    analysed.reference.gain = cascade[g.float_first];
    analysed.quantised.gain = gain.values[0];
    analysed.coefficient_words.push_back(gain.words[0]);
    out->analysed.push_back(analysed);
  }
}

std::string Hz(double hz) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%g Hz", hz);
  return buf;
}

}  // namespace

void DesignButterworth(const qh_design::ButterworthRequest& request, DesignOutput* out) {
  RunDesigner(request, out);
  if (out->result != 0) {
    out->reject_reason = RejectReason(request, out->format);
    return;
  }
  const int sections = QH_IirSectionCount(request.order);
  std::vector<std::string> names;
  for (int s = 0; s < sections; ++s) names.push_back("section " + std::to_string(s));
  if (request.order % 2 == 1) names[0] += " (first order)";
  const std::string type = request.filter_type == QH_IIR_LOWPASS ? "low" : "high";
  out->detail = "cut-off " + Hz(request.cutoff_hz);
  AddCascade(out, names, FloatDesign(request), "Butterworth " + type + "-pass, order " + std::to_string(request.order));
}

void DesignPeq(const qh_design::PeqRequest& request, DesignOutput* out) {
  RunDesigner(request, out);
  if (out->result != 0) {
    out->reject_reason = RejectReason(request, out->format);
    return;
  }
  const int n = request.band_count;
  std::vector<std::string> names;
  for (int i = 0; i < n; ++i) names.push_back("band " + std::to_string(i));
  const std::vector<float> cascade = FloatDesign(request);
  AddCascade(out, names, cascade, "parametric EQ, " + std::to_string(n) + (n == 1 ? " band" : " bands"));
  // Each band's own float response, drawn faintly beside the cascade.
  for (int i = 0; i < n && n > 1; ++i) {
    const qh_design::OutputGroup g = qh_design::CascadeSection(i);
    Curve band = CascadeCurve(names[i], {FloatBiquad(&cascade[g.float_first], g.values)}, 1.0, false);
    band.faint = true;
    out->curves.push_back(band);
  }
  for (int i = 0; i < n; ++i) {
    const OVAParametriceqBandSpec& b = request.bands[i];
    if (i == 2) {
      out->detail += "; ...";
      break;
    }
    const char* type = qh_design::BandTypeName(b.type);
    char buf[96];
    std::snprintf(buf, sizeof buf, "%s%s %g Hz Q %g %+g dB", i ? "; " : "", type ? type : "type ?",
                  b.center_freq, b.q, b.gain);
    out->detail += buf;
  }
}

void DesignCrossover(const qh_design::CrossoverRequest& request, DesignOutput* out) {
  RunDesigner(request, out);
  if (out->result != 0) {
    out->reject_reason = RejectReason(request, out->format);
    return;
  }
  const std::vector<float> halves = FloatDesign(request);
  const bool fixed = out->format != Format::kFloat;
  const char* const kHalfNames[2] = {"crossover low-pass half", "crossover high-pass half"};
  const char* const kKeys[2] = {"", "highpass"};
  int pair = 0;
  std::vector<Curve> quantised;
  for (const qh_design::OutputGroup& g : qh_design::FindDesigner(qh_design::Family::kCrossover)->groups) {
    Curve c = CascadeCurve(kHalfNames[pair], {FloatBiquad(&halves[g.float_first], g.values)}, 1.0, false);
    c.key = kKeys[pair];
    c.pair = pair;
    out->curves.push_back(c);
    if (fixed) {
      const int width = qh_design::WordWidth(out->format);
      c.sections = {AddFixedSection(out, g.name, &out->words[g.word_first], g.values, width)};
      c.quantised = true;
      quantised.push_back(c);
      Analysed a;
      a.name = g.name;
      a.rate = out->rate;
      AddAnalysedGroup(&a, out->curves.back().sections[0], &out->words[g.word_first], g.values, width);
      out->analysed.push_back(a);
    } else {
      AddFloatSection(out, g.name, &out->floats[g.float_first], g.values);
    }
    ++pair;
  }
  // Curves in pairs: float design, then de-quantised, for each half; then
  // the sum of the two halves.
  if (fixed) out->curves = {out->curves[0], quantised[0], out->curves[1], quantised[1]};
  Curve sum;
  sum.name = "sum of both halves";
  sum.key = "sum";
  sum.pair = 2;
  sum.sum_of = fixed ? std::vector<int>{0, 2} : std::vector<int>{0, 1};
  out->curves.push_back(sum);
  if (fixed) {
    sum.quantised = true;
    sum.sum_of = {1, 3};
    out->curves.push_back(sum);
  }
  out->detail = "crossover " + Hz(request.crossover_freq);
}

}  // namespace heron_tool
