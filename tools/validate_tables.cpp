// The coefficient-table rules of `heron validate`: every table the settings
// hold for a rate, read as the filter the engine runs (a cascade, the
// limiter's two crossover halves, the bass-enhancement groups), and checked
// for its length, its stability, agreement between its widths, and agreement
// with what the settings say it is designed from.
//
// The high-pass and crossover tables are compared with a Butterworth design
// of their `cutoff` and `order` (the engine's tables for these are Butterworth
// designs; nothing else in the settings says which filter a table is).
#include "validate_tables.h"

#include <cmath>
#include <cstdio>
#include <functional>
#include <optional>

#include "QuillPb_models.h"
#include "cascade.h"
#include "coefficient_io.h"
#include "design_requests.h"
#include "designer_catalogue.h"
#include "filter_layouts.h"
#include "poles.h"
#include "quantisation.h"

namespace heron_tool {
namespace {

namespace an = quillheron::analysis;
using quill::pb::coef::CoefTable;
using quillheron::findCoefficients;

// Beyond this difference between two forms of one filter, a table is reported.
constexpr double kAgreementDb = 0.5;

using Layout = FilterLayout;

std::string Hz(double hz) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%g Hz", hz);
  return buf;
}

}  // namespace

std::vector<int64_t> Words(const CoefTable& t, int width) {
  std::vector<int64_t> w;
  if (width == 32) w.assign(t.coeff_32().begin(), t.coeff_32().end());
  if (width == 24) w.assign(t.coeff_24().begin(), t.coeff_24().end());
  if (width == 16) w.assign(t.coeff_16().begin(), t.coeff_16().end());
  return w;
}

namespace {

int ExpectedLength(const TableFilter& f) { return LayoutLength(f.layout, f.sections); }

std::vector<an::Cascade> Filters(const TableFilter& f, const std::vector<int64_t>& w, int width) {
  return LayoutFilters(f.layout, f.sections, w, width);
}

template <typename Request>
bool RunFixed(const Request& request, int width, std::vector<int64_t>* words) {
  const auto format = width == 16 ? qh_design::Format::kFxp16 : qh_design::Format::kFxp32;
  const int n = qh_design::OutputLength(request, format);
  std::vector<int32_t> w32(n, 0);
  std::vector<int16_t> w16(n, 0);
  std::vector<unsigned char> workspace(qh_design::WorkspaceBytes(request, format), 0);
  qh_design::DesignBuffers buffers;
  buffers.words32 = w32.data();
  buffers.words16 = w16.data();
  buffers.workspace = workspace.data();
  if (qh_design::Run(request, format, buffers) != 0) return false;
  if (width == 16) {
    words->assign(w16.begin(), w16.end());
  } else {
    words->assign(w32.begin(), w32.end());
  }
  return true;
}

TableFilter Butterworth(const std::string& path, const char* step, const CoefTable* t, int width, int cutoff,
                        bool has_cutoff, int order, int type, int rate) {
  TableFilter f{path, step, t, width, Layout::kCascade, (order + 1) / 2, "", nullptr};
  if (has_cutoff && order > 0) {
    f.designed_from = std::string("a Butterworth ") + (type == QH_IIR_LOWPASS ? "low" : "high") + "-pass of order " +
                      std::to_string(order) + " at " + Hz(cutoff);
    f.redesign = [=](int w, std::vector<int64_t>* words) {
      return RunFixed(qh_design::ButterworthRequest{static_cast<float>(cutoff), order, rate, type}, w, words);
    };
  }
  return f;
}

// Findings carry the rate beside the path, so the path names the list.
std::string At(const std::string& path, int) { return path; }

}  // namespace

