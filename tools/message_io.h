// Reading and writing settings messages and native records for the heron tool.
// Every failure is reported as a ToolError naming the file and the reason;
// nothing here writes an output file unless the whole write succeeds.
#ifndef QUILLHERON_TOOLS_MESSAGE_IO_H_
#define QUILLHERON_TOOLS_MESSAGE_IO_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <google/protobuf/message.h>

namespace heron_tool {

// Exit statuses shared by every subcommand.
enum ExitStatus : int {
  kExitOk = 0,
  kExitWriteFailure = 1,
  kExitInputError = 2,
  kExitNegativeResult = 3,
  kExitFindings = 4,
};

// An error the tool reports in one line and ends with `status`.
struct ToolError {
  std::string file;  // may be empty for usage errors
  std::string reason;
  int status = kExitInputError;
};

enum class MessageFormat { kBinary, kText, kJson };

// "binary", "text" or "json"; nullopt for anything else.
std::optional<MessageFormat> ParseFormatName(const std::string& name);
const char* FormatName(MessageFormat format);

// The format to read `path` in: `forced` when given, else by extension
// (.pb .binpb .bin binary; .txtpb .textproto .pbtxt text; .json JSON).
// Throws ToolError when neither decides.
MessageFormat FormatForInput(const std::string& path, std::optional<MessageFormat> forced);

// Whole-file read; throws ToolError.
std::string ReadFileBytes(const std::string& path);

// Parses `path` into `message`; throws ToolError with the parser's reason.
void ReadMessage(const std::string& path, std::optional<MessageFormat> forced,
                 google::protobuf::Message* message);

// Serialises in the given format (text and JSON end with a newline).
std::string SerializeMessage(const google::protobuf::Message& message, MessageFormat format);

// Reads a record file that must be exactly `size` bytes; throws ToolError.
std::vector<uint8_t> ReadRecordFile(const std::string& path, size_t size, const char* what);

// Writes through a temporary file and a rename, so a failed write leaves no
// partial output. Throws ToolError with status kExitWriteFailure.
void WriteFileAtomically(const std::string& path, const void* data, size_t size);

// Writes to stdout when `path` is empty or "-".
void WriteOutput(const std::string& path, const std::string& data);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_MESSAGE_IO_H_
