// heron design: run one designer of the library and print its output.
#include <cstdio>
#include <memory>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "design_output.h"
#include "json_writer.h"
#include "message_io.h"
#include "svg_plot.h"

namespace heron_tool {
namespace {

struct CommonOptions {
  int rate = 48000;
  std::string format = "float";
  bool json = false;
  bool response = false;
  std::string plot;
};

using Response = std::vector<std::pair<double, double>>;

Response ResponseOf(const std::vector<Biquad>& sections, double gain, int rate) {
  return MagnitudeResponseDb(sections, gain, rate, LogFrequencyGrid(rate));
}

void WriteResponseJson(JsonWriter& j, const Response& r) {
  j.BeginArray();
  for (const auto& [hz, db] : r) j.BeginArray().Double(hz).Double(db).EndArray();
  j.EndArray();
}

std::string Number(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.9g", v);
  return buf;
}

void PrintJson(const DesignOutput& d, const CommonOptions& c) {
  JsonWriter j;
  j.BeginObject().Key("design").String(d.design).Key("rate").Int(d.rate).Key("format").String(d.format);
  j.Key("result").Int(d.result);
  if (d.result != 0) j.Key("error").String(d.reject_reason);
  if (!d.header_hex.empty()) j.Key("header").String(d.header_hex);
  j.Key("output").BeginArray();
  if (d.float_output) {
    for (float f : d.floats) j.Float(f);
  } else {
    for (int64_t w : d.words) j.Int(w);
  }
  j.EndArray();
  j.Key("sections").BeginArray();
  for (const SectionView& s : d.sections) {
    j.BeginObject().Key("name").String(s.name);
    j.Key("iwl");
    s.iwl ? j.Int(*s.iwl) : j.Null();
    for (size_t i = 0; i < s.values.size(); ++i) {
      std::string key = s.coef_names[i];
      if (key == "A1") key = "a1";
      if (key == "A2") key = "a2";
      j.Key(key).Double(s.values[i]);
    }
    if (!s.words.empty()) {
      j.Key("words").BeginArray();
      for (int64_t w : s.words) j.Int(w);
      j.EndArray();
    }
    j.EndObject();
  }
  j.EndArray();
  if (c.response && d.result == 0 && !d.float_sections.empty()) {
    j.Key("response");
    WriteResponseJson(j, ResponseOf(d.float_sections, d.float_gain, d.rate));
    if (d.has_quantised) {
      j.Key("response_quantised");
      WriteResponseJson(j, ResponseOf(d.quantised_sections, d.quantised_gain, d.rate));
    }
    if (!d.second_float_sections.empty()) {
      j.Key("response_highpass");
      WriteResponseJson(j, ResponseOf(d.second_float_sections, 1.0, d.rate));
      if (d.has_quantised) {
        j.Key("response_highpass_quantised");
        WriteResponseJson(j, ResponseOf(d.second_quantised_sections, 1.0, d.rate));
      }
    }
  }
  j.EndObject();
  std::printf("%s\n", j.str().c_str());
}

void PrintText(const DesignOutput& d, const CommonOptions& c) {
  std::printf("%s, %d Hz, %s: result %d\n", d.design.c_str(), d.rate, d.format.c_str(), d.result);
  if (!d.header_hex.empty()) std::printf("header %s\n", d.header_hex.c_str());
  if (!d.sections.empty() && d.sections.front().iwl) {
    std::printf("(fixed point: real value, stored word in brackets; A1 and A2 are stored negated)\n");
  } else {
    std::printf("(A1 and A2 are stored negated: y = b0 x + b1 x1 + b2 x2 + A1 y1 + A2 y2)\n");
  }
  for (const SectionView& s : d.sections) {
    std::string line = s.name + ":";
    if (s.iwl) line += " iwl " + std::to_string(*s.iwl);
    for (size_t i = 0; i < s.values.size(); ++i) {
      line += "  " + s.coef_names[i] + " " + Number(s.values[i]);
      if (i < s.words.size()) line += " [" + std::to_string(s.words[i]) + "]";
    }
    std::printf("%s\n", line.c_str());
  }
  if (c.response && !d.float_sections.empty()) {
    const Response r = ResponseOf(d.float_sections, d.float_gain, d.rate);
    std::printf("response of the %s (Hz, dB):\n", d.response_label.c_str());
    for (size_t i = 0; i < r.size(); i += 10) std::printf("  %10.1f  %8.3f\n", r[i].first, r[i].second);
  }
}

void WritePlot(const DesignOutput& d, const CommonOptions& c) {
  if (d.float_sections.empty()) throw ToolError{c.plot, "this design has no response to plot"};
  std::vector<PlotCurve> curves;
  curves.push_back({d.response_label + " (float design)", "#1f5fbf", false,
                    ResponseOf(d.float_sections, d.float_gain, d.rate)});
  if (d.has_quantised) {
    curves.push_back({d.response_label + " (" + d.format + ", de-quantised)", "#d0301f", true,
                      ResponseOf(d.quantised_sections, d.quantised_gain, d.rate)});
  }
  if (!d.second_float_sections.empty()) {
    curves.push_back({d.second_label + " (float design)", "#2f8f2f", false,
                      ResponseOf(d.second_float_sections, 1.0, d.rate)});
    if (d.has_quantised) {
      curves.push_back({d.second_label + " (" + d.format + ", de-quantised)", "#b07010", true,
                        ResponseOf(d.second_quantised_sections, 1.0, d.rate)});
    }
  }
  const std::string title = "heron design " + d.design + ", " + std::to_string(d.rate) + " Hz, " + d.format;
  const std::string svg = RenderResponseSvg(title, curves);
  WriteFileAtomically(c.plot, svg.data(), svg.size());
}

template <typename Designer>
int RunDesign(const char* name, const CommonOptions& c, Designer designer) {
  if (c.rate <= 0) throw ToolError{"", "--rate must be a positive number of Hz"};
  DesignOutput d;
  d.design = name;
  d.rate = c.rate;
  d.format = c.format;
  designer(&d);
  if (d.result == 0 && !c.plot.empty()) WritePlot(d, c);
  if (c.json) {
    PrintJson(d, c);
  } else if (d.result == 0) {
    PrintText(d, c);
  }
  if (d.result != 0) {
    std::fprintf(stderr, "heron: %s design rejected: %s\n", name, d.reject_reason.c_str());
    return kExitNegativeResult;
  }
  return kExitOk;
}

CLI::App* AddDesigner(CLI::App* design, const char* name, const char* help, std::shared_ptr<CommonOptions> c,
                      const char* formats) {
  CLI::App* sub = design->add_subcommand(name, help);
  sub->add_option("--rate", c->rate, "sample rate in Hz")->capture_default_str();
  if (formats) sub->add_option("--format", c->format, formats)->capture_default_str();
  sub->add_flag("--json", c->json, "print one JSON object");
  sub->add_flag("--response", c->response, "add the magnitude response (10 Hz to half the rate)");
  sub->add_option("--plot", c->plot, "draw the response into this SVG file");
  return sub;
}

}  // namespace

void RegisterDesign(CLI::App& app, Action& run) {
  CLI::App* design = app.add_subcommand("design", "Run one of the library's filter designers and print its output");
  design->require_subcommand(1, 1);

  {
    auto c = std::make_shared<CommonOptions>();
    auto o = std::make_shared<ButterworthOptions>();
    CLI::App* sub = AddDesigner(design, "butterworth", "Butterworth low- or high-pass cascade", c,
                                "float|fxp32|fxp24|fxp16");
    sub->add_option("--type", o->type, "low or high")->required();
    sub->add_option("--cutoff", o->cutoff, "cut-off frequency in Hz")->required();
    sub->add_option("--order", o->order, "filter order")->required();
    sub->callback([c, o, &run] {
      run = [c, o] { return RunDesign("butterworth", *c, [&](DesignOutput* d) { DesignButterworth(*o, d); }); };
    });
  }
  {
    auto c = std::make_shared<CommonOptions>();
    auto o = std::make_shared<PeqOptions>();
    CLI::App* sub = AddDesigner(design, "peq", "Parametric equaliser, one section per band", c,
                                "float|fxp32|fxp32-noscale|fxp24|fxp16");
    sub->add_option("--band", o->bands, "TYPE,FREQ,Q,GAIN[,INVERT] (repeatable, in order)")->required();
    sub->callback([c, o, &run] {
      run = [c, o] { return RunDesign("peq", *c, [&](DesignOutput* d) { DesignPeq(*o, d); }); };
    });
  }
  {
    auto c = std::make_shared<CommonOptions>();
    auto o = std::make_shared<ThumpxOptions>();
    CLI::App* sub = AddDesigner(design, "thumpx", "Bass-enhancement filter set", c, "float|fxp32|fxp24|fxp16");
    sub->add_option("--speaker-size", o->speaker_size, "loudspeaker size (40 to 600)")->required();
    sub->add_option("--bass-ctrl", o->bass_ctrl, "bass boost, 0 to 1")->capture_default_str();
    sub->add_option("--hp-ratio", o->hp_ratio, "high-pass ratio, 0 to 1")->capture_default_str();
    sub->add_option("--ext-bass", o->ext_bass, "bass extension, 0 to 1")->capture_default_str();
    sub->add_option("--lp-ratio", o->lp_ratio, "low-pass ratio")->capture_default_str();
    sub->add_option("--pre-lp-freq", o->pre_lp_freq, "pre low-pass frequency in Hz")->capture_default_str();
    sub->add_option("--harm-hp-freq", o->harm_hp_freq, "harmonics high-pass frequency in Hz")->capture_default_str();
    sub->add_option("--clip-level", o->clip_level, "clip level")->capture_default_str();
    sub->callback([c, o, &run] {
      run = [c, o] { return RunDesign("thumpx", *c, [&](DesignOutput* d) { DesignThumpx(*o, d); }); };
    });
  }
  {
    auto c = std::make_shared<CommonOptions>();
    auto o = std::make_shared<CrossoverOptions>();
    CLI::App* sub = AddDesigner(design, "crossover", "Multi-band limiter crossover (low-pass and high-pass)", c,
                                "float|fxp32");
    sub->add_option("--freq", o->freq, "crossover frequency in Hz")->capture_default_str();
    sub->callback([c, o, &run] {
      run = [c, o] { return RunDesign("crossover", *c, [&](DesignOutput* d) { DesignCrossover(*o, d); }); };
    });
  }
  {
    auto c = std::make_shared<CommonOptions>();
    c->format = "record";
    auto o = std::make_shared<DistprevOptions>();
    CLI::App* sub = AddDesigner(design, "distprev", "Distortion-prevention records (sense and notch banks)", c,
                                nullptr);
    sub->add_option("--count", o->count, "number of designs (records)")->capture_default_str();
    sub->add_option("--nf-mode", o->nf_mode)->capture_default_str();
    sub->add_option("--nf-thld", o->nf_thld, "threshold, dB")->capture_default_str();
    sub->add_option("--nf-sense", o->nf_sense, "sensitivity, dB")->capture_default_str();
    sub->add_option("--nf-attk-thld", o->nf_attk_thld, "attack threshold, dB")->capture_default_str();
    sub->add_option("--nf-attk-ms", o->nf_attk_ms, "attack time, ms")->capture_default_str();
    sub->add_option("--nf-rel-ms", o->nf_rel_ms, "release time, ms")->capture_default_str();
    sub->add_option("--nf-band-ct", o->nf_band_ct, "notch bands, 0 to 6")->capture_default_str();
    sub->add_option("--nf-base-freq", o->nf_base_freq, "base frequency, Hz")->capture_default_str();
    sub->add_option("--nf-base-q", o->nf_base_q, "base q")->capture_default_str();
    sub->add_option("--nf-base-attn-max", o->nf_base_attn_max, "base attenuation, dB")->capture_default_str();
    sub->add_option("--nf-spacing", o->nf_spacing, "0 harmonic, 1 octave, else all at the base")->capture_default_str();
    sub->add_option("--nf-width", o->nf_width, "0 constant q, else constant bandwidth")->capture_default_str();
    sub->add_option("--nf-slope", o->nf_slope, "attenuation step per band, dB")->capture_default_str();
    sub->callback([c, o, &run] {
      run = [c, o] { return RunDesign("distprev", *c, [&](DesignOutput* d) { DesignDistprev(*o, d); }); };
    });
  }
}

}  // namespace heron_tool
