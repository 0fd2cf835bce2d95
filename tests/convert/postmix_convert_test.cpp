// The postmix coefficient convert: which coefficient messages it emits, the
// converter's rate stamped into the source record, one headphone-EQ locator
// per call, and a full round trip through the driver.
#include <gtest/gtest.h>

#include <vector>

#include "coef_test_support.h"

namespace {

using coeftest::kPattern32;
using coeftest::Record;
using quill::pb::heron_v1_1::HeronSettings;

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

TEST(PostmixConvert, RateIsStampedIntoTheRecord) {
  QuillHeron_v1_1_Pb conv(44100);
  for (bool rooms : {false, true}) {
    Record rec;
    HeronSettings s;
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
  }
}

// The control convert clears Postmix first, so a second convert into the same
// settings does not accumulate.
TEST(PostmixConvert, RepeatedConvertDoesNotAccumulate) {
  Record rec;
  HeronSettings s;
  QuillHeron_v1_1_Pb conv(48000);
  conv.convert(*rec, &s, true);
  conv.convert(*rec, &s, true);
  const auto& pm = s.postmix();
  EXPECT_EQ(pm.hpeqcoef_size(), 1);
  EXPECT_EQ(pm.aeqcoef_size(), 1);
  EXPECT_EQ(pm.model().headphones_size(), 1);
  EXPECT_EQ(pm.model().rooms_size(), 3);
  EXPECT_EQ(pm.hpf_coef().coeffs_size(), 1);
  EXPECT_EQ(pm.lyra_input_gain_size(), 6);
}

// Populate, convert with rooms, populate again: the same record, except the
// stereo-enhancer high-pass coefficients, which the rebuild puts where the
// loader does not read them.
TEST(PostmixConvert, FullRoundTrip) {
  HeronSettings s;
  auto* pm = s.mutable_postmix();
  for (int i = 0; i < 7; ++i) pm->mutable_enhance2()->add_ref_htest(i);
  pm->mutable_brio()->set_enable(1);
  pm->mutable_brio()->mutable_thumpx()->set_enable(1);
  pm->mutable_brio()->mutable_thumpx()->set_speaker_size(12);
  pm->mutable_mbhl()->set_enable(1);
  pm->mutable_mbhl()->set_dist_prev_enable(1);
  auto* model = pm->mutable_model();
  const char* rooms[3] = {"00000000-0000-0000-0000-0000000000a1", "00000000-0000-0000-0000-0000000000a2",
                          "00000000-0000-0000-0000-0000000000a3"};
  for (int i = 0; i < 3; ++i) {
    auto* r = model->add_rooms();
    r->set_uuid(rooms[i]);
    r->set_reverbgain(-i);
    coeftest::setTable(r->add_coefftables(), 48000, {}, coeftest::ramp(10 + i, -5));
  }
  pm->add_multichroom()->set_uuid(rooms[0]);
  pm->add_frontroom()->set_uuid(rooms[1]);
  pm->add_wideroom()->set_uuid(rooms[2]);
  auto* h = model->add_headphones();
  h->set_uuid("00000000-0000-0000-0000-0000000000b1");
  h->set_ihpirlength(3);
  coeftest::setTable(h->add_coefftables(), 48000, {}, {1, 2, 3, 4, 5, 6, 7, 8});
  pm->add_hpeqcoef()->set_uuid(h->uuid());
  auto* aeq = model->add_aeqs();
  aeq->set_uuid("00000000-0000-0000-0000-0000000000c1");
  for (int b = 0; b < 2; ++b) coeftest::setTable(aeq->add_coefficient_table()->add_iircoefs(), 48000, coeftest::ramp(74, b));
  pm->add_aeqcoef()->set_uuid(aeq->uuid());
  pm->mutable_hpf_coef()->set_order(2);
  coeftest::setTable(pm->mutable_hpf_coef()->add_coeffs(), 48000, coeftest::ramp(20, 1));
  pm->mutable_brio_hpf_coef()->set_order(1);
  coeftest::setTable(pm->mutable_brio_hpf_coef()->add_hpf_coeffs(), 48000, {}, {-7, 7});
  coeftest::setTable(pm->mutable_brio_xover_coef()->add_lpf_coeffs(), 48000, {}, {1, 2});
  coeftest::setTable(pm->mutable_thumpx_coef()->add_coeffs(), 48000, coeftest::ramp(63, 9));
  coeftest::setTable(pm->mutable_mbhl_coef()->mutable_low_cross_coeffs(), 48000, coeftest::ramp(12, 1));
  coeftest::setTable(pm->mutable_mbhl_coef()->mutable_mid_cross_coeffs(), 48000, coeftest::ramp(12, 2));
  for (int i = 0; i < 2; ++i) {
    auto* d = pm->add_mbhl_dist_prev();
    d->mutable_sense_config()->add_bandcoeffs(i + 1);
    d->mutable_notch_config()->add_smoothers(i + 3);
  }

  QuillHeron_v1_1_Pb conv(48000);
  Record first;
  ASSERT_EQ(conv.populate(quill::pb::hub::AR_OUT_ATTACHED0, s, *first, false, {}, 14), 0);
  HeronSettings rebuilt;
  conv.convert(*first, &rebuilt, true);
  Record second;
  ASSERT_EQ(conv.populate(quill::pb::hub::AR_OUT_ATTACHED0, rebuilt, *second, false, {}, 14), 0);

  // The rebuilt rooms carry every capacity value: 6150 per side room fits
  // exactly, 16400 for the multichannel room.
  ASSERT_EQ(rebuilt.postmix().model().rooms_size(), 3);
  EXPECT_EQ(rebuilt.postmix().model().rooms(0).coefftables(0).coeff_16_size(), 6150);
  EXPECT_EQ(rebuilt.postmix().model().rooms(2).coefftables(0).coeff_16_size(), 16400);

  for (std::size_t i = 0; i < coeftest::kRecordBytes; ++i) {
    if (i >= 61324 && i < 61328) continue;  // brio high-pass coefficients -7, 7
    ASSERT_EQ(first.bytes()[i], second.bytes()[i]) << "byte " << i;
  }
  EXPECT_TRUE(second.untouched(61324, 61364));
}

}  // namespace
