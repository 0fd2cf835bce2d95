// Identifier text <-> bytes, and the case-insensitive identifier comparison.
#include "QuillPb_identifiers.h"

#include <cctype>
#include <cstring>

namespace quillheron {
namespace {

// Byte indices after which the printed form carries a dash.
constexpr unsigned int atDash[] = {3, 5, 7, 9};

int hexValue(unsigned char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

bool convertStringToUuidString(const std::string& text, std::uint8_t out[kUuidBytes]) {
  std::memset(out, 0, kUuidBytes);
  if (text.size() != kUuidTextLength) return false;
  unsigned int produced = 0;
  std::size_t i = 0;
  while (produced < kUuidBytes && i < text.size()) {
    // hexValue accepts exactly what isxdigit does (0-9, a-f, A-F, in every locale).
    const int high = hexValue(static_cast<unsigned char>(text[i]));
    if (high < 0) {
      ++i;
      continue;
    }
    if (i + 1 >= text.size()) break;
    const int low = hexValue(static_cast<unsigned char>(text[i + 1]));
    if (low < 0) break;
    out[produced++] = static_cast<std::uint8_t>((high << 4) | low);
    i += 2;
  }
  return produced == kUuidBytes;
}

bool CompareCI(const std::string& a, const std::string& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] == b[i]) continue;  // equal characters stay equal after toupper
    const int ca = std::toupper(static_cast<unsigned char>(a[i]));
    const int cb = std::toupper(static_cast<unsigned char>(b[i]));
    if (ca != cb) return false;
  }
  return true;
}

void uuidBytesToText(const std::uint8_t bytes[kUuidBytes], char text[kUuidTextLength]) {
  static const char kHexDigits[] = "0123456789abcdef";
  std::size_t pos = 0;
  std::size_t dash = 0;
  for (unsigned int i = 0; i < kUuidBytes; ++i) {
    text[pos++] = kHexDigits[bytes[i] >> 4];
    text[pos++] = kHexDigits[bytes[i] & 0x0F];
    if (dash < sizeof(atDash) / sizeof(atDash[0]) && atDash[dash] == i) {
      text[pos++] = '-';
      ++dash;
    }
  }
}

std::string uuidBytesToString(const std::uint8_t bytes[kUuidBytes]) {
  char text[kUuidTextLength];
  uuidBytesToText(bytes, text);
  return std::string(text, kUuidTextLength);
}

}  // namespace quillheron
