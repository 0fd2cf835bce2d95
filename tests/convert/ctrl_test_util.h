// Helpers for the control-record tests: byte patterns, little-endian writes
// (reads and the pattern byte are the coefficient tests' own), and reflection
// access to a field by its dotted path from HeronSettings (independent of the
// converter's binding tables).
#ifndef QUILLHERON_TESTS_CONVERT_CTRL_TEST_UTIL_H_
#define QUILLHERON_TESTS_CONVERT_CTRL_TEST_UTIL_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <google/protobuf/descriptor.h>
#include <google/protobuf/message.h>

#include "coef_test_support.h"
#include "heron_v1_1.pb.h"

namespace ctrltest {

using coeftest::kPattern;
using coeftest::le16;
using coeftest::le32;

// A record's bytes, viewed without the converter's helpers.
template <class Record>
void fillPattern(Record& r, unsigned char byte = kPattern) {
  std::memset(&r, byte, sizeof r);
}

inline const unsigned char* bytesOf(const void* p) {
  return static_cast<const unsigned char*>(p);
}

inline void putLe32(void* base, std::size_t off, uint32_t v) {
  unsigned char* b = static_cast<unsigned char*>(base) + off;
  b[0] = v & 0xFF; b[1] = (v >> 8) & 0xFF; b[2] = (v >> 16) & 0xFF; b[3] = (v >> 24) & 0xFF;
}
inline void putLe16(void* base, std::size_t off, uint16_t v) {
  unsigned char* b = static_cast<unsigned char*>(base) + off;
  b[0] = v & 0xFF; b[1] = (v >> 8) & 0xFF;
}

inline std::vector<std::string> split(const std::string& path) {
  std::vector<std::string> parts;
  std::size_t start = 0;
  for (std::size_t dot; (dot = path.find('.', start)) != std::string::npos; start = dot + 1) {
    parts.push_back(path.substr(start, dot - start));
  }
  parts.push_back(path.substr(start));
  return parts;
}

// Sets the int32 leaf named by "a.b.c", creating the messages on the way.
inline void setByPath(google::protobuf::Message* m, const std::string& path, int32_t v) {
  const std::vector<std::string> parts = split(path);
  for (std::size_t i = 0; i + 1 < parts.size(); ++i) {
    const auto* f = m->GetDescriptor()->FindFieldByName(parts[i]);
    m = m->GetReflection()->MutableMessage(m, f);
  }
  const auto* f = m->GetDescriptor()->FindFieldByName(parts.back());
  m->GetReflection()->SetInt32(m, f, v);
}

// Reads the int32 leaf; `present` reports whether it and its path are set.
inline int32_t getByPath(const google::protobuf::Message& root, const std::string& path,
                         bool* present) {
  const google::protobuf::Message* m = &root;
  const std::vector<std::string> parts = split(path);
  *present = true;
  for (std::size_t i = 0; i + 1 < parts.size(); ++i) {
    const auto* f = m->GetDescriptor()->FindFieldByName(parts[i]);
    if (!m->GetReflection()->HasField(*m, f)) *present = false;
    m = &m->GetReflection()->GetMessage(*m, f);
  }
  const auto* f = m->GetDescriptor()->FindFieldByName(parts.back());
  if (!m->GetReflection()->HasField(*m, f)) *present = false;
  return m->GetReflection()->GetInt32(*m, f);
}

}  // namespace ctrltest

#endif  // QUILLHERON_TESTS_CONVERT_CTRL_TEST_UTIL_H_
