// heron design: run one designer of the library through the designer
// catalogue and render its output as text, JSON or SVG.
#include <cmath>
#include <cstdio>
#include <memory>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "design_bands.h"
#include "design_analysis.h"
#include "design_output.h"
#include "designer_catalogue.h"
#include "message_io.h"

namespace heron_tool {
namespace {

using qh_design::DesignerEntry;
using qh_design::Family;

struct CommonOptions {
  int rate = 48000;
  std::string format;
  bool json = false;
  bool response = false;
  bool unchecked = false;
  std::string plot;
  std::string csv;
  bool phase = false;
  bool group_delay = false;
  double tolerance_db = kDefaultToleranceDb;
  CLI::Option* rate_option = nullptr;
};

// Options as typed; the requests are built from them when the command runs.
struct ButterworthOptions {
  std::string type = "low";
  double cutoff = 1000;
  int order = 2;
};
struct PeqOptions {
  std::vector<std::string> bands;
};
struct ThumpxOptions {
  int speaker_size = 0;
  double bass_ctrl = 0.333499998, hp_ratio = 0.5, ext_bass = 0.8, lp_ratio = 5.5;
  double pre_lp_freq = 500, harm_hp_freq = 44, clip_level = 1.5;
};
struct CrossoverOptions {
  double freq = 300;
};
struct DistprevOptions {
  int count = 2;
  int nf_mode = 0;
  double nf_thld = 0, nf_sense = 0, nf_attk_thld = 0, nf_attk_ms = 200, nf_rel_ms = 50;
  int nf_band_ct = 0;
  double nf_base_freq = 100, nf_base_q = 10, nf_base_attn_max = 0;
  int nf_spacing = 0, nf_width = 0;
  double nf_slope = 0;
};

// Most limits an adapter needs to size its buffers; beyond them a run is a
// usage error even with --unchecked.
constexpr int kMaxOrder = 64;
constexpr int kMaxBands = 64;
constexpr int kMaxDistprevCount = 64;

// The reserved bass-designer argument as the converter passes it (the bit
// pattern of 1.0f); no designer reads it.
constexpr int kThumpxReserved = 0x3F800000;

ToolError Usage(const std::string& option, const std::string& reason) {
  return ToolError{option, reason, kExitInputError};
}

// The option a request field is set with.
std::string OptionFor(const char* field) {
  static const struct {
    const char* field;
    const char* option;
  } kNamed[] = {{"cutoff_hz", "--cutoff"},         {"order", "--order"},
                {"filter_type", "--type"},         {"sample_rate", "--rate"},
                {"sampling_rate", "--rate"},       {"center_freq", "--band"},
                {"q", "--band"},                   {"gain", "--band"},
                {"custom_speaker_size", "--speaker-size"}, {"crossover_freq", "--freq"}};
  const std::string f = field ? field : "";
  for (const auto& n : kNamed) {
    if (f == n.field) return n.option;
  }
  std::string option = "--" + f;
  for (char& c : option) c = c == '_' ? '-' : c;
  return option;
}

// "meaning (unit)" from the catalogue.
std::string Help(const DesignerEntry& entry, const char* field) {
  for (const qh_design::Parameter& p : entry.parameters) {
    if (std::string(p.field) == field) return std::string(p.meaning) + " (" + p.unit + ")";
  }
  return field;
}

std::string FormatList(const DesignerEntry& entry) {
  std::string list;
  for (qh_design::Format f : entry.formats) list += (list.empty() ? "" : "|") + std::string(qh_design::FormatName(f));
  return list;
}

// ---- running ----

bool EndsWithSvg(const std::string& path) {
  if (path.size() < 4) return false;
  std::string ext = path.substr(path.size() - 4);
  for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return ext == ".svg";
}

template <typename Request>
qh_design::Objection Unmeant(const Request& request) {
  return qh_design::CheckIntent(request);
}
// Every distprev design gets the same block: name the block's rule, not "design 0".
qh_design::Objection Unmeant(const qh_design::DistprevRequest& request) {
  return request.count > 0 ? qh_design::CheckIntent(request.blocks[0]) : qh_design::Objection{};
}

template <typename Request>
void RefuseUnmeant(const Request& request, const CommonOptions& c) {
  if (c.unchecked) return;
  const qh_design::Objection o = Unmeant(request);
  if (o) throw Usage(OptionFor(o.parameter), o.reason);
}

// Common part of every designer: checks the common options, asks `build` for
// the request, refuses designs a person did not mean, runs `design` and hands
// the result to the renderers.
template <typename Build, typename Design>
int RunDesign(const DesignerEntry& entry, const CommonOptions& c, Build build, Design design) {
  if (c.rate <= 0) throw Usage("--rate", "must be a positive number of Hz");
  if (!c.plot.empty() && !EndsWithSvg(c.plot)) {
    throw Usage("--plot", "'" + c.plot + "' does not end in .svg (the plot is drawn as SVG only)");
  }
  DesignOutput d;
  d.design = entry.name;
  d.rate = c.rate;
  if (!qh_design::ParseFormat(c.format.c_str(), &d.format) || !qh_design::HasFormat(entry, d.format)) {
    throw Usage("--format", std::string(entry.name) + " takes " + FormatList(entry) + ", not '" + c.format + "'");
  }
  const auto request = build();
  RefuseUnmeant(request, c);
  design(request, &d);

  const bool want_responses = c.response || !c.plot.empty() || !c.csv.empty();
  const std::vector<Response> responses = d.result == 0 && want_responses ? CurveResponses(d) : std::vector<Response>{};
  const RenderOptions render{c.phase, c.group_delay};
  OutputSet outputs;
  if (d.result == 0 && (!c.plot.empty() || !c.csv.empty())) {
    if (responses.empty()) throw ToolError{c.plot.empty() ? c.csv : c.plot, "this design has no response to show"};
    if (!c.plot.empty()) outputs.Add(c.plot, RenderDesignSvg(d, responses, render));
    if (!c.csv.empty()) outputs.Add(c.csv, RenderDesignCsv(d, responses, render));
  }
  outputs.Commit();
  const DesignAnalysis analysis = AnalyseDesign(d, c.tolerance_db);
  const std::vector<Response> shown = c.response ? responses : std::vector<Response>{};
  if (c.json) {
    PrintDesignJson(d, shown, render, analysis);
  } else if (d.result == 0) {
    PrintDesignText(d, shown, render, analysis);
  }
  if (d.result != 0) {
    std::fprintf(stderr, "heron: %s design rejected: %s\n", entry.name, d.reject_reason.c_str());
    return kExitNegativeResult;
  }
  // Written, but not what was asked: a quantised section on or outside the
  // unit circle, saturated words, too large an error, silence.
  return analysis.problems.empty() ? kExitOk : kExitFindings;
}

CLI::App* AddDesigner(CLI::App* design, Family family, std::shared_ptr<CommonOptions> c) {
  const DesignerEntry& entry = *qh_design::FindDesigner(family);
  CLI::App* sub = design->add_subcommand(entry.name, entry.summary);
  c->format = qh_design::FormatName(entry.formats.items[0]);
  c->rate_option = sub->add_option("--rate", c->rate, "sample rate (Hz)")->capture_default_str();
  if (entry.formats.count > 1) {
    sub->add_option("--format", c->format, "output format: " + FormatList(entry))->capture_default_str();
  }
  sub->add_flag("--json", c->json, "print one JSON object");
  sub->add_flag("--response", c->response, "add the magnitude response (dB, from 10 Hz to half the rate)");
  sub->add_option("--plot", c->plot, "draw the response into this SVG file")->option_text("FILE.svg");
  sub->add_option("--csv", c->csv, "write the response (Hz, then dB, degrees, samples per curve) to this CSV file");
  sub->add_flag("--phase", c->phase, "add the phase (degrees) to --response, --plot and --csv");
  sub->add_flag("--group-delay", c->group_delay, "add the group delay (samples) to --response, --plot and --csv");
  sub->add_option("--tolerance-db", c->tolerance_db,
                  "fixed point: the largest magnitude error (dB) against the float design that is not a problem")
      ->capture_default_str();
  sub->add_flag("--unchecked", c->unchecked,
                "skip the checks for designs a person did not mean (a frequency, Q, shelf slope, base Q or "
                "attack/release time not finite and positive, a gain not finite, an order outside 1 to 16, "
                "notch bands outside 0 to 6) and show exactly what the engine computes");
  return sub;
}

}  // namespace

void RegisterDesign(CLI::App& app, Action& run) {
  CLI::App* design = app.add_subcommand("design", "Run one of the library's filter designers and print its output");
  design->require_subcommand(1, 1);
  design->footer(BandTypeFooter());

  {
    auto c = std::make_shared<CommonOptions>();
    auto o = std::make_shared<ButterworthOptions>();
    const DesignerEntry& e = *qh_design::FindDesigner(Family::kButterworth);
    CLI::App* sub = AddDesigner(design, e.family, c);
    sub->add_option("--type", o->type, "low (low-pass) or high (high-pass)")->required();
    sub->add_option("--cutoff", o->cutoff, Help(e, "cutoff_hz"))->required();
    sub->add_option("--order", o->order, "filter order, 1 to 16 (sections of two, the first one first order "
                                         "when odd)")->required();
    sub->callback([c, o, &e, &run] {
      run = [c, o, &e] {
        auto build = [&] {
          if (o->type != "low" && o->type != "high") throw Usage("--type", "must be low or high");
          if (o->order > kMaxOrder) throw Usage("--order", "must be at most " + std::to_string(kMaxOrder));
          qh_design::ButterworthRequest r;
          r.cutoff_hz = static_cast<float>(o->cutoff);
          r.order = o->order;
          r.sample_rate = c->rate;
          r.filter_type = o->type == "low" ? QH_IIR_LOWPASS : QH_IIR_HIGHPASS;
          return r;
        };
        return RunDesign(e, *c, build, DesignButterworth);
      };
    });
  }
  {
    auto c = std::make_shared<CommonOptions>();
    auto o = std::make_shared<PeqOptions>();
    const DesignerEntry& e = *qh_design::FindDesigner(Family::kPeq);
    CLI::App* sub = AddDesigner(design, e.family, c);
    sub->add_option("--band", o->bands, "TYPE,FREQ,Q,GAIN[,INVERT], repeatable, in order: FREQ in Hz, Q in "
                                        "engine units, GAIN in dB, INVERT 0 or 1 (see the band types below)")
        ->required();
    sub->footer(BandTypeFooter());
    sub->callback([c, o, &e, &run] {
      run = [c, o, &e] {
        auto bands = std::make_shared<std::vector<OVAParametriceqBandSpec>>();
        auto build = [&] {
          if (o->bands.size() > kMaxBands) throw Usage("--band", "at most " + std::to_string(kMaxBands) + " bands");
          for (const std::string& text : o->bands) bands->push_back(ParseBand(text));
          return qh_design::PeqRequest{static_cast<int32_t>(bands->size()), bands->data(), c->rate};
        };
        return RunDesign(e, *c, build, DesignPeq);
      };
    });
  }
  {
    auto c = std::make_shared<CommonOptions>();
    auto o = std::make_shared<ThumpxOptions>();
    const DesignerEntry& e = *qh_design::FindDesigner(Family::kThumpx);
    CLI::App* sub = AddDesigner(design, e.family, c);
    sub->add_option("--speaker-size", o->speaker_size, Help(e, "custom_speaker_size"))->required();
    sub->add_option("--bass-ctrl", o->bass_ctrl, Help(e, "bass_ctrl"))->capture_default_str();
    sub->add_option("--hp-ratio", o->hp_ratio, Help(e, "hp_ratio"))->capture_default_str();
    sub->add_option("--ext-bass", o->ext_bass, Help(e, "ext_bass"))->capture_default_str();
    sub->add_option("--lp-ratio", o->lp_ratio, Help(e, "lp_ratio"))->capture_default_str();
    sub->add_option("--pre-lp-freq", o->pre_lp_freq, Help(e, "pre_lp_freq"))->capture_default_str();
    sub->add_option("--harm-hp-freq", o->harm_hp_freq, Help(e, "harm_hp_freq"))->capture_default_str();
    sub->add_option("--clip-level", o->clip_level, Help(e, "clip_level"))->capture_default_str();
    sub->callback([c, o, &e, &run] {
      run = [c, o, &e] {
        auto build = [&] {
          qh_design::ThumpxRequest r;
          r.custom_speaker_size = o->speaker_size;
          r.bass_ctrl = static_cast<float>(o->bass_ctrl);
          r.hp_ratio = static_cast<float>(o->hp_ratio);
          r.ext_bass = static_cast<float>(o->ext_bass);
          r.sampling_rate = c->rate;
          r.lp_ratio = static_cast<float>(o->lp_ratio);
          r.pre_lp_freq = static_cast<float>(o->pre_lp_freq);
          r.harm_hp_freq = static_cast<float>(o->harm_hp_freq);
          r.clip_level = static_cast<float>(o->clip_level);
          r.reserved = kThumpxReserved;
          return r;
        };
        return RunDesign(e, *c, build, DesignThumpx);
      };
    });
  }
  {
    auto c = std::make_shared<CommonOptions>();
    auto o = std::make_shared<CrossoverOptions>();
    const DesignerEntry& e = *qh_design::FindDesigner(Family::kCrossover);
    CLI::App* sub = AddDesigner(design, e.family, c);
    sub->add_option("--freq", o->freq, Help(e, "crossover_freq"))->capture_default_str();
    sub->callback([c, o, &e, &run] {
      run = [c, o, &e] {
        auto build = [&] { return qh_design::CrossoverRequest{static_cast<float>(o->freq), c->rate}; };
        return RunDesign(e, *c, build, DesignCrossover);
      };
    });
  }
  {
    auto c = std::make_shared<CommonOptions>();
    auto o = std::make_shared<DistprevOptions>();
    const DesignerEntry& e = *qh_design::FindDesigner(Family::kDistprev);
    CLI::App* sub = AddDesigner(design, e.family, c);
    c->rate_option->description("does not apply: distprev always designs 48000, 44100 and 32000 Hz");
    sub->add_option("--count", o->count, Help(e, "count"))->capture_default_str();
    const char* const kFields[] = {"nf_mode",      "nf_thld",      "nf_sense",     "nf_attk_thld", "nf_attk_ms",
                                   "nf_rel_ms",    "nf_band_ct",   "nf_base_freq", "nf_base_q",
                                   "nf_base_attn_max", "nf_spacing", "nf_width",   "nf_slope"};
    int* const ints[] = {&o->nf_mode, nullptr, nullptr, nullptr, nullptr, nullptr, &o->nf_band_ct, nullptr,
                         nullptr, nullptr, &o->nf_spacing, &o->nf_width, nullptr};
    double* const doubles[] = {nullptr, &o->nf_thld, &o->nf_sense, &o->nf_attk_thld, &o->nf_attk_ms, &o->nf_rel_ms,
                               nullptr, &o->nf_base_freq, &o->nf_base_q, &o->nf_base_attn_max, nullptr, nullptr,
                               &o->nf_slope};
    for (int i = 0; i < 13; ++i) {
      const std::string option = OptionFor(kFields[i]);
      CLI::Option* opt = ints[i] ? sub->add_option(option, *ints[i], Help(e, kFields[i]))
                                 : sub->add_option(option, *doubles[i], Help(e, kFields[i]));
      opt->capture_default_str();
    }
    sub->callback([c, o, &e, &run] {
      run = [c, o, &e] {
        if (c->rate_option->count() > 0) {
          std::fprintf(stderr, "heron: --rate: does not apply to distprev, which always designs 48000, 44100 "
                               "and 32000 Hz\n");
        }
        auto blocks = std::make_shared<std::vector<quillDistprevNotchDesignBlock>>();
        auto build = [&] {
          if (o->count < 0 || o->count > kMaxDistprevCount) {
            throw Usage("--count", "must be 0 to " + std::to_string(kMaxDistprevCount));
          }
          quillDistprevNotchDesignBlock b{};
          b.nf_mode = o->nf_mode;
          b.nf_thld = static_cast<float>(o->nf_thld);
          b.nf_sense = static_cast<float>(o->nf_sense);
          b.nf_attk_thld = static_cast<float>(o->nf_attk_thld);
          b.nf_attk_ms = static_cast<float>(o->nf_attk_ms);
          b.nf_rel_ms = static_cast<float>(o->nf_rel_ms);
          b.nf_band_ct = o->nf_band_ct;
          b.nf_base_freq = static_cast<float>(o->nf_base_freq);
          b.nf_base_q = static_cast<float>(o->nf_base_q);
          b.nf_base_attn_max = static_cast<float>(o->nf_base_attn_max);
          b.nf_spacing = o->nf_spacing;
          b.nf_width = o->nf_width;
          b.nf_slope = static_cast<float>(o->nf_slope);
          blocks->assign(o->count, b);
          return qh_design::DistprevRequest{blocks->data(), o->count};
        };
        return RunDesign(e, *c, build, DesignDistprev);
      };
    });
  }
}

}  // namespace heron_tool