// Every table of the settings for `rate`, as filters.
std::vector<TableFilter> TablesAt(const RuleContext& c) {
  const auto& p = c.settings.postmix();
  const int rate = c.rate;
  std::vector<TableFilter> out;
  if (const CoefTable* t = p.has_hpf_coef() ? findCoefficients(p.hpf_coef().coeffs(), rate) : nullptr) {
    const auto& h = p.hpf_coef();
    out.push_back(Butterworth(At("postmix.hpf_coef.coeffs", rate), "output_hpf", t, 32, h.cutoff(), h.has_cutoff(),
                              h.order(), QH_IIR_HIGHPASS, rate));
  }
  if (p.has_brio_hpf_coef() && p.brio_hpf_coef().order() > 0) {
    const auto& h = p.brio_hpf_coef();
    if (const CoefTable* t = findCoefficients(h.hpf_coeffs(), rate)) {
      out.push_back(Butterworth(At("postmix.brio_hpf_coef.hpf_coeffs", rate), "brio_hpf", t, 16, h.cutoff(),
                                h.has_cutoff(), h.order(), QH_IIR_HIGHPASS, rate));
    }
  }
  if (p.has_brio_xover_coef()) {
    const auto& x = p.brio_xover_coef();
    if (const CoefTable* t = findCoefficients(x.lpf_coeffs(), rate)) {
      out.push_back(Butterworth(At("postmix.brio_xover_coef.lpf_coeffs", rate), "brio_crossover", t, 16, x.cutoff(),
                                x.has_cutoff(), x.order(), QH_IIR_LOWPASS, rate));
    }
    if (const CoefTable* t = findCoefficients(x.hpf_coeffs(), rate)) {
      out.push_back(Butterworth(At("postmix.brio_xover_coef.hpf_coeffs", rate), "brio_crossover", t, 16, x.cutoff(),
                                x.has_cutoff(), x.order(), QH_IIR_HIGHPASS, rate));
    }
  }
  if (const CoefTable* t = p.has_thumpx_coef() ? findCoefficients(p.thumpx_coef().coeffs(), rate) : nullptr) {
    TableFilter f{At("postmix.thumpx_coef.coeffs", rate), "thumpx", t, 32, Layout::kThumpx, 0, "", nullptr};
    if (p.thumpx_coef().has_filterdesignparams()) {
      f.designed_from = "its filterDesignParams";
      const qh_design::ThumpxRequest r = ThumpxRequestFrom(p.thumpx_coef().filterdesignparams(), rate);
      f.redesign = [r](int w, std::vector<int64_t>* words) { return RunFixed(r, w, words); };
    }
    out.push_back(f);
  }
  if (p.has_mbhl_coef()) {
    const auto& dp = c.settings.designerparameters().mbhl_design_params();
    const bool params = c.settings.designerparameters().has_mbhl_design_params();
    for (const auto& [name, table, freq, present] :
         {std::make_tuple("low_cross_coeffs", &p.mbhl_coef().low_cross_coeffs(), dp.custom_low_cross(),
                          dp.has_custom_low_cross()),
          std::make_tuple("mid_cross_coeffs", &p.mbhl_coef().mid_cross_coeffs(), dp.custom_mid_cross(),
                          dp.has_custom_mid_cross())}) {
      if (table->samplerate() != rate) continue;
      TableFilter f{At(std::string("postmix.mbhl_coef.") + name, rate), "mbhl_crossover", table, 32,
                    Layout::kCrossover, 0, "", nullptr};
      if (params && present) {
        f.designed_from = "a crossover at " + Hz(freq);
        const qh_design::CrossoverRequest r{static_cast<float>(freq), rate};
        f.redesign = [r](int w, std::vector<int64_t>* words) { return RunFixed(r, w, words); };
      }
      out.push_back(f);
    }
  }
  // The AEQ banks of every listening model searched.
  for (const auto& [model, source] : c.models) {
    for (const auto& aeq : model->aeqs()) {
      for (int b = 0; b < aeq.coefficient_table_size(); ++b) {
        const auto& bank = aeq.coefficient_table(b);
        const CoefTable* t = findCoefficients(bank.iircoefs(), rate);
        if (t == nullptr) continue;
        const int order = bank.has_iirorder() ? bank.iirorder() : 24;
        TableFilter f{At(source + ": AEQ " + aeq.uuid() + " bank " + std::to_string(b) + " iirCoefs", rate), "aeq",
                      t, 32, Layout::kCascade, order / 2, "", nullptr};
        std::vector<OVAParametriceqBandSpec> bands;
        for (const auto& d : bank.iirdesc().band_data()) {
          if (d.enable() == 0) continue;
          bands.push_back({d.type(), static_cast<float>(d.center_freq()), d.q(), static_cast<float>(d.gain()), 0});
        }
        if (!bands.empty() && static_cast<int>(bands.size()) == f.sections) {
          f.designed_from = "its " + std::to_string(bands.size()) + " enabled bands";
          f.redesign = [bands, rate](int w, std::vector<int64_t>* words) {
            return RunFixed(qh_design::PeqRequest{static_cast<int32_t>(bands.size()), bands.data(), rate}, w, words);
          };
        }
        out.push_back(f);
      }
    }
  }
  return out;
}

