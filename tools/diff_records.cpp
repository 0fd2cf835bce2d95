#include "diff_records.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "record_fields.h"

namespace heron_tool {
namespace {

size_t ElementBytes(FieldType type) {
  switch (type) {
    case FieldType::kI16: return 2;
    case FieldType::kUuid: return 16;
    default: return 4;
  }
}

// One element as text, read little-endian whatever the host.
std::string ElementText(const std::string& bytes, const RecordField& f, int index) {
  const size_t at = f.offset + ElementBytes(f.type) * index;
  const auto byte = [&](size_t i) { return static_cast<uint32_t>(static_cast<unsigned char>(bytes[at + i])); };
  char buf[48];
  switch (f.type) {
    case FieldType::kI16:
      std::snprintf(buf, sizeof buf, "%d", static_cast<int16_t>(byte(0) | byte(1) << 8));
      break;
    case FieldType::kI32:
    case FieldType::kU32: {
      const uint32_t v = byte(0) | byte(1) << 8 | byte(2) << 16 | byte(3) << 24;
      if (f.type == FieldType::kI32) {
        std::snprintf(buf, sizeof buf, "%" PRId32, static_cast<int32_t>(v));
      } else {
        std::snprintf(buf, sizeof buf, "%" PRIu32, v);
      }
      break;
    }
    case FieldType::kF32: {
      const uint32_t v = byte(0) | byte(1) << 8 | byte(2) << 16 | byte(3) << 24;
      float x;
      std::memcpy(&x, &v, sizeof x);
      std::snprintf(buf, sizeof buf, "%.9g", static_cast<double>(x));
      break;
    }
    case FieldType::kUuid: {
      std::string s;
      for (int i = 0; i < 16; ++i) {
        std::snprintf(buf, sizeof buf, "%02x", byte(i));
        s += buf;
        if (i == 3 || i == 5 || i == 7 || i == 9) s += '-';
      }
      return s;
    }
  }
  return buf;
}

bool ElementDiffers(const std::string& a, const std::string& b, const RecordField& f, int index) {
  const size_t n = ElementBytes(f.type);
  return std::memcmp(a.data() + f.offset + n * index, b.data() + f.offset + n * index, n) != 0;
}

std::string Values(const std::string& bytes, const RecordField& f, int first, int last) {
  if (first == last) return ElementText(bytes, f, first);
  std::string s = "[";
  for (int i = first; i <= last; ++i) s += (i == first ? "" : ", ") + ElementText(bytes, f, i);
  return s + "]";
}

}  // namespace

std::vector<Difference> DiffRecords(const std::string& a, const std::string& b) {
  RecordKind kind;
  RecordKindForSize(a.size(), &kind);
  std::vector<Difference> out;
  for (const RecordField& f : RecordFields(kind)) {
    // Runs of differing elements, each reported as one index range.
    for (int i = 0; i < f.count;) {
      if (!ElementDiffers(a, b, f, i)) {
        ++i;
        continue;
      }
      int last = i;
      while (last + 1 < f.count && ElementDiffers(a, b, f, last + 1)) ++last;
      Difference d;
      d.kind = "modified";
      d.path = f.name;
      if (f.count > 1) d.path += "[" + std::to_string(i) + (last > i ? ".." + std::to_string(last) : "") + "]";
      d.old_value = Values(a, f, i, last);
      d.new_value = Values(b, f, i, last);
      d.offset = static_cast<int64_t>(f.offset + ElementBytes(f.type) * i);
      out.push_back(d);
      i = last + 1;
    }
  }
  return out;
}

}  // namespace heron_tool
