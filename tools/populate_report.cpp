// Text and JSON renderings of the postmix driver's trace.
#include "populate_report.h"

#include <cstdio>

#include "record_layout.h"

namespace heron_tool {
std::string FailureText(const QuillTraceEntry& e, const LoadedModels& models, int rate);

namespace {

std::string ModelSource(int model, const LoadedModels& models) {
  if (model == QUILL_TRACE_MODEL_EMBEDDED) return "the route's embedded model";
  if (model >= 0 && static_cast<size_t>(model) < models.paths.size()) return models.paths[model];
  return "no model";
}

std::string Hz(int rate) { return std::to_string(rate) + " Hz"; }

// Why a step was skipped, did nothing or failed, in words.
std::string ReasonText(const QuillTraceEntry& e, int rate) {
  switch (e.reason) {
    case QUILL_REASON_ROOM_MASK: return "not selected by the room mask";
    case QUILL_REASON_NONE_LISTED: return "none listed";
    case QUILL_REASON_EMPTY_IDENTIFIER: return "empty identifier";
    case QUILL_REASON_ABSENT: return "no coefficients in the settings";
    case QUILL_REASON_ORDER_ZERO: return "order 0 disables loading";
    case QUILL_REASON_BRIO_OFF: return "Brio absent or disabled";
    case QUILL_REASON_THUMPX_OFF: return "Brio's Thumpx absent or disabled";
    case QUILL_REASON_NO_THUMPX_COEF: return "no thumpx_coef";
    case QUILL_REASON_SPEAKER_SIZE:
      return "Thumpx speaker_size is not " + std::to_string(QUILL_THUMPX_COEFF_SPEAKER_SIZE);
    case QUILL_REASON_MBHL_OFF: return "Mbhl absent or disabled";
    case QUILL_REASON_DIST_PREV_OFF: return "dist_prev_enable is 0";
    case QUILL_REASON_NOT_FOUND: return "not found in any listening model";
    case QUILL_REASON_NOT_FOR_ROUTE: return "no entry for this identifier serves the route";
    case QUILL_REASON_NO_TABLE_FOR_RATE: return "no table for " + Hz(rate);
    case QUILL_REASON_TABLE_OF_OTHER_RATE: return "a table of another rate than " + Hz(rate) + " fails the load";
    case QUILL_REASON_TOO_LONG: return "the " + Hz(rate) + " table is longer than the native array";
    case QUILL_REASON_DOES_NOT_FIT: return "larger than its region";
    case QUILL_REASON_INCOMPLETE: return "a required table or part is missing";
    case QUILL_REASON_NO_DESIGN_PARAMETERS: return "neither tables nor complete design parameters";
    case QUILL_REASON_DESIGN_RATE: return "design parameters are for " + Hz(e.rate) + ", not " + Hz(rate);
    case QUILL_REASON_DESIGNER_REJECTED: return "the designer rejected the parameters";
    case QUILL_REASON_NEGATIVE_REF_HTEST: return "a negative Enhance2 ref_htest value";
    case QUILL_REASON_EARLIER_STEP_FAILED: return "an earlier step failed";
    default: return quillTraceReasonName(e.reason);
  }
}

// What was loaded and from where.
std::string SourceText(const QuillTraceEntry& e, const LoadedModels& models) {
  const std::string id = e.uuid[0] != '\0' ? std::string(e.uuid) + " " : "";
  switch (e.source) {
    case QUILL_SOURCE_MODEL:
      return id + "from " + ModelSource(e.model, models) + ", " + std::to_string(e.count) +
             (e.step == QUILL_STEP_AEQ ? " filter banks" : " values") + " at " + Hz(e.rate);
    case QUILL_SOURCE_TABLE: return "table for " + Hz(e.rate) + ", " + std::to_string(e.count) + " values";
    case QUILL_SOURCE_DESIGN:
      if (e.step == QUILL_STEP_DISTORTION_PREVENTION) return "designed from the two notch parameter sets";
      if (e.outcome == QUILL_OUTCOME_FAILED) return "design parameters for " + Hz(e.rate);
      return "designed from parameters for " + Hz(e.rate) + ", " + std::to_string(e.count) + " values";
    case QUILL_SOURCE_RECORDS: return "copied from the two precomputed records";
    default: return id.empty() ? "" : id.substr(0, id.size() - 1);
  }
}

std::string EntryText(const QuillTraceEntry& e, const LoadedModels& models, int rate) {
  const std::string source = SourceText(e, models);
  const std::string with = source.empty() ? "" : " (" + source + ")";
  switch (e.outcome) {
    case QUILL_OUTCOME_LOADED: return source.empty() ? "loaded" : source;
    case QUILL_OUTCOME_NOTHING: return "nothing loaded: " + ReasonText(e, rate) + with;
    case QUILL_OUTCOME_FAILED:
      return "FAILED " + std::to_string(e.result) + ": " + FailureText(e, models, rate);
    case QUILL_OUTCOME_SKIPPED: return "not loaded: " + ReasonText(e, rate);
    case QUILL_OUTCOME_NOT_REACHED: return "not loaded: an earlier step failed";
    default: return "?";
  }
}

std::string StepLabel(const QuillTraceEntry& e) {
  std::string label = quillTraceStepName(e.step);
  if (e.item >= 0) label += "[" + std::to_string(e.item) + "]";
  return label;
}

}  // namespace

// Why a step failed, with what it tried to load.
std::string FailureText(const QuillTraceEntry& e, const LoadedModels& models, int rate) {
  const std::string source = SourceText(e, models);
  const bool said = source.empty() || e.reason == QUILL_REASON_DESIGN_RATE;
  return ReasonText(e, rate) + (said ? "" : " (" + source + ")");
}

std::string FailedStepText(const QuillPostmixTrace& trace, const LoadedModels& models, int rate) {
  for (int i = 0; i < trace.count; ++i) {
    const QuillTraceEntry& e = trace.entries[i];
    if (e.outcome == QUILL_OUTCOME_FAILED) {
      return StepLabel(e) + " (" + std::to_string(e.result) + "): " + FailureText(e, models, rate);
    }
  }
  return "";
}

std::vector<std::string> TraceLines(const QuillPostmixTrace& trace, const LoadedModels& models, int rate) {
  std::vector<std::string> lines;
  for (int i = 0; i < trace.count; ++i) {
    const QuillTraceEntry& e = trace.entries[i];
    const auto* region = qh_catalogue::RegionForStep(e.step);
    char head[64];
    std::snprintf(head, sizeof head, "%-24s @%-6u ", StepLabel(e).c_str(), region ? region->offset : 0u);
    lines.push_back(head + EntryText(e, models, rate));
  }
  if (trace.dropped > 0) {
    lines.push_back("... " + std::to_string(trace.dropped) + " more entries beyond the trace's " +
                    std::to_string(QUILL_TRACE_CAPACITY));
  }
  return lines;
}

void WriteTraceJson(JsonWriter& j, const QuillPostmixTrace& trace, const LoadedModels& models) {
  j.BeginArray();
  for (int i = 0; i < trace.count; ++i) {
    const QuillTraceEntry& e = trace.entries[i];
    j.BeginObject().Key("step").String(quillTraceStepName(e.step));
    if (e.item >= 0) j.Key("item").Int(e.item);
    j.Key("outcome").String(quillTraceOutcomeName(e.outcome)).Key("result").Int(e.result);
    j.Key("source").String(quillTraceSourceName(e.source)).Key("reason").String(quillTraceReasonName(e.reason));
    if (e.model != QUILL_TRACE_MODEL_NONE) j.Key("model").String(ModelSource(e.model, models));
    if (e.uuid[0] != '\0') j.Key("uuid").String(e.uuid);
    if (e.rate != 0) j.Key("rate").Int(e.rate);
    if (e.count != 0) j.Key("count").Int(e.count);
    if (const auto* region = qh_catalogue::RegionForStep(e.step)) {
      j.Key("region").BeginObject().Key("name").String(region->name).Key("offset").Int(region->offset);
      j.Key("bytes").Int(region->bytes).EndObject();
    }
    j.EndObject();
  }
  j.EndArray();
}

}  // namespace heron_tool
