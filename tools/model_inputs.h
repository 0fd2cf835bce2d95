// Loading the route and listening models named on the command line.
#ifndef QUILLHERON_TOOLS_MODEL_INPUTS_H_
#define QUILLHERON_TOOLS_MODEL_INPUTS_H_

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "listeningmodel.pb.h"
#include "message_io.h"
#include "routeconfiguration.pb.h"

namespace heron_tool {

struct LoadedModels {
  std::vector<std::string> paths;
  std::vector<std::unique_ptr<quill::pb::model::listeningModel>> models;
  // Pointers into `models`, in the order given, for the converter.
  std::vector<const quill::pb::model::listeningModel*> list() const;
};

// The value of --input-format: empty means "by extension". Throws ToolError
// (usage) for an unknown name.
std::optional<MessageFormat> InputFormatOption(const std::string& name);

LoadedModels LoadModels(const std::vector<std::string>& paths, std::optional<MessageFormat> format);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_MODEL_INPUTS_H_
