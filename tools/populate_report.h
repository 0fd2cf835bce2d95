// Describes, for a populate run, where each postmix region comes from: which
// room, headphone EQ or AEQ of which model, which coefficient table, or which
// designer. Derived from the messages; it reports, it does not populate.
#ifndef QUILLHERON_TOOLS_POPULATE_REPORT_H_
#define QUILLHERON_TOOLS_POPULATE_REPORT_H_

#include <string>
#include <utility>
#include <vector>

#include "heron_v1_1.pb.h"
#include "model_inputs.h"

namespace heron_tool {

// (region, description) lines in the order the postmix driver visits them.
std::vector<std::pair<std::string, std::string>> DescribePostmixSources(
    quill::pb::hub::AudioRoute route, const quill::pb::heron_v1_1::HeronSettings& settings,
    const LoadedModels& models, int room_mask, int rate);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_POPULATE_REPORT_H_
