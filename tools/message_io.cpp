#include "message_io.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>

#include <google/protobuf/io/tokenizer.h>
#include <google/protobuf/text_format.h>
#include <google/protobuf/util/json_util.h>

namespace heron_tool {
namespace {

bool EndsWith(const std::string& s, const std::string& suffix) {
  return s.size() >= suffix.size() && s.compare(s.size() - suffix.size(), suffix.size(), suffix) == 0;
}

// Keeps the first text-format parse error with its position.
class FirstErrorCollector : public google::protobuf::io::ErrorCollector {
 public:
  void AddError(int line, google::protobuf::io::ColumnNumber column,
                const std::string& message) override {
    if (first_.empty()) {
      first_ = "line " + std::to_string(line + 1) + ", column " + std::to_string(column + 1) +
               ": " + message;
    }
  }
  const std::string& first() const { return first_; }

 private:
  std::string first_;
};

}  // namespace

std::optional<MessageFormat> ParseFormatName(const std::string& name) {
  if (name == "binary") return MessageFormat::kBinary;
  if (name == "text") return MessageFormat::kText;
  if (name == "json") return MessageFormat::kJson;
  return std::nullopt;
}

const char* FormatName(MessageFormat format) {
  switch (format) {
    case MessageFormat::kBinary: return "binary";
    case MessageFormat::kText: return "text";
    case MessageFormat::kJson: return "json";
  }
  return "?";
}

MessageFormat FormatForInput(const std::string& path, std::optional<MessageFormat> forced) {
  if (forced) return *forced;
  for (const char* ext : {".pb", ".binpb", ".bin"}) {
    if (EndsWith(path, ext)) return MessageFormat::kBinary;
  }
  for (const char* ext : {".txtpb", ".textproto", ".pbtxt"}) {
    if (EndsWith(path, ext)) return MessageFormat::kText;
  }
  if (EndsWith(path, ".json")) return MessageFormat::kJson;
  throw ToolError{path,
                  "cannot tell the format from the file name; use --input-format binary|text|json"};
}

std::string ReadFileBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw ToolError{path, std::string("cannot open: ") + std::strerror(errno)};
  std::ostringstream buffer;
  buffer << in.rdbuf();
  if (in.bad()) throw ToolError{path, "read failed"};
  return buffer.str();
}

void ReadMessage(const std::string& path, std::optional<MessageFormat> forced,
                 google::protobuf::Message* message) {
  const MessageFormat format = FormatForInput(path, forced);
  const std::string bytes = ReadFileBytes(path);
  const std::string type = message->GetDescriptor()->full_name();
  switch (format) {
    case MessageFormat::kBinary:
      if (!message->ParseFromString(bytes)) {
        throw ToolError{path, "not a valid binary " + type + " message"};
      }
      return;
    case MessageFormat::kText: {
      google::protobuf::TextFormat::Parser parser;
      FirstErrorCollector errors;
      parser.RecordErrorsTo(&errors);
      if (!parser.ParseFromString(bytes, message)) {
        throw ToolError{path, "not a valid text " + type + " message: " + errors.first()};
      }
      return;
    }
    case MessageFormat::kJson: {
      const auto status = google::protobuf::util::JsonStringToMessage(bytes, message);
      if (!status.ok()) {
        throw ToolError{path, "not a valid JSON " + type + " message: " + std::string(status.message())};
      }
      return;
    }
  }
}

std::string SerializeMessage(const google::protobuf::Message& message, MessageFormat format) {
  std::string out;
  switch (format) {
    case MessageFormat::kBinary:
      message.SerializeToString(&out);
      break;
    case MessageFormat::kText:
      google::protobuf::TextFormat::PrintToString(message, &out);
      break;
    case MessageFormat::kJson: {
      google::protobuf::util::JsonPrintOptions options;
      options.add_whitespace = true;
      options.preserve_proto_field_names = true;
      google::protobuf::util::MessageToJsonString(message, &out, options);
      if (out.empty() || out.back() != '\n') out += '\n';
      break;
    }
  }
  return out;
}

std::vector<uint8_t> ReadRecordFile(const std::string& path, size_t size, const char* what) {
  const std::string bytes = ReadFileBytes(path);
  if (bytes.size() != size) {
    throw ToolError{path, std::string("a ") + what + " record is exactly " + std::to_string(size) +
                              " bytes, this file has " + std::to_string(bytes.size())};
  }
  return std::vector<uint8_t>(bytes.begin(), bytes.end());
}

void WriteFileAtomically(const std::string& path, const void* data, size_t size) {
  const std::string tmp = path + ".tmp-heron";
  std::FILE* f = std::fopen(tmp.c_str(), "wb");
  if (!f) throw ToolError{path, std::string("cannot write: ") + std::strerror(errno), kExitWriteFailure};
  const bool ok = std::fwrite(data, 1, size, f) == size;
  const bool closed = std::fclose(f) == 0;
  if (!ok || !closed || std::rename(tmp.c_str(), path.c_str()) != 0) {
    const std::string reason = std::strerror(errno);
    std::remove(tmp.c_str());
    throw ToolError{path, "cannot write: " + reason, kExitWriteFailure};
  }
}

void WriteOutput(const std::string& path, const std::string& data) {
  if (path.empty() || path == "-") {
    std::cout.write(data.data(), static_cast<std::streamsize>(data.size()));
    std::cout.flush();
    if (!std::cout) throw ToolError{"<stdout>", "write failed", kExitWriteFailure};
    return;
  }
  WriteFileAtomically(path, data.data(), data.size());
}

}  // namespace heron_tool
