#include "report_data.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "QuillPbConvert_Heron_v1_1.h"
#include "option_checks.h"
#include "populate_report.h"
#include "report_charts.h"
#include "response.h"

namespace heron_tool {
namespace {

// The shared frequency grid: from 10 Hz to half the highest rate.
constexpr int kGridPoints = 240;
constexpr double kGridLowHz = 10;

long long FileSize(const std::string& path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0 ? static_cast<long long>(st.st_size) : -1;
}

// The chart a finding's step points at.
const char* FilterOfStep(const std::string& step) {
  static const std::pair<const char*, const char*> kSteps[] = {
      {"output_hpf", "output_hpf"},         {"aeq", "aeq.bank0"},
      {"brio_crossover", "brio_crossover"}, {"brio_hpf", "brio_hpf"},
      {"thumpx", "thumpx"},                 {"mbhl_crossover", "mbhl.low"},
      {"distortion_prevention", "distprev0.sense"}, {"headphone_eq", "headphone_eq"},
  };
  for (const auto& [name, filter] : kSteps) {
    if (step == name) return filter;
  }
  return nullptr;
}

}  // namespace

std::string ChartAnchor(const std::string& filter, int rate) {
  std::string id = "chart-" + filter + "-" + std::to_string(rate);
  std::replace(id.begin(), id.end(), '.', '-');
  return id;
}

std::string FindingAnchor(const ReportData& d, const Finding& f) {
  if (const char* filter = FilterOfStep(f.step)) {
    for (const ReportChart& c : d.charts) {
      if (c.filter == filter && (f.rate == 0 || c.rate == f.rate)) return ChartAnchor(c.filter, c.rate);
    }
  }
  return f.rate != 0 ? "populate-" + std::to_string(f.rate) : "";
}

ReportData CollectReport(const ReportInput& in) {
  ReportData d;
  quill::pb::hub::RouteConfiguration route;
  const auto format = InputFormatOption(in.input_format);
  ReadMessage(in.route_path, format, &route);
  const LoadedModels loaded = LoadModels(in.model_paths, format);
  d.route_path = in.route_path;
  d.route_name = quill::pb::hub::AudioRoute_Name(route.route());
  d.origin.push_back({in.route_path, FileSize(in.route_path)});
  for (const std::string& p : in.model_paths) d.origin.push_back({p, FileSize(p)});
  d.rates = RatesToCheck(in.rates, route, loaded);
  NoteIgnoredRoomBits(in.room_mask);
  d.findings = ValidateFindings(route, loaded, d.rates, in.room_mask);
  d.grid_hz = quillheron::analysis::LogGrid(kGridLowHz, std::max(1000.0, 0.5 * d.rates.back()), kGridPoints);

  const auto* settings = QuillHeron_v1_1_Pb(d.rates.front()).findHeronSettings(route);
  ModelSources models;
  for (size_t i = 0; i < loaded.models.size(); ++i) models.push_back({loaded.models[i].get(), loaded.paths[i]});
  if (settings != nullptr && settings->postmix().has_model()) {
    models.push_back({&settings->postmix().model(), "the embedded model"});
  }
  for (int rate : d.rates) {
    const QuillHeron_v1_1_Pb converter(rate);
    RatePopulate p;
    p.rate = rate;
    _quillHeronPremixApiCtrl premix;
    std::memset(&premix, 0, sizeof premix);
    p.premix = converter.populate(route, premix, true);
    auto postmix = std::make_unique<_quillHeronPostmixApiCtrlCoeffs>();
    std::memset(postmix.get(), 0, sizeof *postmix);
    QuillPostmixTrace trace;
    p.postmix = converter.populate(route, *postmix, true, loaded.list(), in.room_mask, &trace);
    p.failed = FailedStepText(trace, loaded, rate);
    if (p.premix < 0) p.failed = "premix (" + std::to_string(p.premix) + "): a negative Enhance2 ref_htest value";
    p.trace = TraceLines(trace, loaded, rate);
    if (settings != nullptr) {
      std::vector<Finding> unused;
      const RuleContext context{*settings, route.route(), models, rate, &unused};
      const RateRecord r{rate, postmix.get(), &trace, &p.trace};
      AddFilterCharts(context, r, d.grid_hz, &d.charts);
      AddModelOverviews(r, &d.models);
    }
    d.populate.push_back(std::move(p));
  }
  // One filter's charts together: grouped by filter in the order first met,
  // the headphone EQ (an FIR, not a cascade) last.
  std::vector<std::string> order;
  for (const ReportChart& c : d.charts) {
    if (std::find(order.begin(), order.end(), c.filter) == order.end()) order.push_back(c.filter);
  }
  auto rank = [&](const ReportChart& c) {
    return std::make_pair(c.filter == "headphone_eq", std::find(order.begin(), order.end(), c.filter));
  };
  std::stable_sort(d.charts.begin(), d.charts.end(),
                   [&](const ReportChart& a, const ReportChart& b) { return rank(a) < rank(b); });
  return d;
}

}  // namespace heron_tool
