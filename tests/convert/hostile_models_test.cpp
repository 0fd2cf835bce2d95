// Listening-model entries that do not match what they state: an acoustic EQ
// without two filter banks, headphone-EQ lists shorter or longer than their
// stated response length, regions too small for a record's header. Nothing is
// read past a list or written past a region; what is missing counts as a
// missing table.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "QuillPb.h"
#include "coef_test_support.h"

namespace {

using coeftest::kPattern32;
using coeftest::le16;
using coeftest::le32;
using coeftest::ramp;
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

// A headphone EQ whose list is shorter than its stated response length. The
// channel split is taken from the list as it is: up to 128 stated taps every
// value is copied; above, each channel's slots are filled from the source
// indices the split gives, as far as the list reaches, and the remaining
// slots keep what the region held.
TEST(HostileModels, HeadphoneEqShorterThanStated) {
  struct Case {
    const char* name;
    std::uint32_t ihpir;
    int values;                 // coeff_16 count, values 1, 2, 3, ...
    std::uint32_t stored_ihpir;
    std::vector<int> source;    // source index for each record slot, -1: untouched
  };
  std::vector<int> split(258, -1);
  split[0] = 0;
  split[1] = 1;
  for (int j = 0; j < 128; ++j) {
    if (2 + j < 102) split[2 + j] = 2 + j;    // channel 1 from index 2
    if (52 + j < 102) split[130 + j] = 52 + j;  // channel 2 from (102 - 2) / 2 + 2 = 52
  }
  std::vector<int> short_copy(258, -1);
  for (int i = 0; i < 10; ++i) short_copy[i] = i;
  const Case kCases[] = {
      {"129 stated, 50 per channel", 129, 102, 128, split},
      {"64 stated, 10 values", 64, 10, 64, short_copy},
  };
  for (const Case& c : kCases) {
    headphoneEq h;
    h.set_uuid(kId);
    h.set_ihpirlength(c.ihpir);
    setTable(h.add_coefftables(), kRate, {}, ramp(c.values, 1));
    std::vector<int> region(540 / 4 + 4, static_cast<int>(kPattern32));
    ASSERT_EQ(QuillPb::loadHpeq(&h, region.data(), 540, kRate), 0) << c.name;
    EXPECT_EQ(le32(region.data(), 20), c.stored_ihpir) << c.name;
    for (int slot = 0; slot < 258; ++slot) {
      const std::uint16_t want = c.source[slot] < 0 ? 0xA5A5 : static_cast<std::uint16_t>(c.source[slot] + 1);
      ASSERT_EQ(le16(region.data(), 24 + 2 * slot), want) << c.name << " slot " << slot;
    }
    for (std::size_t off = 540; off < region.size() * 4; off += 4) EXPECT_EQ(le32(region.data(), off), kPattern32);
  }
}

// Regions too small for a record's header: the loaders refuse with -997 and
// write nothing; a region that ends inside a tap gets the header and the
// whole taps that fit.
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

  std::vector<int> region(16, static_cast<int>(kPattern32));
  ASSERT_EQ(QuillPb::loadHpeq(&h, region.data(), 29, kRate), 0);  // header and two taps, half a third
  EXPECT_EQ(le32(region.data(), 16), static_cast<std::uint32_t>(kRate));
  EXPECT_EQ(le16(region.data(), 24), 1);
  EXPECT_EQ(le16(region.data(), 26), 2);
  EXPECT_EQ(le16(region.data(), 28), 0xA5A5);
}

}  // namespace
