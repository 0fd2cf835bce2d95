// Listening-model identifiers: 36-character 8-4-4-4-12 hexadecimal text and
// its 16-byte native form (the first two hex digits give byte 0).
// Stateless; safe from any thread.
#ifndef QUILLHERON_CONVERT_QUILLPB_IDENTIFIERS_H_
#define QUILLHERON_CONVERT_QUILLPB_IDENTIFIERS_H_

#include <cstddef>
#include <cstdint>
#include <string>

namespace quillheron {

constexpr unsigned int kUuidBytes = 16;
constexpr std::size_t kUuidTextLength = 36;

// The name given to rooms and headphone EQs rebuilt from native records.
inline constexpr char kRebuiltName[] = "From Heron STU";

// Clears `out`, then parses hex digit pairs (high nibble first) from a text of
// exactly 36 characters, skipping any non-hex character between pairs; a lone
// hex digit stops parsing. True only when all 16 bytes were produced. Callers
// ignore the result: a bad identifier leaves a partly or wholly zero `out`.
bool convertStringToUuidString(const std::string& text, std::uint8_t out[kUuidBytes]);

// Same length and equal character by character after toupper. No trimming,
// and braces or dashes count as characters.
bool CompareCI(const std::string& a, const std::string& b);

// 16 bytes as "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx", lower-case, no braces.
std::string uuidBytesToString(const std::uint8_t bytes[kUuidBytes]);
// The same 36 characters into `text`, without a terminator or an allocation.
void uuidBytesToText(const std::uint8_t bytes[kUuidBytes], char text[kUuidTextLength]);

}  // namespace quillheron

#endif  // QUILLHERON_CONVERT_QUILLPB_IDENTIFIERS_H_
