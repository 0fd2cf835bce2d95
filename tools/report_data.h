// What `heron report` shows, computed before anything is rendered: the route's
// origin, the populate result and trace at each rate, validate's findings,
// one chart per filter per rate (responses on one shared log-frequency grid)
// and an overview of the rooms and headphone EQ that were loaded.
#ifndef QUILLHERON_TOOLS_REPORT_DATA_H_
#define QUILLHERON_TOOLS_REPORT_DATA_H_

#include <string>
#include <vector>

#include "model_inputs.h"
#include "validate_findings.h"

namespace heron_tool {

// One curve on the report's grid; NaN where it has no value (at or above
// half its rate, or not a number).
struct ReportCurve {
  std::string label;
  int rate = 0;
  bool dashed = false;  // a reference: the float design
  std::vector<double> magnitude_db, phase_deg, group_delay_ms;
};

// One filter at one rate.
struct ReportChart {
  std::string filter;  // stable key across rates: "output_hpf", "aeq.bank0", "distprev0.sense", ...
  std::string title;   // "Output high-pass"
  std::string step;    // the populate step that loads it
  int rate = 0;
  std::string source;  // "table: ...", "designed: ...", "model: ...", "missing: ..."
  bool missing = false;
  std::string analysis;  // largest quantisation error, stability
  std::vector<ReportCurve> curves;
};

struct RatePopulate {
  int rate = 0;
  int premix = 0, postmix = 0;  // populate results
  std::string failed;           // the failing step and why, "" when none failed
  std::vector<std::string> trace;
};

// A room or headphone EQ the driver loaded at a rate.
struct ModelOverview {
  std::string what;  // "wide room", "headphone EQ"
  int rate = 0;      // the converter's rate
  int table_rate = 0;
  int taps = 0;
  std::string detail;  // "2 pairs of 1500 taps"
  std::vector<double> decay_db;  // energy left after each tap, dB re the total
};

struct ReportInput {
  std::string route_path;
  std::vector<std::string> model_paths;
  std::string rates;  // as --rate takes them; "" for validate's default
  int room_mask = 14;
  std::string input_format;  // as --input-format takes it; "" by extension
};

struct ReportData {
  std::string route_path;
  std::string route_name;  // the AudioRoute
  std::vector<std::pair<std::string, long long>> origin;  // files and their sizes in bytes
  std::vector<int> rates;
  std::vector<RatePopulate> populate;
  std::vector<Finding> findings;  // errors first
  std::vector<double> grid_hz;
  std::vector<ReportChart> charts;
  std::vector<ModelOverview> models;
};

// Reads the inputs (ToolError on an input error) and computes the page's content.
ReportData CollectReport(const ReportInput& in);

// The anchor of a chart, and of the chart a finding concerns ("" when none).
std::string ChartAnchor(const std::string& filter, int rate);
std::string FindingAnchor(const ReportData& d, const Finding& f);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_REPORT_DATA_H_
