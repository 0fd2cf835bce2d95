// Compile-time checks that the record catalogue covers each record: fields
// in offset order, none overlapping, gaps only where the layout pads (under
// one word), the last field ending inside the record; and that the regions
// of the postmix record tile it exactly, one per driver step.
#include "record_layout.h"

namespace qh_catalogue {
namespace {

constexpr bool Tiles(const RecordLayout& record) {
  std::uint32_t end = 0;
  for (const FieldLayout& f : record) {
    if (f.offset < end || f.offset - end >= 4 || f.width * f.count == 0) return false;
    end = f.offset + f.width * f.count;
  }
  return end <= record.size && record.size - end < 4;
}

constexpr bool RegionsTile() {
  std::uint32_t end = 0;
  bool seen[QUILL_STEP_COUNT] = {};
  for (const RegionLayout& r : kPostmixRegions) {
    if (r.offset != end || seen[r.step]) return false;
    seen[r.step] = true;
    end = r.offset + r.bytes;
  }
  for (bool s : seen) {
    if (!s) return false;
  }
  return end == kPostmix.size;
}

static_assert(Tiles(kPremix), "premix fields cover the record");
static_assert(Tiles(kPostmixControl), "postmix control fields cover the record");
static_assert(Tiles(kPostmix), "postmix fields cover the record");
static_assert(RegionsTile(), "postmix regions tile the record, one per step");
static_assert(kPremix.size == 156 && kPostmixControl.size == 488 && kPostmix.size == 66108, "record sizes");
static_assert(FindRecord("coeffs") == &kPostmix && FindRecord("postmix-control") == &kPostmixControl,
              "record names");

}  // namespace
}  // namespace qh_catalogue
