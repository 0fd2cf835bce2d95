#include "message_io.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>

#include <sys/stat.h>

#include <google/protobuf/io/tokenizer.h>
#include <google/protobuf/text_format.h>
#include <google/protobuf/util/json_util.h>
#include <nlohmann/json.hpp>

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

std::string FirstLine(const std::string& s) { return s.substr(0, s.find('\n')); }

// The position and reason of the first JSON syntax error, "" when there is none.
std::string JsonSyntaxError(const std::string& bytes) {
  try {
    const nlohmann::json document = nlohmann::json::parse(bytes);
    (void)document;
  } catch (const nlohmann::json::parse_error& e) {
    // "[json.exception.parse_error.101] parse error at line 3, column 43: ..."
    const std::string what = e.what();
    const size_t at = what.find(" at line ");
    return at == std::string::npos ? what : what.substr(at + 4);
  }
  return "";
}

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
  if (path == "-") {
    static bool stdin_read = false;
    if (stdin_read) throw ToolError{path, "standard input can be read only once"};
    stdin_read = true;
    std::ostringstream buffer;
    buffer << std::cin.rdbuf();
    if (std::cin.bad()) throw ToolError{"<stdin>", "read failed"};
    return buffer.str();
  }
  struct stat st;
  if (::stat(path.c_str(), &st) != 0) throw ToolError{path, std::string("cannot open: ") + std::strerror(errno)};
  if (S_ISDIR(st.st_mode)) throw ToolError{path, "is a directory, not a file"};
  if (!S_ISREG(st.st_mode)) throw ToolError{path, "is not a regular file"};
  std::ifstream in(path, std::ios::binary);
  if (!in) throw ToolError{path, std::string("cannot open: ") + std::strerror(errno)};
  std::ostringstream buffer;
  buffer << in.rdbuf();
  if (in.bad()) throw ToolError{path, "read failed"};
  return buffer.str();
}

bool ParseMessage(const std::string& bytes, MessageFormat format, google::protobuf::Message* message,
                  std::string* reason) {
  const std::string type = message->GetDescriptor()->full_name();
  switch (format) {
    case MessageFormat::kBinary:
      if (message->ParseFromString(bytes)) return true;
      *reason = "not a valid binary " + type + " message";
      return false;
    case MessageFormat::kText: {
      google::protobuf::TextFormat::Parser parser;
      FirstErrorCollector errors;
      parser.RecordErrorsTo(&errors);
      if (parser.ParseFromString(bytes, message)) return true;
      *reason = "not a valid text " + type + " message: " + errors.first();
      return false;
    }
    case MessageFormat::kJson: {
      // protobuf's JSON parser reports a syntax error with a snippet but no
      // position; a strict JSON parser finds the line and column first.
      const std::string syntax = JsonSyntaxError(bytes);
      if (!syntax.empty()) {
        *reason = "not valid JSON: " + syntax;
        return false;
      }
      const auto status = google::protobuf::util::JsonStringToMessage(bytes, message);
      if (status.ok()) return true;
      *reason = "not a valid JSON " + type + " message: " + FirstLine(std::string(status.message()));
      return false;
    }
  }
  return false;
}

void ReadMessage(const std::string& path, std::optional<MessageFormat> forced,
                 google::protobuf::Message* message) {
  const MessageFormat format = FormatForInput(path, forced);
  std::string reason;
  if (!ParseMessage(ReadFileBytes(path), format, message, &reason)) throw ToolError{path, reason};
}

std::string SerializeMessage(const google::protobuf::Message& message, MessageFormat format) {
  std::string out;
  switch (format) {
    case MessageFormat::kBinary:
      message.SerializeToString(&out);
      break;
    case MessageFormat::kText: {
      google::protobuf::TextFormat::Printer printer;
      printer.SetUseShortRepeatedPrimitives(true);
      printer.PrintToString(message, &out);
      break;
    }
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

}  // namespace heron_tool
