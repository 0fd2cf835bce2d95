// Renders `heron report`'s page: one self-contained HTML document (styles,
// scripts and data inlined, no request leaves the page) with a static SVG of
// every chart's magnitude, made interactive by the embedded charting library
// when the build has it.
#ifndef QUILLHERON_TOOLS_REPORT_HTML_H_
#define QUILLHERON_TOOLS_REPORT_HTML_H_

#include <string>

#include "report_data.h"

namespace heron_tool {

// Whether this build embeds the charting library (else pages are SVG only).
bool ReportIsInteractive();

std::string RenderReportHtml(const ReportData& d);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_REPORT_HTML_H_
