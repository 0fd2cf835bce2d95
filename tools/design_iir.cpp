// heron design butterworth|peq|crossover: cascades of biquad sections.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <sstream>

#include "design_output.h"
#include "message_io.h"
#include "quillheron_filterdesign.h"

namespace heron_tool {
namespace {

ToolError Usage(const std::string& reason) { return ToolError{"", reason, kExitInputError}; }

// A frequency as the user would write it ("1000", "22050.5").
std::string Hz(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%g", v);
  return buf;
}

std::string HalfRateText(int rate) { return std::to_string(rate / 2) + " Hz"; }

void RequireFormat(const std::string& format, std::initializer_list<const char*> allowed, const char* design) {
  std::string list;
  for (const char* a : allowed) {
    if (format == a) return;
    list += list.empty() ? a : std::string("|") + a;
  }
  throw Usage(std::string("--format for ") + design + " must be " + list);
}

// Records the fixed-point cascade `words` (6*S + 2 words) as sections and a
// gain, and its de-quantised response.
void AddFixedCascade(DesignOutput* out, const std::vector<std::string>& names, int width) {
  const int sections = static_cast<int>(names.size());
  for (int s = 0; s < sections; ++s) {
    out->quantised_sections.push_back(AddFixedSection(out, names[s], &out->words[6 * s], 5, width));
  }
  SectionView gain;
  gain.name = "gain";
  gain.iwl = static_cast<int>(out->words[6 * sections]);
  gain.coef_names = {"gain"};
  gain.words = {out->words[6 * sections + 1]};
  gain.values = {Dequantise(gain.words[0], width, *gain.iwl)};
  out->quantised_gain = gain.values[0];
  out->sections.push_back(gain);
  out->has_quantised = true;
}

// The float cascade as response sections (not as listed sections).
void SetFloatResponse(DesignOutput* out, const std::vector<float>& cascade, int sections) {
  out->float_sections.clear();
  for (int s = 0; s < sections; ++s) {
    const float* c = &cascade[5 * s];
    out->float_sections.push_back({c[0], c[1], c[2], c[3], c[4]});
  }
  out->float_gain = cascade[5 * sections];
}

void AddFloatCascade(DesignOutput* out, const std::vector<std::string>& names) {
  const int sections = static_cast<int>(names.size());
  for (int s = 0; s < sections; ++s) AddFloatSection(out, names[s], &out->floats[5 * s], 5);
  SectionView gain;
  gain.name = "gain";
  gain.coef_names = {"gain"};
  gain.values = {out->floats[5 * sections]};
  out->sections.push_back(gain);
  SetFloatResponse(out, out->floats, sections);
}

// "peaking" etc., or the band type's number.
int BandTypeFromText(const std::string& text) {
  static const char* const kNames[] = {"traditional", "lowshelf", "highshelf", "lowpass", "highpass",
                                       "bandpass",    "allpass",  "notch",     "peaking",  "gain"};
  for (int i = 0; i < 10; ++i) {
    if (text == kNames[i]) return i;
  }
  try {
    size_t used = 0;
    const int value = std::stoi(text, &used);
    if (used == text.size()) return value;
  } catch (const std::exception&) {
  }
  throw Usage("unknown band type '" + text + "' (traditional, lowshelf, highshelf, lowpass, highpass, "
              "bandpass, allpass, notch, peaking, gain, or a number)");
}

double NumberField(const std::string& text, const std::string& band) {
  try {
    size_t used = 0;
    const double v = std::stod(text, &used);
    if (used == text.size()) return v;
  } catch (const std::exception&) {
  }
  throw Usage("--band '" + band + "': '" + text + "' is not a number");
}

OVAParametriceqBandSpec ParseBand(const std::string& text) {
  std::vector<std::string> parts;
  std::stringstream in(text);
  for (std::string item; std::getline(in, item, ',');) parts.push_back(item);
  if (parts.size() != 4 && parts.size() != 5) {
    throw Usage("--band takes TYPE,FREQ,Q,GAIN[,INVERT], not '" + text + "'");
  }
  OVAParametriceqBandSpec band{};
  band.type = BandTypeFromText(parts[0]);
  band.center_freq = static_cast<float>(NumberField(parts[1], text));
  band.q = static_cast<float>(NumberField(parts[2], text));
  band.gain = static_cast<float>(NumberField(parts[3], text));
  if (parts.size() == 5) {
    if (parts[4] != "0" && parts[4] != "1") throw Usage("--band '" + text + "': INVERT must be 0 or 1");
    band.invert = parts[4] == "1";
  }
  return band;
}

std::vector<std::string> NumberedNames(const char* stem, int n) {
  std::vector<std::string> names;
  for (int i = 0; i < n; ++i) names.push_back(std::string(stem) + " " + std::to_string(i));
  return names;
}

}  // namespace

void DesignButterworth(const ButterworthOptions& o, DesignOutput* out) {
  RequireFormat(out->format, {"float", "fxp32", "fxp24", "fxp16"}, "butterworth");
  if (o.type != "low" && o.type != "high") throw Usage("--type must be low or high");
  if (o.order < 1 || o.order > 64) throw Usage("--order must be 1 to 64");
  const int type = o.type == "low" ? QH_IIR_LOWPASS : QH_IIR_HIGHPASS;
  const float cutoff = static_cast<float>(o.cutoff);
  const int sections = QH_IirSectionCount(o.order);
  std::vector<std::string> names = NumberedNames("section", sections);
  if (o.order % 2 == 1) names[0] += " (first order)";
  out->response_label = "Butterworth " + o.type + "-pass, order " + std::to_string(o.order);

  std::vector<float> cascade(QH_IirFloatLength(o.order), 0.0f);
  const int float_result = OVA_IirFilterDesignFloat(cutoff, o.order, out->rate, type, cascade.data());
  const int width = FormatWidth(out->format);
  if (width == 0) {
    out->floats = cascade;
    out->result = float_result;
  } else {
    std::vector<unsigned char> workspace(QH_IirDesignWorkspaceBytes(sections));
    void* ws = workspace.data();
    RunFixedDesign(
        out, QH_IirFixedLength(o.order), width,
        [&](int16_t* w) { return OVA_IirFilterDesignFxp16(cutoff, o.order, out->rate, type, w, ws); },
        [&](int32_t* w, int bits) {
          return bits == 32 ? OVA_IirFilterDesignFxp32(cutoff, o.order, out->rate, type, w, ws)
                            : OVA_IirFilterDesignFxp24(cutoff, o.order, out->rate, type, w, ws);
        });
  }
  if (out->result != 0) {
    out->reject_reason = "the cut-off " + Hz(o.cutoff) + " Hz is not below half the rate (" +
                         HalfRateText(out->rate) + ")";
    return;
  }
  if (width == 0) {
    AddFloatCascade(out, names);
  } else {
    AddFixedCascade(out, names, width);
    SetFloatResponse(out, cascade, sections);
  }
}

void DesignPeq(const PeqOptions& o, DesignOutput* out) {
  RequireFormat(out->format, {"float", "fxp32", "fxp32-noscale", "fxp24", "fxp16"}, "peq");
  if (o.bands.empty()) throw Usage("peq needs at least one --band");
  if (o.bands.size() > 64) throw Usage("peq takes at most 64 bands");
  std::vector<OVAParametriceqBandSpec> bands;
  for (const std::string& text : o.bands) bands.push_back(ParseBand(text));
  const int n = static_cast<int>(bands.size());
  const OVAParametriceqSpec request{n, bands.data(), out->rate};
  out->response_label = "parametric EQ, " + std::to_string(n) + (n == 1 ? " band" : " bands");

  std::vector<float> cascade(5 * n + 1, 0.0f);
  const int float_result = OVA_ParametriceqDesignFloat(&request, cascade.data());
  const int width = FormatWidth(out->format);
  if (width == 0) {
    out->floats = cascade;
    out->result = float_result;
  } else {
    std::vector<unsigned char> workspace(QH_IirDesignWorkspaceBytes(n));
    void* ws = workspace.data();
    const bool scaled = out->format != "fxp32-noscale";
    RunFixedDesign(
        out, 6 * n + 2, width, [&](int16_t* w) { return OVA_ParametriceqDesignFxp16(&request, w, ws); },
        [&](int32_t* w, int bits) {
          if (!scaled) return OVA_ParametriceqDesignFxp32NoScale(&request, w, ws);
          return bits == 32 ? OVA_ParametriceqDesignFxp32(&request, w, ws) : OVA_ParametriceqDesignFxp24(&request, w, ws);
        });
  }
  if (out->result != 0) {
    for (int i = 0; i < n; ++i) {
      if (bands[i].center_freq >= static_cast<float>(out->rate / 2)) {
        out->reject_reason = "band " + std::to_string(i) + ": the frequency " +
                             Hz(bands[i].center_freq) + " Hz is not below half the rate (" +
                             HalfRateText(out->rate) + ")";
        break;
      }
    }
    return;
  }
  std::vector<std::string> names;
  for (int i = 0; i < n; ++i) names.push_back("band " + std::to_string(i));
  if (width == 0) {
    AddFloatCascade(out, names);
  } else {
    AddFixedCascade(out, names, width);
    SetFloatResponse(out, cascade, n);
  }
}

void DesignCrossover(const CrossoverOptions& o, DesignOutput* out) {
  RequireFormat(out->format, {"float", "fxp32"}, "crossover");
  const float freq = static_cast<float>(o.freq);
  float halves[QH_MCDYN_FLOAT_LENGTH] = {};
  const int float_result = QUILL_McDyn_FilterDesignFloat(freq, out->rate, halves);
  out->response_label = "crossover low-pass half";
  out->second_label = "crossover high-pass half";
  if (out->format == "float") {
    out->floats.assign(halves, halves + QH_MCDYN_FLOAT_LENGTH);
    out->result = float_result;
  } else {
    out->float_output = false;
    int32_t w[QH_MCDYN_FIXED_LENGTH] = {};
    out->result = QUILL_McDyn_FilterDesignFxp32(freq, out->rate, w);
    out->words.assign(w, w + QH_MCDYN_FIXED_LENGTH);
  }
  if (out->result != 0) {
    out->reject_reason = "the crossover frequency " + Hz(o.freq) + " Hz is not below half the rate (" +
                         HalfRateText(out->rate) + ")";
    return;
  }
  const Biquad lp_float{halves[0], halves[1], halves[2], halves[3], halves[4]};
  const Biquad hp_float{halves[5], halves[6], halves[7], halves[8], halves[9]};
  out->float_sections = {lp_float};
  out->second_float_sections = {hp_float};
  if (out->format == "float") {
    AddFloatSection(out, "low-pass", &out->floats[0], 5);
    AddFloatSection(out, "high-pass", &out->floats[5], 5);
  } else {
    out->quantised_sections = {AddFixedSection(out, "low-pass", &out->words[0], 5, 32)};
    out->second_quantised_sections = {AddFixedSection(out, "high-pass", &out->words[6], 5, 32)};
    out->has_quantised = true;
  }
}

}  // namespace heron_tool
