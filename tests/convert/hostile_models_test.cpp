// Listening-model entries that do not match what they state: an acoustic EQ
// without two filter banks, regions too small for a record's header. Nothing
// is written past a region; what is missing counts as a missing table.
// Headphone-EQ lists shorter or longer than stated: model_hpeq_test.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "QuillPb.h"
#include "coef_test_support.h"

namespace {

using coeftest::kPattern32;
using coeftest::setTable;
using quill::pb::model::headphoneEq;
using quill::pb::model::listeningModel;

constexpr int kRate = 48000;
constexpr char kId[] = "00000000-0000-0000-0000-00000000e001";
constexpr auto kRoute = quill::pb::hub::AR_OUT_ATTACHED0;
constexpr std::size_t kAeq = 58632, kBank1 = kAeq + 1344;

// An AEQ entry with fewer than two banks after the rate reduction: the
// missing bank is a missing table. The record is cleared and both FIR stages
// marked absent as always, a present bank is loaded, the result is -998.
TEST(HostileModels, AeqWithoutTwoBanksIsAMissingTable) {
  struct Case {
    const char* name;
    int banks;        // banks in the entry, each with a table of the rate
    int loaded;       // banks that end up loaded
  };
  const Case kCases[] = {{"no bank", 0, 0}, {"one bank", 1, 1}};
  for (const Case& c : kCases) {
    listeningModel m;
    auto* aeq = m.add_aeqs();
    aeq->set_uuid(kId);
    for (int b = 0; b < c.banks; ++b) setTable(aeq->add_coefficient_table()->add_iircoefs(), kRate, {7, 8, 9});
    coeftest::Record rec;
    EXPECT_EQ(QuillPb::loadAeq(kRoute, kId, {&m}, &(*rec).aeq, kRate), -998) << c.name;
    for (std::size_t bank : {kAeq, kBank1}) {
      const bool loaded = (bank == kAeq && c.loaded > 0);
      EXPECT_EQ(rec.i32(bank), loaded ? 24 : 0) << c.name;   // iir_order
      EXPECT_EQ(rec.i32(bank + 4), -1) << c.name;             // no FIR stage
      EXPECT_EQ(rec.i32(bank + 8), loaded ? 7 : 0) << c.name;
    }
    EXPECT_TRUE(rec.untouched(kAeq + 2688, kAeq + 2688 + 64)) << c.name;

    // Through the converter and the whole driver the same entry fails the load.
    quill::pb::heron_v1_1::HeronSettings s;
    s.mutable_postmix()->add_aeqcoef()->set_uuid(kId);
    coeftest::Record whole;
    EXPECT_EQ(QuillHeron_v1_1_Pb(kRate).populate(kRoute, s, *whole, false, {&m}, 0), -998) << c.name;
  }
}

// Regions too small for a record's header: the loaders refuse with -997 and
// write nothing.
TEST(HostileModels, RegionsSmallerThanTheHeader) {
  headphoneEq h;
  h.set_uuid(kId);
  h.set_ihpirlength(2);
  setTable(h.add_coefftables(), kRate, {}, {1, 2, 3, 4, 5, 6});
  quill::pb::model::roomModel room;
  room.set_uuid(kId);
  setTable(room.add_coefftables(), kRate, {}, {1});

  for (unsigned int capacity : {0u, 4u, 23u}) {
    std::vector<int> region(16, static_cast<int>(kPattern32));
    EXPECT_EQ(QuillPb::loadHpeq(&h, region.data(), capacity, kRate), -997) << capacity;
    for (int w : region) EXPECT_EQ(static_cast<std::uint32_t>(w), kPattern32) << capacity;
  }
  for (unsigned int capacity : {0u, 39u, 41u}) {
    std::vector<int> region(16, static_cast<int>(kPattern32));
    EXPECT_EQ(QuillPb::loadRoom(&room, region.data(), capacity, kRate), -997) << capacity;
    for (int w : region) EXPECT_EQ(static_cast<std::uint32_t>(w), kPattern32) << capacity;
  }

}

}  // namespace
