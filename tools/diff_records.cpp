#include "diff_records.h"

#include "record_layout.h"
#include "record_values.h"

#include <cstdio>
#include <iterator>

#include "filter_layouts.h"

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

constexpr FilterRegion kFilterRegions[] = {
    {"hpf.coeffs", "hpf.order", FilterLayout::kCascade},
    {"aeq.bank[0].iir_coeffs", "aeq.bank[0].iir_order", FilterLayout::kCascade},
    {"aeq.bank[1].iir_coeffs", "aeq.bank[1].iir_order", FilterLayout::kCascade},
    {"brio_hpf.coeffs", "brio_hpf.order", FilterLayout::kCascade},
    {"brio_xover.lpf_coeffs", "brio_xover.order", FilterLayout::kCascade},
    {"brio_xover.hpf_coeffs", "brio_xover.order", FilterLayout::kCascade},
    {"thumpx.coeffs", nullptr, FilterLayout::kThumpx},
    {"mbhl_coef.low_cross_coeffs", nullptr, FilterLayout::kCrossover},
    {"mbhl_coef.mid_cross_coeffs", nullptr, FilterLayout::kCrossover},
};

std::vector<int64_t> FieldWords(const uint8_t* record, const FieldLayout& f) {
  std::vector<int64_t> w;
  for (uint32_t i = 0; i < f.count; ++i) w.push_back(qh_catalogue::ReadElement(record, f, i).i);
  return w;
}

// Sections of a cascade from its order field; at most what the words hold.
int Sections(const uint8_t* record, const FilterRegion& r, const FieldLayout& words) {
  if (r.order_field == nullptr) return 0;
  const FieldLayout* order = qh_catalogue::FindField(qh_catalogue::kPostmix, r.order_field);
  const int64_t n = (qh_catalogue::ReadElement(record, *order, 0).i + 1) / 2;
  const int64_t most = (static_cast<int64_t>(words.count) - 2) / 6;
  return static_cast<int>(n < 0 ? 0 : n > most ? most : n);
}

}  // namespace

int RegionWidth(const FilterRegion& r) { return 8 * qh_catalogue::FindField(qh_catalogue::kPostmix, r.field)->width; }

std::vector<FilterRegion> PostmixFilterRegions() { return {std::begin(kFilterRegions), std::end(kFilterRegions)}; }

std::vector<quillheron::analysis::Cascade> RegionFilters(const uint8_t* record, const FilterRegion& r) {
  const FieldLayout& f = *qh_catalogue::FindField(qh_catalogue::kPostmix, r.field);
  return LayoutFilters(r.layout, Sections(record, r, f), FieldWords(record, f), RegionWidth(r));
}

std::vector<std::string> ResponseDifferences(const std::string& a, const std::string& b, int rate) {
  std::vector<std::string> out;
  if (a.size() != qh_catalogue::kPostmix.size) return out;
  const auto* pa = reinterpret_cast<const uint8_t*>(a.data());
  const auto* pb = reinterpret_cast<const uint8_t*>(b.data());
  for (const FilterRegion& r : kFilterRegions) {
    const FieldLayout& f = *qh_catalogue::FindField(qh_catalogue::kPostmix, r.field);
    const FieldLayout* order = r.order_field ? qh_catalogue::FindField(qh_catalogue::kPostmix, r.order_field) : nullptr;
    bool same = true;
    for (uint32_t i = 0; i < f.count && same; ++i) same = qh_catalogue::SameElement(pa, pb, f, i);
    if (order) same = same && qh_catalogue::SameElement(pa, pb, *order, 0);
    if (same) continue;
    const auto fa = RegionFilters(pa, r);
    const auto fb = RegionFilters(pb, r);
    const auto d = LargestDifference(fa, fb, rate);
    char line[160];
    if (d) {
      std::snprintf(line, sizeof line, "%s: up to %.3g dB at %.0f Hz", r.field, d->first, d->second);
    } else {
      std::snprintf(line, sizeof line, "%s: the two filters do not compare (different orders)", r.field);
    }
    out.push_back(line);
  }
  return out;
}

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
