// heron report: one self-contained HTML page that shows what a route does at
// every rate: populate's result and trace, validate's findings, a chart of
// every filter it defines, and the rooms and headphone EQ it loads.
#include <algorithm>
#include <cstdio>
#include <memory>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "message_io.h"
#include "report_data.h"
#include "report_html.h"

namespace heron_tool {
namespace {

struct ReportOptions {
  ReportInput input;
  std::string output;
};

int RunReport(const ReportOptions& o) {
  const ReportData data = CollectReport(o.input);
  OutputSet outputs;
  outputs.Add(o.output, RenderReportHtml(data));
  outputs.Commit();
  const long errors = std::count_if(data.findings.begin(), data.findings.end(),
                                    [](const Finding& f) { return f.severity == Severity::kError; });
  const long warnings = static_cast<long>(data.findings.size()) - errors;
  std::string rates;
  for (int r : data.rates) rates += (rates.empty() ? "" : ", ") + std::to_string(r);
  // The summary goes beside the page, not into it when the page goes to stdout.
  std::FILE* summary = o.output.empty() || o.output == "-" ? stderr : stdout;
  std::fprintf(summary, "%s: %zu charts at %s Hz, %ld error%s, %ld warning%s%s\n", o.output.c_str(),
               data.charts.size(), rates.c_str(), errors, errors == 1 ? "" : "s", warnings, warnings == 1 ? "" : "s",
               ReportIsInteractive() ? "" : " (static pictures only: built without the charting library)");
  return errors > 0 ? kExitFindings : kExitOk;
}

}  // namespace

void RegisterReport(CLI::App& app, Action& run) {
  auto o = std::make_shared<ReportOptions>();
  CLI::App* sub = app.add_subcommand(
      "report", "Write one HTML page with a route's populate results, findings and every filter's response");
  sub->add_option("ROUTE", o->input.route_path, "quill.pb.hub.RouteConfiguration file")->required();
  sub->add_option("--model", o->input.model_paths, "quill.pb.model.listeningModel file (repeatable, searched in order)");
  sub->add_option("--rate", o->input.rates,
                  "engine sample rates in Hz, comma-separated (default: every rate a coefficient table covers, "
                  "and 48000)");
  sub->add_option("--room-mask", o->input.room_mask, "rooms populate loads: 2 wide, 4 front, 8 multichannel")
      ->capture_default_str();
  sub->add_option("--input-format", o->input.input_format, "binary, text or json (default: by extension)");
  sub->add_option("-o,--output", o->output, "the HTML page to write")->required();
  sub->footer("Exit status: 0 written, 4 written and validate finds an error at some rate, 2 input error, "
              "1 the page cannot be written.");
  sub->callback([o, &run] { run = [o] { return RunReport(*o); }; });
}

}  // namespace heron_tool
