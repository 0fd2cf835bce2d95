// The message types a settings file holds (route, model, settings), and
// reading a file of a given or unknown type.
#ifndef QUILLHERON_TOOLS_SETTINGS_TYPES_H_
#define QUILLHERON_TOOLS_SETTINGS_TYPES_H_

#include <memory>
#include <string>

#include <google/protobuf/message.h>

#include "message_io.h"

namespace heron_tool {

struct SettingsFile {
  std::string type;  // "route", "model" or "settings"
  std::unique_ptr<google::protobuf::Message> message;
};

// True for "route", "model" and "settings".
bool IsSettingsType(const std::string& type);

// Reads `path` as `type`, or, with `type` empty, a text or JSON file as a
// route, a model and settings in that order, unknown fields refused (a
// binary file needs the type: any binary message parses as a route).
// Throws ToolError.
SettingsFile ReadSettingsFile(const std::string& path, MessageFormat format, const std::string& type);
// The same for the bytes of `path`, already read.
SettingsFile ParseSettingsFile(const std::string& path, const std::string& bytes, MessageFormat format,
                               const std::string& type);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_SETTINGS_TYPES_H_
