// The filter charts of `heron report` at one rate: every filter region of a
// populated postmix record read as the engine runs it, beside the settings'
// tables at each stored width and the float design where the settings say
// what the filter is designed as.
#ifndef QUILLHERON_TOOLS_REPORT_CHARTS_H_
#define QUILLHERON_TOOLS_REPORT_CHARTS_H_

#include <string>
#include <vector>

#include "quillHeronCoeffRecords.h"
#include "quillHeronPostmixTrace.h"
#include "report_data.h"

namespace heron_tool {

struct RateRecord {
  int rate;
  const _quillHeronPostmixApiCtrlCoeffs* record;  // populated at `rate`
  const QuillPostmixTrace* trace;
  const std::vector<std::string>* trace_lines;  // TraceLines of `trace`
};

// Appends the charts of every filter the route defines at `r.rate`.
void AddFilterCharts(const RuleContext& context, const RateRecord& r, const std::vector<double>& grid,
                     std::vector<ReportChart>* charts);

// The rooms and headphone EQ loaded into the record at `r.rate`.
void AddModelOverviews(const RateRecord& r, std::vector<ModelOverview>* out);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_REPORT_CHARTS_H_
