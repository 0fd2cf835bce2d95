#include "settings_types.h"

#include "heron_v1_1.pb.h"
#include "listeningmodel.pb.h"
#include "routeconfiguration.pb.h"

namespace heron_tool {
namespace {

struct MessageType {
  const char* name;
  std::unique_ptr<google::protobuf::Message> (*make)();
};

template <typename M>
std::unique_ptr<google::protobuf::Message> Make() {
  return std::make_unique<M>();
}

// In the order a file of unknown type is tried.
const MessageType kTypes[] = {
    {"route", Make<quill::pb::hub::RouteConfiguration>},
    {"model", Make<quill::pb::model::listeningModel>},
    {"settings", Make<quill::pb::heron_v1_1::HeronSettings>},
};

const MessageType* TypeNamed(const std::string& name) {
  for (const MessageType& t : kTypes) {
    if (name == t.name) return &t;
  }
  return nullptr;
}

}  // namespace

bool IsSettingsType(const std::string& type) { return TypeNamed(type) != nullptr; }

SettingsFile ReadSettingsFile(const std::string& path, MessageFormat format, const std::string& type) {
  if (!type.empty() && !IsSettingsType(type)) throw ToolError{"--type", "must be route, model or settings"};
  return ParseSettingsFile(path, ReadFileBytes(path), format, type);
}

SettingsFile ParseSettingsFile(const std::string& path, const std::string& bytes, MessageFormat format,
                               const std::string& type) {
  std::string reason;
  if (!type.empty()) {
    auto message = TypeNamed(type)->make();
    if (!ParseMessage(bytes, format, message.get(), &reason)) throw ToolError{path, reason};
    return {type, std::move(message)};
  }
  if (format == MessageFormat::kBinary) {
    throw ToolError{path, "a binary input needs --type route|model|settings (any binary message parses as a route)"};
  }
  std::string first_reason;
  for (const MessageType& t : kTypes) {
    auto message = t.make();
    if (ParseMessage(bytes, format, message.get(), &reason)) return {t.name, std::move(message)};
    if (first_reason.empty()) first_reason = reason;
  }
  throw ToolError{path, "neither a route, a model nor settings; as a route it is " + first_reason};
}

}  // namespace heron_tool
