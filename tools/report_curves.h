// Responses and analysis shared by the charts of `heron report`: a transfer
// function sampled on the report's grid (magnitude, phase, group delay), the
// analysis line of stored filters against their references, and float designs
// run through the designer catalogue.
#ifndef QUILLHERON_TOOLS_REPORT_CURVES_H_
#define QUILLHERON_TOOLS_REPORT_CURVES_H_

#include <complex>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cascade.h"
#include "design_requests.h"
#include "designer_catalogue.h"
#include "report_data.h"

namespace heron_tool {

// One curve from a transfer function: magnitude, phase and, from the phase
// a hair above each frequency, group delay; NaN at and above half the rate.
ReportCurve CurveOf(const std::string& label, int rate, const std::vector<double>& grid,
                    const std::function<std::complex<double>(double hz)>& h);
ReportCurve CascadeCurve(const std::string& label, int rate, const std::vector<double>& grid,
                         const quillheron::analysis::Cascade& c);

// The largest quantisation error of each stored filter against its reference
// (`against` names them), and the stability of the stored filters: one line.
std::string AnalysisLine(const std::vector<quillheron::analysis::Cascade>& stored,
                         const std::vector<quillheron::analysis::Cascade>& reference,
                         const std::vector<std::string>& names, int rate, const std::string& against);

// A float design, or nothing when the designer rejects the request.
template <typename Request>
std::vector<float> RunFloat(const Request& request) {
  const auto format = qh_design::Format::kFloat;
  std::vector<float> out(qh_design::OutputLength(request, format), 0.0f);
  std::vector<unsigned char> workspace(qh_design::WorkspaceBytes(request, format), 0);
  qh_design::DesignBuffers buffers;
  buffers.floats = out.data();
  buffers.workspace = workspace.data();
  if (qh_design::Run(request, format, buffers) != 0) out.clear();
  return out;
}

// The groups of a designer's float output, one filter each, and their names.
std::vector<quillheron::analysis::Cascade> FloatGroups(qh_design::Family family, const std::vector<float>& f);
std::vector<std::string> GroupNames(qh_design::Family family);

// A float Butterworth cascade; nothing without a cut-off or order.
std::optional<quillheron::analysis::Cascade> FloatButterworth(bool has_cutoff, int cutoff, int order, int rate,
                                                              int type);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_REPORT_CURVES_H_