namespace {

std::string DifferenceText(const std::pair<double, double>& d) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.3g dB at %.0f Hz", d.first, d.second);
  return buf;
}

}  // namespace

// The bass designer's request as the converter builds it from the settings'
// design parameters (the rate given, not the parameters' own).
qh_design::ThumpxRequest ThumpxRequestFrom(const quill::pb::tech::ThumpxFilterDesignParameters& d, int rate) {
  qh_design::ThumpxRequest r;
  r.custom_speaker_size = d.custom_speaker_size();
  r.bass_ctrl = static_cast<float>(d.bass_ctrl());
  r.hp_ratio = static_cast<float>(d.hp_ratio());
  r.ext_bass = static_cast<float>(d.ext_bass());
  r.sampling_rate = rate;
  r.lp_ratio = static_cast<float>(d.lp_ratio());
  r.pre_lp_freq = static_cast<float>(d.pre_lp_freq());
  r.harm_hp_freq = static_cast<float>(d.harm_hp_freq());
  r.clip_level = static_cast<float>(d.clip_level());
  r.reserved = 0x3F800000;  // as the converter passes it; no designer reads it
  return r;
}

std::string DesignerObjection(const quill::pb::heron_v1_1::HeronSettings& settings, int step, int rate) {
  qh_design::Objection o;
  if (step == QUILL_STEP_THUMPX) {
    const auto r = ThumpxRequestFrom(settings.postmix().thumpx_coef().filterdesignparams(), rate);
    o = qh_design::CheckContract(r, qh_design::Format::kFxp32);
  } else if (step == QUILL_STEP_MBHL_CROSSOVER) {
    const auto& dp = settings.designerparameters().mbhl_design_params();
    o = qh_design::CheckContract(qh_design::CrossoverRequest{static_cast<float>(dp.custom_low_cross()), rate},
                                 qh_design::Format::kFxp32);
    if (!o) {
      o = qh_design::CheckContract(qh_design::CrossoverRequest{static_cast<float>(dp.custom_mid_cross()), rate},
                                   qh_design::Format::kFxp32);
    }
  }
  return o ? o.reason : "";
}

void TableLengths(const RuleContext& c) {
  for (const TableFilter& f : TablesAt(c)) {
    const int n = static_cast<int>(Words(*f.table, f.width).size()), want = ExpectedLength(f);
    if (n == want) continue;
    const std::string what = f.layout == Layout::kCascade ? "order " + std::to_string(2 * f.sections) + " needs "
                                                          : "the layout needs ";
    c.Warn(f.path, f.step, "coeff_" + std::to_string(f.width) + " holds " + std::to_string(n) + " values; " + what +
                               std::to_string(want));
  }
}

void TableStability(const RuleContext& c) {
  for (const TableFilter& f : TablesAt(c)) {
    const auto filters = Filters(f, Words(*f.table, f.width), f.width);
    for (size_t i = 0; i < filters.size(); ++i) {
      const auto roots = an::Roots(filters[i]);
      for (size_t s = 0; s < roots.size(); ++s) {
        if (roots[s].stability == an::Stability::kStable) continue;
        char radius[32];
        std::snprintf(radius, sizeof radius, "%.9g", roots[s].pole_radius);
        const std::string which = filters.size() > 1 ? "group " + std::to_string(i) : "section " + std::to_string(s);
        c.Warn(f.path, f.step, which + " is " + an::StabilityName(roots[s].stability) + " (pole radius " + radius + ")");
      }
    }
  }
}

