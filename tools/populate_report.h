// Renders the postmix driver's trace for `heron populate`: one text line per
// step (or per item of a list step) and the same as JSON. It renders what the
// driver reported; it decides nothing itself.
#ifndef QUILLHERON_TOOLS_POPULATE_REPORT_H_
#define QUILLHERON_TOOLS_POPULATE_REPORT_H_

#include <string>
#include <vector>

#include "json_writer.h"
#include "model_inputs.h"
#include "quillHeronPostmixTrace.h"

namespace heron_tool {

// The failing step and why, e.g. "thumpx: design parameters are for 48000 Hz,
// not 44100 Hz"; empty when no step failed.
std::string FailedStepText(const QuillPostmixTrace& trace, const LoadedModels& models, int rate);

// Why the failing entry `e` failed, e.g. "design parameters are for 48000 Hz,
// not 44100 Hz".
std::string FailureText(const QuillTraceEntry& e, const LoadedModels& models, int rate);

// "<step>[item]  @<region offset>  <what happened>" lines in driver order.
std::vector<std::string> TraceLines(const QuillPostmixTrace& trace, const LoadedModels& models, int rate);

// The entries as a JSON array of objects with stable keys: step, outcome,
// result, source, reason, region (and item, model, uuid, rate, count when set).
void WriteTraceJson(JsonWriter& j, const QuillPostmixTrace& trace, const LoadedModels& models);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_POPULATE_REPORT_H_
