// The postmix coefficient convert: which coefficient messages it emits, the
// converter's rate stamped into the source record, and one headphone-EQ
// locator per call with nothing accumulating over repeated calls.
#include <gtest/gtest.h>

#include <vector>

#include "coef_test_support.h"

namespace {

using namespace coeftest;

constexpr std::size_t kBrioEnable = 128 + 68;
constexpr std::size_t kThumpxEnable = 128 + 44;
constexpr std::size_t kThumpxSpeakerSize = 128 + 44 + 12;
constexpr std::size_t kMbhlEnable = 408;
constexpr std::size_t kDistPrevEnable = 408 + 76;

TEST(PostmixConvert, RecordControlsGateTheCoefficients) {
  struct Case {
    std::uint32_t brio, thumpx, size, mbhl, dist;
    bool has_thumpx, has_mbhl, has_dist;
  };
  const Case kCases[] = {
      {1, 1, 12, 1, 1, true, true, true},
      {1, 1, 11, 1, 1, false, true, true},
      {0, 1, 12, 1, 0, false, true, false},
      {1, 0, 12, 0, 1, false, false, false},
      {7, 9, 12, 2, 0, true, true, false},
  };
  QuillHeron_v1_1_Pb conv(32000);
  for (const Case& c : kCases) {
    Record rec;
    rec.put32(kBrioEnable, c.brio);
    rec.put32(kThumpxEnable, c.thumpx);
    rec.put32(kThumpxSpeakerSize, c.size);
    rec.put32(kMbhlEnable, c.mbhl);
    rec.put32(kDistPrevEnable, c.dist);
    HeronSettings s;
    EXPECT_TRUE(conv.convert(*rec, &s, false));
    const auto& pm = s.postmix();
    EXPECT_TRUE(pm.has_hpf_coef() && pm.has_brio_hpf_coef() && pm.has_brio_xover_coef());
    EXPECT_EQ(pm.model().aeqs_size(), 1);
    EXPECT_EQ(pm.has_thumpx_coef(), c.has_thumpx) << c.size;
    EXPECT_EQ(pm.has_mbhl_coef(), c.has_mbhl) << c.mbhl;
    EXPECT_EQ(pm.mbhl_dist_prev_size(), c.has_dist ? 2 : 0) << c.dist;
    EXPECT_EQ(pm.model().rooms_size(), 0);
    EXPECT_EQ(pm.hpeqcoef_size(), 1);
  }
}

// Converting twice into the same settings does not accumulate: the control
// convert clears Postmix first.
TEST(PostmixConvert, RateIsStampedIntoTheRecord) {
  QuillHeron_v1_1_Pb conv(44100);
  for (bool rooms : {false, true}) {
    Record rec;
    HeronSettings s;
    conv.convert(*rec, &s, rooms);
    conv.convert(*rec, &s, rooms);
    EXPECT_EQ(rec.u32(58024), 44100u);
    for (std::size_t at : {488u + 28, 33328u + 28, 45668u + 28}) {
      EXPECT_EQ(rec.u32(at), rooms ? 44100u : kPattern32) << at;
    }
    const auto& model = s.postmix().model();
    ASSERT_EQ(model.headphones_size(), 1);
    EXPECT_EQ(model.headphones(0).coefftables(0).samplerate(), 44100);
    EXPECT_EQ(model.headphones(0).coefftables(0).coeff_16_size(), 258);
    EXPECT_EQ(s.postmix().hpeqcoef(0).uuid(), model.headphones(0).uuid());
    EXPECT_EQ(model.rooms_size(), rooms ? 3 : 0);
    EXPECT_EQ(s.postmix().frontroom_size(), rooms ? 1 : 0);
    EXPECT_EQ(s.postmix().hpeqcoef_size(), 1);
    EXPECT_EQ(s.postmix().aeqcoef_size(), 1);
    EXPECT_EQ(s.postmix().hpf_coef().coeffs_size(), 1);
    EXPECT_EQ(s.postmix().lyra_input_gain_size(), 6);
  }
}

}  // namespace