void StaleTables(const RuleContext& c) {
  for (const TableFilter& f : TablesAt(c)) {
    std::vector<int64_t> designed;
    if (!f.redesign) continue;
    if (!f.redesign(f.width, &designed)) {
      c.Warn(f.path, f.step, "stored beside " + f.designed_from + ", which the designer rejects at " +
                                 std::to_string(c.rate) + " Hz");
      continue;
    }
    const auto table = Filters(f, Words(*f.table, f.width), f.width);
    const auto redesign = Filters(f, designed, f.width);
    const auto d = LargestDifference(redesign, table, c.rate);
    if (d && d->first > kAgreementDb) {
      c.Warn(f.path, f.step, "differs from " + f.designed_from + " by up to " + DifferenceText(*d) +
                                 ": the table no longer matches what it is stored beside");
    }
  }
}

void TableWidths(const RuleContext& c) {
  for (const TableFilter& f : TablesAt(c)) {
    const auto read = Filters(f, Words(*f.table, f.width), f.width);
    if (read.empty()) continue;
    for (int width : {32, 24, 16}) {
      const std::vector<int64_t> w = Words(*f.table, width);
      if (width == f.width || w.empty()) continue;
      const auto other = Filters(f, w, width);
      const auto d = other.empty() ? std::nullopt : LargestDifference(read, other, c.rate);
      if (other.empty() || (d && d->first > kAgreementDb)) {
        c.Warn(f.path, f.step, "coeff_" + std::to_string(width) + " and coeff_" + std::to_string(f.width) +
                                   " (the one loaded) describe different filters" +
                                   (d ? ": up to " + DifferenceText(*d) : std::string(": the lengths differ")));
      }
    }
  }
}

void HalfRateFrequencies(const RuleContext& c) {
  const auto& p = c.settings.postmix();
  const double half = c.rate / 2.0;
  const auto check = [&](const std::string& path, const char* step, double hz) {
    if (hz >= half) c.Warn(path, step, Hz(hz) + " is at or above half of " + std::to_string(c.rate) + " Hz");
  };
  if (p.hpf_coef().has_cutoff()) check("postmix.hpf_coef.cutoff", "output_hpf", p.hpf_coef().cutoff());
  if (p.brio_hpf_coef().has_cutoff()) check("postmix.brio_hpf_coef.cutoff", "brio_hpf", p.brio_hpf_coef().cutoff());
  if (p.brio_xover_coef().has_cutoff()) {
    check("postmix.brio_xover_coef.cutoff", "brio_crossover", p.brio_xover_coef().cutoff());
  }
  const auto& dp = c.settings.designerparameters().mbhl_design_params();
  if (dp.has_custom_low_cross()) check("DesignerParameters.mbhl_design_params.custom_low_cross", "mbhl_crossover", dp.custom_low_cross());
  if (dp.has_custom_mid_cross()) check("DesignerParameters.mbhl_design_params.custom_mid_cross", "mbhl_crossover", dp.custom_mid_cross());
  for (const auto& [model, source] : c.models) {
    for (const auto& aeq : model->aeqs()) {
      for (int b = 0; b < aeq.coefficient_table_size(); ++b) {
        const auto& bands = aeq.coefficient_table(b).iirdesc().band_data();
        for (int i = 0; i < bands.size(); ++i) {
          if (bands.Get(i).enable() == 0) continue;
          check(source + ": AEQ " + aeq.uuid() + " bank " + std::to_string(b) + " band_data[" + std::to_string(i) +
                    "].center_freq",
                "aeq", bands.Get(i).center_freq());
        }
      }
    }
  }
}

}  // namespace heron_tool
