// The error findings of `heron validate`: populate itself, run at each rate
// on zeroed scratch records, decides them, so an error is reported exactly
// when the device's populate would return a negative result.
#include <cstring>
#include <memory>

#include "QuillPbConvert_Heron_v1_1.h"
#include "model_inputs.h"
#include "populate_report.h"
#include "quillHeronCoeffRecords.h"
#include "validate_findings.h"
#include "validate_tables.h"

namespace heron_tool {
namespace {

// The settings a failing step reads, for the finding's path.
const char* StepPath(int step, int source) {
  switch (step) {
    case QUILL_STEP_CONTROL: return "postmix.enhance2.ref_htest";
    case QUILL_STEP_WIDE_ROOM: return "postmix.wideRoom";
    case QUILL_STEP_FRONT_ROOM: return "postmix.frontRoom";
    case QUILL_STEP_MULTICHANNEL_ROOM: return "postmix.multichRoom";
    case QUILL_STEP_HEADPHONE_EQ: return "postmix.hpeqCoef";
    case QUILL_STEP_OUTPUT_HPF: return "postmix.hpf_coef";
    case QUILL_STEP_AEQ: return "postmix.aeqCoef";
    case QUILL_STEP_BRIO_CROSSOVER: return "postmix.brio_xover_coef";
    case QUILL_STEP_BRIO_HPF: return "postmix.brio_hpf_coef";
    case QUILL_STEP_THUMPX:
      return source == QUILL_SOURCE_DESIGN ? "postmix.thumpx_coef.filterDesignParams" : "postmix.thumpx_coef";
    case QUILL_STEP_MBHL_CROSSOVER:
      return source == QUILL_SOURCE_DESIGN ? "DesignerParameters.mbhl_design_params" : "postmix.mbhl_coef";
    case QUILL_STEP_DISTORTION_PREVENTION:
      return source == QUILL_SOURCE_DESIGN ? "DesignerParameters.mbhl_nf_design_params" : "postmix.mbhl_dist_prev";
  }
  return "postmix";
}

std::string WithItem(const QuillTraceEntry& e) {
  std::string path = StepPath(e.step, e.source);
  if (e.item >= 0) path += "[" + std::to_string(e.item) + "]";
  return path;
}

void Error(std::vector<Finding>* out, int rate, const std::string& path, const std::string& step, int result,
           const std::string& why) {
  out->push_back({Severity::kError, rate, path, step,
                  "populate at " + std::to_string(rate) + " Hz fails at step " + step + " (" + std::to_string(result) +
                      "): " + why});
}

}  // namespace

void PopulateFindings(const quill::pb::hub::RouteConfiguration& route, const LoadedModels& models, int rate,
                      int room_mask, std::vector<Finding>* findings) {
  const QuillHeron_v1_1_Pb converter(rate);
  if (converter.findHeronSettings(route) == nullptr) {
    bool legacy = false;
    for (const auto& t : route.tech()) legacy |= t.has_heron();
    Error(findings, rate, "tech", "settings", QuillHeron_v1_1_Pb::kNoSettings,
          legacy ? "only legacy heron settings; the converter reads heron_v1_1" : "no heron_v1_1 settings");
    return;
  }
  _quillHeronPremixApiCtrl premix;
  std::memset(&premix, 0, sizeof premix);
  const int premix_result = converter.populate(route, premix, true);
  if (premix_result < 0) {
    Error(findings, rate, "premix.enhance2.ref_htest", "premix", premix_result, "a negative Enhance2 ref_htest value");
  }
  auto postmix = std::make_unique<_quillHeronPostmixApiCtrlCoeffs>();
  std::memset(postmix.get(), 0, sizeof *postmix);
  QuillPostmixTrace trace;
  const int result = converter.populate(route, *postmix, true, models.list(), room_mask, &trace);
  if (result >= 0) return;
  for (int i = 0; i < trace.count; ++i) {
    const QuillTraceEntry& e = trace.entries[i];
    if (e.outcome != QUILL_OUTCOME_FAILED) continue;
    std::string why = FailureText(e, models, rate);
    if (e.reason == QUILL_REASON_DESIGNER_REJECTED) {
      const std::string objection = DesignerObjection(*converter.findHeronSettings(route), e.step, rate);
      if (!objection.empty()) why += ": " + objection;
    }
    Error(findings, rate, WithItem(e), quillTraceStepName(e.step), result, why);
    return;
  }
  Error(findings, rate, "postmix", "postmix", result, "the postmix populate failed");
}

}  // namespace heron_tool
