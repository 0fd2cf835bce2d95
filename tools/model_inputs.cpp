#include "model_inputs.h"

namespace heron_tool {

std::vector<const quill::pb::model::listeningModel*> LoadedModels::list() const {
  std::vector<const quill::pb::model::listeningModel*> out;
  out.reserve(models.size());
  for (const auto& m : models) out.push_back(m.get());
  return out;
}

std::optional<MessageFormat> InputFormatOption(const std::string& name) {
  if (name.empty()) return std::nullopt;
  auto format = ParseFormatName(name);
  if (!format) throw ToolError{"--input-format", "must be binary, text or json, not '" + name + "'"};
  return format;
}

LoadedModels LoadModels(const std::vector<std::string>& paths, std::optional<MessageFormat> format) {
  LoadedModels loaded;
  for (const std::string& path : paths) {
    auto model = std::make_unique<quill::pb::model::listeningModel>();
    ReadMessage(path, format, model.get());
    loaded.paths.push_back(path);
    loaded.models.push_back(std::move(model));
  }
  return loaded;
}

}  // namespace heron_tool
