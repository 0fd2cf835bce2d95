#include "report_charts.h"

#include <strings.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <optional>

#include "cascade.h"
#include "design_requests.h"
#include "designer_catalogue.h"
#include "diff_records.h"
#include "poles.h"
#include "quantisation.h"
#include "quillHeronDistprev.h"
#include "record_layout.h"
#include "record_values.h"
#include "report_curves.h"
#include "response.h"
#include "validate_tables.h"

namespace heron_tool {
namespace {

namespace an = quillheron::analysis;
using Complex = std::complex<double>;
using HeronSettings = quill::pb::heron_v1_1::HeronSettings;

constexpr double kPi = 3.14159265358979323846;

// The rates of a distortion-prevention record's banks, in slot order
// (QUILL_DISTPREV_RATE_COUNT of them).
constexpr int kDistprevRates[QUILL_DISTPREV_RATE_COUNT] = {48000, 44100, 32000};

const QuillTraceEntry* StepEntry(const QuillPostmixTrace& t, int step, int* index) {
  for (int i = 0; i < t.count; ++i) {
    if (t.entries[i].step == step) {
      *index = i;
      return &t.entries[i];
    }
  }
  return nullptr;
}

// The trace line of entry `i` without its step and offset columns.
std::string SourceText(const RateRecord& r, int i) {
  const std::string& line = (*r.trace_lines)[i];
  const size_t at = line.find(" @");
  const size_t text = at == std::string::npos ? std::string::npos : line.find(' ', at + 2);
  return text == std::string::npos ? line : line.substr(line.find_first_not_of(' ', text));
}

std::string SourceLabel(const QuillTraceEntry& e) {
  if (e.outcome != QUILL_OUTCOME_LOADED) return "missing";
  switch (e.source) {
    case QUILL_SOURCE_TABLE: return "table";
    case QUILL_SOURCE_DESIGN: return "designed";
    case QUILL_SOURCE_MODEL: return "model";
    case QUILL_SOURCE_RECORDS: return "records";
    default: return "loaded";
  }
}

// Whether the settings define the filter a step loads (so that a chart is due
// even when it is not loaded at some rate).
bool Defined(const HeronSettings& s, int step) {
  const auto& p = s.postmix();
  switch (step) {
    case QUILL_STEP_OUTPUT_HPF: return p.has_hpf_coef();
    case QUILL_STEP_AEQ: return p.aeqcoef_size() > 0;
    case QUILL_STEP_BRIO_CROSSOVER: return p.has_brio_xover_coef();
    case QUILL_STEP_BRIO_HPF: return p.has_brio_hpf_coef();
    case QUILL_STEP_THUMPX: return p.has_thumpx_coef();
    case QUILL_STEP_MBHL_CROSSOVER: return p.has_mbhl() && p.mbhl().enable() != 0;
    case QUILL_STEP_DISTORTION_PREVENTION:
      return p.has_mbhl() && p.mbhl().enable() != 0 && p.mbhl().dist_prev_enable() != 0;
    case QUILL_STEP_HEADPHONE_EQ: return p.hpeqcoef_size() > 0;
  }
  return false;
}

const uint8_t* Bytes(const RateRecord& r) { return reinterpret_cast<const uint8_t*>(r.record); }

std::vector<an::Cascade> Region(const RateRecord& r, const char* field) {
  for (const FilterRegion& region : PostmixFilterRegions()) {
    if (std::strcmp(region.field, field) == 0) return RegionFilters(Bytes(r), region);
  }
  return {};
}

int RegionWidth(const char* field) {
  for (const FilterRegion& region : PostmixFilterRegions()) {
    if (std::strcmp(region.field, field) == 0) return RegionWidth(region);
  }
  return 32;
}

// The charts the record's filter regions make.
struct FilterChart {
  const char* filter;
  const char* title;
  int step;
  const char* fields[2];  // one region, or a crossover's two halves
  const char* table_paths[2];
};
constexpr FilterChart kCharts[] = {
    {"output_hpf", "Output high-pass", QUILL_STEP_OUTPUT_HPF, {"hpf.coeffs", nullptr},
     {"postmix.hpf_coef.coeffs", nullptr}},
    {"aeq.bank0", "AEQ bank 0", QUILL_STEP_AEQ, {"aeq.bank[0].iir_coeffs", nullptr}, {nullptr, nullptr}},
    {"aeq.bank1", "AEQ bank 1", QUILL_STEP_AEQ, {"aeq.bank[1].iir_coeffs", nullptr}, {nullptr, nullptr}},
    {"brio_crossover", "Brio crossover", QUILL_STEP_BRIO_CROSSOVER,
     {"brio_xover.lpf_coeffs", "brio_xover.hpf_coeffs"},
     {"postmix.brio_xover_coef.lpf_coeffs", "postmix.brio_xover_coef.hpf_coeffs"}},
    {"brio_hpf", "Brio high-pass", QUILL_STEP_BRIO_HPF, {"brio_hpf.coeffs", nullptr},
     {"postmix.brio_hpf_coef.hpf_coeffs", nullptr}},
    {"thumpx", "Thumpx bass enhancement", QUILL_STEP_THUMPX, {"thumpx.coeffs", nullptr}, {nullptr, nullptr}},
    {"mbhl.low", "MBHL low crossover", QUILL_STEP_MBHL_CROSSOVER, {"mbhl_coef.low_cross_coeffs", nullptr},
     {nullptr, nullptr}},
    {"mbhl.mid", "MBHL mid crossover", QUILL_STEP_MBHL_CROSSOVER, {"mbhl_coef.mid_cross_coeffs", nullptr},
     {nullptr, nullptr}},
};

// The float designs the settings describe for a chart's filters, one per
// filter the region holds; empty when they describe none.
std::vector<an::Cascade> FloatDesigns(const HeronSettings& s, const FilterChart& c, int rate,
                                     const quill::pb::coef::FilterBank* bank) {
  const auto& p = s.postmix();
  std::vector<an::Cascade> out;
  auto add = [&](std::optional<an::Cascade> d) {
    if (d) out.push_back(*d);
  };
  const std::string filter = c.filter;
  if (filter == "output_hpf") {
    add(FloatButterworth(p.hpf_coef().has_cutoff(), p.hpf_coef().cutoff(), p.hpf_coef().order(), rate,
                         QH_IIR_HIGHPASS));
  } else if (filter == "brio_hpf") {
    const auto& h = p.brio_hpf_coef();
    add(FloatButterworth(h.has_cutoff(), h.cutoff(), h.order(), rate, QH_IIR_HIGHPASS));
  } else if (filter == "brio_crossover") {
    const auto& x = p.brio_xover_coef();
    add(FloatButterworth(x.has_cutoff(), x.cutoff(), x.order(), rate, QH_IIR_LOWPASS));
    add(FloatButterworth(x.has_cutoff(), x.cutoff(), x.order(), rate, QH_IIR_HIGHPASS));
    if (out.size() != 2) out.clear();
  } else if (filter == "thumpx" && p.thumpx_coef().has_filterdesignparams()) {
    out = FloatGroups(qh_design::Family::kThumpx, RunFloat(ThumpxRequestFrom(p.thumpx_coef().filterdesignparams(), rate)));
  } else if (filter.rfind("mbhl.", 0) == 0 && s.designerparameters().has_mbhl_design_params()) {
    const auto& dp = s.designerparameters().mbhl_design_params();
    const int hz = filter == "mbhl.low" ? dp.custom_low_cross() : dp.custom_mid_cross();
    out = FloatGroups(qh_design::Family::kCrossover, RunFloat(qh_design::CrossoverRequest{static_cast<float>(hz), rate}));
  } else if (bank != nullptr) {
    std::vector<OVAParametriceqBandSpec> bands;
    for (const auto& d : bank->iirdesc().band_data()) {
      if (d.enable() == 0) continue;
      bands.push_back({d.type(), static_cast<float>(d.center_freq()), d.q(), static_cast<float>(d.gain()), 0});
    }
    if (!bands.empty()) {
      const std::vector<float> f = RunFloat(qh_design::PeqRequest{static_cast<int32_t>(bands.size()), bands.data(), rate});
      if (!f.empty()) out.push_back(an::FromFloatLayout(f.data(), static_cast<int>(bands.size())));
    }
  }
  return out;
}

std::vector<std::string> FilterNames(const FilterChart& c, size_t count) {
  const std::string filter = c.filter;
  if (filter == "thumpx") return GroupNames(qh_design::Family::kThumpx);
  if (filter.rfind("mbhl.", 0) == 0) return GroupNames(qh_design::Family::kCrossover);
  if (filter == "brio_crossover") return {"low-pass", "high-pass"};
  return std::vector<std::string>(count, "");
}

// The AEQ entry the loader took (its model and identifier), as the models'
// source text and the entry; null when it cannot be told.
const quill::pb::coef::Aeq* LoadedAeq(const RuleContext& context, const QuillTraceEntry& e, std::string* source) {
  size_t index = context.models.size();
  if (e.model >= 0) index = static_cast<size_t>(e.model);
  if (e.model == QUILL_TRACE_MODEL_EMBEDDED && !context.models.empty()) index = context.models.size() - 1;
  if (index >= context.models.size()) return nullptr;
  *source = context.models[index].second;
  for (const auto& aeq : context.models[index].first->aeqs()) {
    if (strcasecmp(aeq.uuid().c_str(), e.uuid) == 0) return &aeq;
  }
  return nullptr;
}

// The settings' table behind a cascade chart at each width it stores,
// de-quantised, when the loader took it from a table.
void AddTableWidths(const RuleContext& context, const char* path, const std::string& name, int rate,
                    const std::vector<double>& grid, ReportChart* chart) {
  if (path == nullptr) return;
  for (const TableFilter& f : TablesAt(context)) {
    if (f.path != path || f.layout != FilterLayout::kCascade) continue;
    for (int width : {32, 24, 16}) {
      const auto filters = LayoutFilters(f.layout, f.sections, Words(*f.table, width), width);
      if (filters.empty()) continue;
      chart->curves.push_back(CascadeCurve(name + "table coeff_" + std::to_string(width), rate, grid, filters[0]));
    }
    return;
  }
}

void AddRegionChart(const RuleContext& context, const RateRecord& r, const FilterChart& c,
                    const std::vector<double>& grid, std::vector<ReportChart>* charts) {
  int index = 0;
  const QuillTraceEntry* e = StepEntry(*r.trace, c.step, &index);
  if (e == nullptr || !Defined(context.settings, c.step)) return;
  const bool loaded = e->outcome == QUILL_OUTCOME_LOADED;
  // The second AEQ bank only where the loader filled it.
  if (std::strcmp(c.filter, "aeq.bank1") == 0 && (!loaded || e->count < 2)) return;
  ReportChart chart;
  chart.filter = c.filter;
  chart.title = c.title;
  chart.step = quillTraceStepName(c.step);
  chart.rate = r.rate;
  chart.missing = !loaded;
  chart.source = SourceLabel(*e) + ": " + SourceText(r, index);
  if (loaded) {
    std::vector<an::Cascade> stored;
    for (const char* field : c.fields) {
      if (field == nullptr) continue;
      for (const an::Cascade& f : Region(r, field)) stored.push_back(f);
    }
    // An AEQ bank: the entry the loader took, its bank, and where validate finds its table.
    const quill::pb::coef::FilterBank* bank = nullptr;
    std::string aeq_table;
    if (c.step == QUILL_STEP_AEQ) {
      std::string source;
      const int b = c.filter[std::strlen(c.filter) - 1] - '0';
      if (const auto* aeq = LoadedAeq(context, *e, &source); aeq && b < aeq->coefficient_table_size()) {
        bank = &aeq->coefficient_table(b);
        aeq_table = source + ": AEQ " + aeq->uuid() + " bank " + std::to_string(b) + " iirCoefs";
      }
    }
    const std::vector<an::Cascade> reference = FloatDesigns(context.settings, c, r.rate, bank);
    const std::vector<std::string> names = FilterNames(c, stored.size());
    const std::string width = std::to_string(RegionWidth(c.fields[0])) + "-bit";
    for (size_t i = 0; i < stored.size(); ++i) {
      if (names[i].rfind("(", 0) == 0) continue;  // a group the designer leaves empty
      const std::string name = names[i].empty() ? "" : names[i] + ", ";
      chart.curves.push_back(CascadeCurve(name + "loaded " + width, r.rate, grid, stored[i]));
      if (i < reference.size()) {
        chart.curves.push_back(CascadeCurve(name + "float design", r.rate, grid, reference[i]));
        chart.curves.back().dashed = true;
      }
      if (e->source == QUILL_SOURCE_TABLE && i < 2) AddTableWidths(context, c.table_paths[i], name, r.rate, grid, &chart);
      if (!aeq_table.empty()) AddTableWidths(context, aeq_table.c_str(), name, r.rate, grid, &chart);
    }
    if (std::strcmp(c.filter, "brio_crossover") == 0 && stored.size() == 2) {
      chart.curves.push_back(CurveOf("sum of both outputs", r.rate, grid, [&](double hz) {
        return an::Evaluate(stored[0], hz, r.rate) + an::Evaluate(stored[1], hz, r.rate);
      }));
    }
    chart.analysis = AnalysisLine(stored, reference, names, r.rate, "the float design");
  }
  charts->push_back(std::move(chart));
}

// Distortion prevention: each design's sense and notch banks at the rate,
// 32-bit sections against the float ones stored beside them.
void AddDistprevCharts(const RuleContext& context, const RateRecord& r, const std::vector<double>& grid,
                       std::vector<ReportChart>* charts) {
  int index = 0;
  const QuillTraceEntry* e = StepEntry(*r.trace, QUILL_STEP_DISTORTION_PREVENTION, &index);
  if (e == nullptr || !Defined(context.settings, QUILL_STEP_DISTORTION_PREVENTION)) return;
  const int designs = e->outcome == QUILL_OUTCOME_LOADED ? std::max(1, std::min(e->count, 2)) : 1;
  int rate_slot = -1;
  for (int i = 0; i < QUILL_DISTPREV_RATE_COUNT; ++i) {
    if (kDistprevRates[i] == r.rate) rate_slot = i;
  }
  for (int d = 0; d < designs; ++d) {
    const quillMBHLDistprevCoeff& rec = r.record->dist_prev[d];
    for (int bank = 0; bank < 2; ++bank) {
      ReportChart chart;
      chart.filter = "distprev" + std::to_string(d) + (bank == 0 ? ".sense" : ".notch");
      chart.title = "Distortion prevention " + std::to_string(d) + (bank == 0 ? ", sense bank" : ", notch bank");
      chart.step = quillTraceStepName(QUILL_STEP_DISTORTION_PREVENTION);
      chart.rate = r.rate;
      chart.missing = e->outcome != QUILL_OUTCOME_LOADED;
      chart.source = SourceLabel(*e) + ": " + SourceText(r, index);
      if (!chart.missing && rate_slot < 0) {
        chart.missing = true;
        chart.source = "missing: the records hold banks for 48000, 44100 and 32000 Hz only";
      }
      if (!chart.missing) {
        const int count = bank == 0 ? rec.sense_band_count : rec.notch_band_count;
        const int32_t* words = bank == 0 ? rec.sense_band_coeffs : rec.notch_band_coeffs;
        const float* floats = bank == 0 ? rec.sense_band_coeffs_float32 : rec.notch_band_coeffs_float32;
        std::vector<an::Cascade> stored, reference;
        std::vector<std::string> names;
        for (int b = 0; b < count && b < QUILL_DISTPREV_BAND_COUNT; ++b) {
          const int w = rate_slot * QUILL_DISTPREV_BAND_COUNT * QUILL_DISTPREV_FXP_SLOT_WORDS +
                        b * QUILL_DISTPREV_FXP_SLOT_WORDS;
          const int f = rate_slot * QUILL_DISTPREV_BAND_COUNT * QUILL_DISTPREV_FLOAT_SLOT_FLOATS +
                        b * QUILL_DISTPREV_FLOAT_SLOT_FLOATS;
          stored.push_back(an::FromFixedLayout(&words[w], 1, 32));
          reference.push_back(an::FromFloatLayout(&floats[f], 1));
          names.push_back("band " + std::to_string(b));
          chart.curves.push_back(CascadeCurve(names.back() + ", 32-bit", r.rate, grid, stored.back()));
          chart.curves.push_back(CascadeCurve(names.back() + ", float", r.rate, grid, reference.back()));
          chart.curves.back().dashed = true;
        }
        chart.analysis = AnalysisLine(stored, reference, names, r.rate, "the stored float bands");
      }
      charts->push_back(std::move(chart));
    }
  }
}

// Headphone EQ: the two channels' FIR responses, taps read as Q15.
void AddHeadphoneChart(const RuleContext& context, const RateRecord& r, const std::vector<double>& grid,
                       std::vector<ReportChart>* charts) {
  int index = 0;
  const QuillTraceEntry* e = StepEntry(*r.trace, QUILL_STEP_HEADPHONE_EQ, &index);
  if (e == nullptr || !Defined(context.settings, QUILL_STEP_HEADPHONE_EQ)) return;
  ReportChart chart;
  chart.filter = "headphone_eq";
  chart.title = "Headphone EQ (FIR)";
  chart.step = quillTraceStepName(QUILL_STEP_HEADPHONE_EQ);
  chart.rate = r.rate;
  chart.missing = e->outcome != QUILL_OUTCOME_LOADED;
  chart.source = SourceLabel(*e) + ": " + SourceText(r, index);
  const int taps = static_cast<int>(r.record->hpeq.ihpir_length);
  if (!chart.missing && taps > 0 && 2 + 2 * taps <= static_cast<int>(kQuillHpeqTaps)) {
    for (int ch = 0; ch < 2; ++ch) {
      const int16_t* h = &r.record->hpeq_coeffs[2 + ch * taps];
      chart.curves.push_back(CurveOf(ch == 0 ? "left" : "right", r.rate, grid, [&](double hz) {
        Complex sum = 0;
        for (int n = 0; n < taps; ++n) sum += std::polar(h[n] / 32768.0, -2 * kPi * hz * n / r.rate);
        return sum;
      }));
    }
    chart.analysis = std::to_string(taps) + " taps a channel, read as Q15";
  }
  charts->push_back(std::move(chart));
}

// Energy left after each tap, in dB of the total (a backward integral over
// all channels of an impulse response of `length` taps).
std::vector<double> DecayDb(const int16_t* taps, int count, int length) {
  std::vector<double> energy(length > 0 ? length : 0, 0.0);
  for (int i = 0; i < count && length > 0; ++i) energy[i % length] += double(taps[i]) * taps[i];
  double left = 0;
  std::vector<double> out(energy.size());
  for (size_t i = energy.size(); i-- > 0;) {
    left += energy[i];
    out[i] = left;
  }
  const double total = out.empty() ? 0 : out[0];
  for (double& v : out) v = total > 0 && v > 0 ? 10 * std::log10(v / total) : -120;
  return out;
}

}  // namespace

void AddFilterCharts(const RuleContext& context, const RateRecord& r, const std::vector<double>& grid,
                     std::vector<ReportChart>* charts) {
  for (const FilterChart& c : kCharts) AddRegionChart(context, r, c, grid, charts);
  AddDistprevCharts(context, r, grid, charts);
  AddHeadphoneChart(context, r, grid, charts);
}

void AddModelOverviews(const RateRecord& r, std::vector<ModelOverview>* out) {
  struct Room {
    int step;
    const char* what;
    const _quillHpcLyraRmData* header;
    const int16_t* taps;
    int capacity;
  };
  const Room rooms[] = {
      {QUILL_STEP_WIDE_ROOM, "wide room", &r.record->wide_room, r.record->wide_room_coeffs, kQuillSideRoomTaps},
      {QUILL_STEP_FRONT_ROOM, "front room", &r.record->front_room, r.record->front_room_coeffs, kQuillSideRoomTaps},
      {QUILL_STEP_MULTICHANNEL_ROOM, "multichannel room", &r.record->multich_room, r.record->multich_room_coeffs,
       kQuillMultichRoomTaps},
  };
  for (int i = 0; i < r.trace->count; ++i) {
    const QuillTraceEntry& e = r.trace->entries[i];
    if (e.outcome != QUILL_OUTCOME_LOADED) continue;
    for (const Room& room : rooms) {
      if (room.step != e.step) continue;
      ModelOverview m;
      m.what = room.what;
      m.rate = r.rate;
      m.table_rate = room.header->sample_rate;
      m.taps = std::min(e.count, room.capacity);
      const int length = static_cast<int>(room.header->brir_length);
      m.detail = std::to_string(room.header->num_pairs) + " pairs, impulse responses of " + std::to_string(length) +
                 " taps, " + std::string(e.uuid);
      m.decay_db = DecayDb(room.taps, m.taps, length > 0 ? std::min(length, m.taps) : m.taps);
      out->push_back(std::move(m));
    }
    if (e.step == QUILL_STEP_HEADPHONE_EQ) {
      ModelOverview m;
      m.what = "headphone EQ";
      m.rate = r.rate;
      m.table_rate = r.record->hpeq.sample_rate;
      const int length = static_cast<int>(r.record->hpeq.ihpir_length);
      m.taps = 2 * length;
      m.detail = "2 channels of " + std::to_string(length) + " taps, " + std::string(e.uuid);
      if (length > 0 && 2 + 2 * length <= static_cast<int>(kQuillHpeqTaps)) {
        m.decay_db = DecayDb(&r.record->hpeq_coeffs[2], 2 * length, length);
      }
      out->push_back(std::move(m));
    }
  }
}

}  // namespace heron_tool
