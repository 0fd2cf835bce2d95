// Differences between two native records of one kind, by named field:
// scalars one by one, arrays as runs of differing elements.
#ifndef QUILLHERON_TOOLS_DIFF_RECORDS_H_
#define QUILLHERON_TOOLS_DIFF_RECORDS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "diff_settings.h"
#include "filter_layouts.h"

namespace heron_tool {

// A coefficient region of the postmix record that holds filters: its words,
// how they are laid out and which field gives a cascade's order. The word
// width is the field's element width in the record catalogue.
struct FilterRegion {
  const char* field;
  const char* order_field;  // null: a fixed layout
  FilterLayout layout;
};

// The bits of one word of the region: 32 or 16.
int RegionWidth(const FilterRegion& r);

// Every such region, in record order.
std::vector<FilterRegion> PostmixFilterRegions();

// The filters region `r` of a postmix record holds (LayoutFilters).
std::vector<quillheron::analysis::Cascade> RegionFilters(const uint8_t* record, const FilterRegion& r);

// REQUIRES: a and b of the same size, the size of a record.
std::vector<Difference> DiffRecords(const std::string& a, const std::string& b);

// For the coefficient regions of two postmix records that differ, the largest
// response difference of each differing filter at `rate`: one line a filter,
// "hpf.coeffs: up to 3.2 dB at 120 Hz". Empty for other records.
std::vector<std::string> ResponseDifferences(const std::string& a, const std::string& b, int rate);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_DIFF_RECORDS_H_
