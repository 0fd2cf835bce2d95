#include "diff_records.h"

#include "record_layout.h"
#include "record_values.h"

namespace heron_tool {
namespace {

using qh_catalogue::FieldLayout;

std::string Values(const std::string& bytes, const FieldLayout& f, uint32_t first, uint32_t last) {
  const auto* data = reinterpret_cast<const uint8_t*>(bytes.data());
  if (first == last) return qh_catalogue::ElementText(data, f, first);
  std::string s = "[";
  for (uint32_t i = first; i <= last; ++i) s += (i == first ? "" : ", ") + qh_catalogue::ElementText(data, f, i);
  return s + "]";
}

}  // namespace

std::vector<Difference> DiffRecords(const std::string& a, const std::string& b) {
  const auto* pa = reinterpret_cast<const uint8_t*>(a.data());
  const auto* pb = reinterpret_cast<const uint8_t*>(b.data());
  std::vector<Difference> out;
  for (const FieldLayout& f : *qh_catalogue::RecordForSize(a.size())) {
    // Runs of differing elements, each reported as one index range.
    for (uint32_t i = 0; i < f.count;) {
      if (qh_catalogue::SameElement(pa, pb, f, i)) {
        ++i;
        continue;
      }
      uint32_t last = i;
      while (last + 1 < f.count && !qh_catalogue::SameElement(pa, pb, f, last + 1)) ++last;
      Difference d;
      d.kind = "modified";
      d.path = f.name;
      if (f.count > 1) d.path += "[" + std::to_string(i) + (last > i ? ".." + std::to_string(last) : "") + "]";
      d.old_value = Values(a, f, i, last);
      d.new_value = Values(b, f, i, last);
      d.offset = f.offset + f.width * i;
      out.push_back(d);
      i = last + 1;
    }
  }
  return out;
}

}  // namespace heron_tool
