// Identifier text: parsing into 16 bytes, case-insensitive comparison, and the
// printed 8-4-4-4-12 form.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "QuillPb_identifiers.h"

namespace {

using quillheron::CompareCI;
using quillheron::convertStringToUuidString;
using quillheron::uuidBytesToString;

const std::uint8_t kDigits[16] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xab, 0xcd, 0xef,
                                  0x01, 0x23, 0x45, 0x67, 0x89, 0xab, 0xcd, 0xef};

TEST(ModelIdentifiers, TextToBytes) {
  struct Case {
    const char* text;
    bool ok;
    int bytes;  // leading bytes of kDigits expected; the rest zero
  };
  const Case kCases[] = {
      {"01234567-89ab-cdef-0123-456789abcdef", true, 16},
      {"01234567-89AB-CDEF-0123-456789ABCDEF", true, 16},
      {"0123-4567-89ab-cdef-0123456789abcdef", true, 16},  // dashes anywhere
      {"0123456789abcdef0123456789abcdef0123", true, 16},  // 36 digits: first 32 used
      {"{01234567-89ab-cdef-0123-456789abcdef}", false, 0},  // 38 characters
      {"01234567-89ab-cdef-0123-456789abcde", false, 0},     // 35 characters
      {"0123456-789ab-cdef-0123-456789abcdef", false, 3},    // lone '6' stops parsing
      {"", false, 0},
  };
  for (const Case& c : kCases) {
    std::uint8_t out[16];
    std::memset(out, 0x5A, sizeof(out));
    EXPECT_EQ(convertStringToUuidString(c.text, out), c.ok) << c.text;
    for (int i = 0; i < 16; ++i) {
      EXPECT_EQ(out[i], i < c.bytes ? kDigits[i] : 0) << c.text << " byte " << i;
    }
  }
}

// A non-hex character is skipped, even where a digit pair would start.
TEST(ModelIdentifiers, NonHexCharactersAreSkipped) {
  std::uint8_t out[16];
  EXPECT_FALSE(convertStringToUuidString("g1234567-89ab-cdef-0123-456789abcdef", out));
  const std::uint8_t expected[16] = {0x12, 0x34, 0x56};  // '7' then '-' stops
  EXPECT_EQ(0, std::memcmp(out, expected, 16));
}

TEST(ModelIdentifiers, CompareIgnoresCaseOnly) {
  struct Case {
    const char* a;
    const char* b;
    bool equal;
  };
  const Case kCases[] = {
      {"0a1b2c3d-4e5f-6a7b-8c9d-0e1f2a3b4c5d", "0A1B2C3D-4E5F-6A7B-8C9D-0E1F2A3B4C5D", true},
      {"abc", "abd", false},
      {"abc", "abcd", false},
      {"{0a1b2c3d-4e5f-6a7b-8c9d-0e1f2a3b4c5d}", "0a1b2c3d-4e5f-6a7b-8c9d-0e1f2a3b4c5d", false},
      {" abc", "abc", false},  // no trimming
      {"", "", true},
  };
  for (const Case& c : kCases) {
    EXPECT_EQ(CompareCI(c.a, c.b), c.equal) << c.a << " / " << c.b;
    EXPECT_EQ(CompareCI(c.b, c.a), c.equal) << c.b << " / " << c.a;
  }
}

TEST(ModelIdentifiers, BytesToText) {
  std::uint8_t counting[16];
  for (int i = 0; i < 16; ++i) counting[i] = static_cast<std::uint8_t>(i);
  EXPECT_EQ(uuidBytesToString(counting), "00010203-0405-0607-0809-0a0b0c0d0e0f");
  EXPECT_EQ(uuidBytesToString(kDigits), "01234567-89ab-cdef-0123-456789abcdef");

  // Printing then parsing returns the same bytes.
  std::uint8_t back[16];
  EXPECT_TRUE(convertStringToUuidString(uuidBytesToString(kDigits), back));
  EXPECT_EQ(0, std::memcmp(back, kDigits, 16));
}

}  // namespace
