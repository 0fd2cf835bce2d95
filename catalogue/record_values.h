// Reading the elements of a catalogued field from the bytes of a record:
// little-endian whatever the host, bounds checked against the record size.
#ifndef QUILLHERON_CATALOGUE_RECORD_VALUES_H_
#define QUILLHERON_CATALOGUE_RECORD_VALUES_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include "record_layout.h"

namespace qh_catalogue {

struct ElementValue {
  bool is_float = false;
  std::int64_t i = 0;  // integer fields
  float f = 0;         // float32 fields
};

// Element `index` of `field` in `bytes` (a whole record of `size` bytes).
// REQUIRES: index < field.count and the field lies inside the record.
ElementValue ReadElement(const std::uint8_t* bytes, const FieldLayout& field, std::uint32_t index);

// The element as text: an integer, a float with nine significant digits, or
// an identifier as 8-4-4-4-12 hexadecimal digits.
std::string ElementText(const std::uint8_t* bytes, const FieldLayout& field, std::uint32_t index);

// Whether element `index` has the same bytes in both records.
bool SameElement(const std::uint8_t* a, const std::uint8_t* b, const FieldLayout& field, std::uint32_t index);

}  // namespace qh_catalogue

#endif  // QUILLHERON_CATALOGUE_RECORD_VALUES_H_
