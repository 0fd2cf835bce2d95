// The record catalogue against the layout (offsets copied by hand), against
// the binding tables (every bound scalar is a catalogue field of the table's
// width) and against the converter (the slot labels name the mode whose value
// populate puts in each slot).
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "QuillPbConvert_Heron_v1_1.h"
#include "binding_tables.h"
#include "record_layout.h"

namespace {

using namespace qh_catalogue;

struct LayoutRow {
  const RecordLayout* record;
  const char* name;
  std::uint32_t offset, width, count;
  ValueType type;
};

const LayoutRow kLayoutRows[] = {
    {&kPremix, "steady.lkfs_gain", 16, 2, 1, ValueType::kInt16},
    {&kPremix, "enhance2.ref_htest", 80, 4, 7, ValueType::kInt32},
    {&kPremix, "bypass_mode", 124, 4, 5, ValueType::kInt32},
    {&kPostmixControl, "aeq_enable", 72, 4, 6, ValueType::kInt32},
    {&kPostmixControl, "brio.thumpx.speaker_size", 184, 4, 1, ValueType::kInt32},
    {&kPostmixControl, "mbhl.dist_prev_enable", 484, 4, 1, ValueType::kInt32},
    {&kPostmix, "geq10b.band_gain", 238, 2, 10, ValueType::kInt16},
    {&kPostmix, "front_room.uuid", 33328, 16, 1, ValueType::kUuid},
    {&kPostmix, "multich_room.coeffs", 528, 2, 16400, ValueType::kInt16},
    {&kPostmix, "hpeq.coeffs", 58032, 2, 258, ValueType::kInt16},
    {&kPostmix, "hpf.order", 58548, 4, 1, ValueType::kUint32},
    {&kPostmix, "aeq.bank[1].fir_coeffs", 58632 + 1344 + 304, 4, 260, ValueType::kInt32},
    {&kPostmix, "thumpx.coeffs", 61424, 4, 63, ValueType::kInt32},
    {&kPostmix, "dist_prev[1].notch_band_coeffs_float32", 63940 + 1736, 4, 108, ValueType::kFloat32},
};

TEST(RecordLayout, FieldsSitWhereTheLayoutPutsThem) {
  for (const LayoutRow& row : kLayoutRows) {
    const FieldLayout* f = FindField(*row.record, row.name);
    ASSERT_NE(f, nullptr) << row.name;
    EXPECT_EQ(f->offset, row.offset) << row.name;
    EXPECT_EQ(f->width, row.width) << row.name;
    EXPECT_EQ(f->count, row.count) << row.name;
    EXPECT_EQ(f->type, row.type) << row.name;
  }
  EXPECT_EQ(FindRecord("coeffs"), &kPostmix);
  EXPECT_EQ(FindRecord("postmix")->size, 66108u);
  EXPECT_EQ(RecordForSize(488), &kPostmixControl);
  EXPECT_EQ(FindRecord("ctrl"), nullptr);
}

// Each binding table's rows, shifted by its block's offset in the record.
struct BoundOffsets {
  const char* table;
  const RecordLayout* record;
  std::uint32_t block;  // block offset in the record, from the layout
  std::uint32_t width;
  std::vector<std::size_t> rows;
};

template <class Table>
std::vector<std::size_t> Rows(const Table& table) {
  std::vector<std::size_t> out;
  for (const auto& row : table) out.push_back(row.offset);
  return out;
}

TEST(RecordLayout, EveryBoundScalarIsAFieldOfTheTableWidth) {
  using namespace quillheron::bind;
  const BoundOffsets kTables[] = {
      {"Steady32Map", &kPremix, 0, 4, Rows(Steady32Map)},     {"Steady16Map", &kPremix, 0, 2, Rows(Steady16Map)},
      {"Enh2Map", &kPremix, 20, 4, Rows(Enh2Map)},            {"PremixMap", &kPremix, 0, 4, Rows(PremixMap)},
      {"Enh2Map", &kPostmixControl, 272, 4, Rows(Enh2Map)},   {"PostmixMap", &kPostmixControl, 0, 4, Rows(PostmixMap)},
      {"OVA3D32Map", &kPostmix, 128, 4, Rows(OVA3D32Map)},    {"OVA3D16Map", &kPostmix, 128, 2, Rows(OVA3D16Map)},
      {"Vista32Map", &kPostmix, 156, 4, Rows(Vista32Map)},    {"Vista16Map", &kPostmix, 156, 2, Rows(Vista16Map)},
      {"THUMPX32Map", &kPostmix, 172, 4, Rows(THUMPX32Map)},  {"BRIO32Map", &kPostmix, 128, 4, Rows(BRIO32Map)},
      {"BRIO16Map", &kPostmix, 128, 2, Rows(BRIO16Map)},      {"GEQ10B16Map", &kPostmix, 232, 2, Rows(GEQ10B16Map)},
      {"AEQ16Map", &kPostmix, 260, 2, Rows(AEQ16Map)},        {"LYRA32Map", &kPostmix, 368, 4, Rows(LYRA32Map)},
      {"MBHL32Map", &kPostmix, 408, 4, Rows(MBHL32Map)},      {"MBHL16Map", &kPostmix, 408, 2, Rows(MBHL16Map)},
  };
  for (const BoundOffsets& t : kTables) {
    for (std::size_t row : t.rows) {
      const std::uint32_t at = t.block + static_cast<std::uint32_t>(row);
      bool found = false;
      for (const FieldLayout& f : *t.record) {
        // A scalar field, or an element of a field array (the ten band gains).
        if (at >= f.offset && at < f.offset + f.width * f.count && (at - f.offset) % f.width == 0) {
          EXPECT_EQ(f.width, t.width) << t.table << " row at " << at << " is " << f.name;
          found = true;
        }
      }
      EXPECT_TRUE(found) << t.table << " binds byte " << at << " of " << t.record->name << ", no field there";
    }
  }
}

TEST(RecordLayout, SlotLabelsNameTheModePopulatePutsThere) {
  quill::pb::heron_v1_1::HeronSettings settings;
  auto* postmix = settings.mutable_postmix();
  for (int mode = 0; mode < QUILL_HERON_MODE_COUNT; ++mode) {
    postmix->add_lyra_input_gain(mode);
    postmix->add_bypass_hpeq(mode);
    postmix->add_aeq_enable(mode);
  }
  _quillHeronPostmixApiCtrl record;
  std::memset(&record, 0, sizeof record);
  ASSERT_EQ(QuillHeron_v1_1_Pb(48000).populate(settings, record), 0);
  const auto* bytes = reinterpret_cast<const unsigned char*>(&record);
  int labelled = 0;
  for (const FieldLayout& f : kPostmixControl) {
    if (f.slots == nullptr) continue;
    ++labelled;
    ASSERT_EQ(f.count, QUILL_HERON_MODE_COUNT) << f.name;
    ASSERT_EQ(f.type, qh_catalogue::ValueType::kInt32) << f.name;
    for (std::uint32_t slot = 0; slot < f.count; ++slot) {
      std::int32_t mode;
      std::memcpy(&mode, bytes + f.offset + 4 * slot, 4);
      EXPECT_EQ(quill::pb::heron_v1_1::HeronModeOrder_Name(mode), f.slots[slot]) << f.name << " slot " << slot;
    }
  }
  EXPECT_EQ(labelled, 3);
}

}  // namespace
