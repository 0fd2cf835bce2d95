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

// Whole-file read of a regular file, or of standard input for "-" (once per
// run); anything else (a directory, a device, a pipe by name) is an input
// error. Throws ToolError.
std::string ReadFileBytes(const std::string& path);

// Parses `path` into `message`; throws ToolError with the parser's reason
// (text and JSON syntax errors with their line and column).
void ReadMessage(const std::string& path, std::optional<MessageFormat> forced,
                 google::protobuf::Message* message);
// The same from bytes already read; false (with `reason`) when they do not
// parse, unknown fields included.
bool ParseMessage(const std::string& bytes, MessageFormat format, google::protobuf::Message* message,
                  std::string* reason);

// Serialises in the given format (text and JSON end with a newline; text
// prints repeated numbers on one line, [a, b, c]).
std::string SerializeMessage(const google::protobuf::Message& message, MessageFormat format);

// Reads a record file that must be exactly `size` bytes; throws ToolError.
std::vector<uint8_t> ReadRecordFile(const std::string& path, size_t size, const char* what);

// The outputs of one run, written all or nothing. A regular file, or a path
// that does not exist yet, is written to a temporary file beside it (beside
// a symlink's target) and renamed over it only when every output of the set
// has been written; a replaced file keeps its permission bits. Anything else
// (a device, a pipe, "-" or "" for standard output) is written straight
// through, after every temporary file. Commit throws ToolError with status
// kExitWriteFailure naming the file, and then leaves no temporary behind and
// nothing renamed.
class OutputSet {
 public:
  void Add(const std::string& path, std::string data);
  void Add(const std::string& path, const void* data, size_t size);
  void Commit();

 private:
  struct Output {
    std::string path;
    std::string data;
  };
  std::vector<Output> outputs_;
};

// A set of one.
void WriteFileAtomically(const std::string& path, const void* data, size_t size);
// Writes to stdout when `path` is empty or "-".
void WriteOutput(const std::string& path, const std::string& data);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_MESSAGE_IO_H_
