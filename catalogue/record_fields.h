// The named fields of the native records, with byte offsets and types, for
// `heron dump`. Built from the record structs themselves (offsetof), so the
// listing follows the layout the library writes.
#ifndef QUILLHERON_TOOLS_RECORD_FIELDS_H_
#define QUILLHERON_TOOLS_RECORD_FIELDS_H_

#include <cstddef>
#include <string>
#include <vector>

namespace heron_tool {

enum class FieldType { kI32, kI16, kU32, kF32, kUuid };

struct RecordField {
  std::string name;
  size_t offset;  // bytes from the start of the record
  FieldType type;
  int count;      // 1 for scalars
};

enum class RecordKind { kPremix, kPostmix, kCoeffs };

// "premix", "postmix" or "coeffs"; false for anything else.
bool ParseRecordKind(const std::string& name, RecordKind* kind);
// The kind whose record has exactly `size` bytes; false if none does.
bool RecordKindForSize(size_t size, RecordKind* kind);
size_t RecordSize(RecordKind kind);
const char* RecordKindName(RecordKind kind);

std::vector<RecordField> RecordFields(RecordKind kind);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_RECORD_FIELDS_H_
