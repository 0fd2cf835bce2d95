#include "record_values.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>

namespace qh_catalogue {
namespace {

std::uint32_t Le32(const std::uint8_t* p) {
  return std::uint32_t(p[0]) | std::uint32_t(p[1]) << 8 | std::uint32_t(p[2]) << 16 | std::uint32_t(p[3]) << 24;
}
std::uint16_t Le16(const std::uint8_t* p) { return std::uint16_t(p[0] | p[1] << 8); }

}  // namespace

ElementValue ReadElement(const std::uint8_t* bytes, const FieldLayout& field, std::uint32_t index) {
  ElementValue v;
  const std::uint8_t* at = bytes + field.offset + field.width * index;
  switch (field.type) {
    case ValueType::kInt32: v.i = static_cast<std::int32_t>(Le32(at)); break;
    case ValueType::kUint32: v.i = Le32(at); break;
    case ValueType::kInt16: v.i = static_cast<std::int16_t>(Le16(at)); break;
    case ValueType::kFloat32: {
      const std::uint32_t bits = Le32(at);
      std::memcpy(&v.f, &bits, sizeof bits);
      v.is_float = true;
      break;
    }
    case ValueType::kUuid: break;
  }
  return v;
}

std::string ElementText(const std::uint8_t* bytes, const FieldLayout& field, std::uint32_t index) {
  char buf[32];
  if (field.type == ValueType::kUuid) {
    const std::uint8_t* at = bytes + field.offset + field.width * index;
    std::string s;
    for (int i = 0; i < 16; ++i) {
      std::snprintf(buf, sizeof buf, "%02x", at[i]);
      s += buf;
      if (i == 3 || i == 5 || i == 7 || i == 9) s += '-';
    }
    return s;
  }
  const ElementValue v = ReadElement(bytes, field, index);
  if (v.is_float) {
    std::snprintf(buf, sizeof buf, "%.9g", static_cast<double>(v.f));
  } else {
    std::snprintf(buf, sizeof buf, "%" PRId64, v.i);
  }
  return buf;
}

bool SameElement(const std::uint8_t* a, const std::uint8_t* b, const FieldLayout& field, std::uint32_t index) {
  const std::size_t at = field.offset + field.width * index;
  return std::memcmp(a + at, b + at, field.width) == 0;
}

}  // namespace qh_catalogue
