// Distortion-prevention records: the exactly-two copy rule with counts from
// the first message, the partial write on a missing notch part, and the
// design path through the notch design blocks, its band count cut into 0..6.
// Lists longer than an array: hostile_capacity_test.
#include <gtest/gtest.h>
#include <google/protobuf/text_format.h>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "coef_test_support.h"
#include "quillheron_filterdesign.h"

namespace {

using namespace coeftest;
using quill::pb::coef::MbhlDistPrevCoeff;

constexpr std::size_t kRec0 = 61772;
constexpr std::size_t kRec1 = 63940;

void expectFloats(const Record& rec, std::size_t at, const std::vector<float>& v, int capacity, const char* what) {
  for (int i = 0; i < capacity; ++i) {
    if (i < static_cast<int>(v.size())) {
      ASSERT_EQ(rec.f32(at + 4 * i), v[i]) << what << " " << i;
    } else {
      ASSERT_EQ(rec.u32(at + 4 * i), kPattern32) << what << " " << i;
    }
  }
}

template <class List, class T>
void fill(List* list, const std::vector<T>& v) {
  for (T x : v) list->Add(x);
}

// Two precomputed designs; the second one's lists are shorter or longer than
// the first one's, and the first one's counts decide for both. Lists absent
// in both leave their arrays alone. (Every array's offset in both records and
// its capacity: hostile_capacity_test.)
HeronSettings twoDesigns() {
  HeronSettings s;
  auto* pm = s.mutable_postmix();
  MbhlDistPrevCoeff* a = pm->add_mbhl_dist_prev();
  MbhlDistPrevCoeff* b = pm->add_mbhl_dist_prev();
  auto* sa = a->mutable_sense_config();
  sa->set_bandcount(6);
  fill(sa->mutable_bandsoscount(), std::vector<int>{2, 2, 2});
  fill(sa->mutable_bandcoeffs(), ramp(5, 1000));
  fill(sa->mutable_bandcoeffsfloat32(), std::vector<float>{1.5f, -2.25f});
  auto* sb = b->mutable_sense_config();
  sb->set_bandcount(4);
  fill(sb->mutable_bandsoscount(), std::vector<int>{9, 9, 9, 9, 9});
  fill(sb->mutable_bandcoeffs(), ramp(2, -7));
  fill(sb->mutable_bandcoeffsfloat32(), std::vector<float>{7.0f, 8.0f, 9.0f});

  auto* na = a->mutable_notch_config();
  na->set_mode(1);
  na->set_thresholddb(-20);
  na->set_sensitivitydb(3);  // bandCount absent: written as 0
  fill(na->mutable_bandgainscalars(), ramp(2, 20));
  fill(na->mutable_smoothers(), ramp(9, 40));
  fill(na->mutable_bandcoeffsfloat32(), std::vector<float>{0.5f});
  auto* nb = b->mutable_notch_config();
  nb->set_mode(2);
  nb->set_thresholddb(-1);
  nb->set_sensitivitydb(-2);
  nb->set_bandcount(5);
  fill(nb->mutable_bandgainscalars(), ramp(6, -20));  // only 2 taken
  fill(nb->mutable_smoothers(), ramp(3, -40));        // fewer than the first: only 3
  fill(nb->mutable_bandcoeffsfloat32(), std::vector<float>{-0.5f, 3.0f});
  return s;
}

TEST(CoefDistprev, CopiesTwoDesigns) {
  HeronSettings s = twoDesigns();
  Record rec;
  QuillHeron_v1_1_Pb conv(48000);
  ASSERT_EQ(conv.PopulateMbhlDistPrevCoeff(s, *rec), 0);

  EXPECT_EQ(rec.i32(kRec0), 6);
  expectWords(rec, kRec0 + 4, {2, 2, 2}, 6, "sense sos 0");
  expectWords(rec, kRec0 + 28, ramp(5, 1000), 144, "sense coeffs 0");
  expectFloats(rec, kRec0 + 604, {1.5f, -2.25f}, 108, "sense floats 0");
  EXPECT_EQ(rec.i32(kRec1), 4);
  expectWords(rec, kRec1 + 4, {9, 9, 9}, 6, "sense sos 1");
  expectWords(rec, kRec1 + 28, ramp(2, -7), 144, "sense coeffs 1");
  expectFloats(rec, kRec1 + 604, {7.0f, 8.0f}, 108, "sense floats 1");

  const std::int32_t scalars0[4] = {1, -20, 3, 0};
  const std::int32_t scalars1[4] = {2, -1, -2, 5};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(rec.i32(kRec0 + 1036 + 4 * i), scalars0[i]) << i;
    EXPECT_EQ(rec.i32(kRec1 + 1036 + 4 * i), scalars1[i]) << i;
  }
  expectWords(rec, kRec0 + 1052, {}, 6, "attenuation 0");
  expectWords(rec, kRec0 + 1076, ramp(2, 20), 6, "gain scalars 0");
  expectWords(rec, kRec0 + 1100, {}, 6, "notch sos 0");
  expectWords(rec, kRec0 + 1124, ramp(9, 40), 9, "smoothers 0");
  expectWords(rec, kRec0 + 1160, {}, 144, "notch coeffs 0");
  expectFloats(rec, kRec0 + 1736, {0.5f}, 108, "notch floats 0");
  expectWords(rec, kRec1 + 1052, {}, 6, "attenuation 1");
  expectWords(rec, kRec1 + 1076, ramp(2, -20), 6, "gain scalars 1");
  expectWords(rec, kRec1 + 1100, {}, 6, "notch sos 1");
  expectWords(rec, kRec1 + 1124, ramp(3, -40), 9, "smoothers 1");
  expectWords(rec, kRec1 + 1160, {}, 144, "notch coeffs 1");
  expectFloats(rec, kRec1 + 1736, {-0.5f}, 108, "notch floats 1");
  EXPECT_TRUE(rec.untouched(0, kRec0));
}

TEST(CoefDistprev, MissingParts) {
  QuillHeron_v1_1_Pb conv(48000);
  {
    HeronSettings s = twoDesigns();
    s.mutable_postmix()->mutable_mbhl_dist_prev(1)->clear_sense_config();
    Record rec;
    EXPECT_EQ(conv.PopulateMbhlDistPrevCoeff(s, *rec), -998);
    EXPECT_TRUE(rec.untouched(0, coeftest::kRecordBytes));
  }
  {
    HeronSettings s = twoDesigns();
    s.mutable_postmix()->mutable_mbhl_dist_prev(0)->clear_notch_config();
    Record rec;
    EXPECT_EQ(conv.PopulateMbhlDistPrevCoeff(s, *rec), -998);
    EXPECT_EQ(rec.i32(kRec0), 6);  // the sense parts stay written
    EXPECT_EQ(rec.i32(kRec1), 4);
    EXPECT_TRUE(rec.untouched(kRec0 + 1036, kRec1));
    EXPECT_TRUE(rec.untouched(kRec1 + 1036, coeftest::kRecordBytes));
  }
}

TEST(CoefDistprev, DesignPath) {
  struct Case {
    const char* name;
    int precomputed;   // entries in mbhl_dist_prev (never 2 here)
    int band_ct;       // of the second design
    int stored_band_ct;
  };
  const Case kCases[] = {
      {"no precomputed design", 0, 4, 4},
      {"one precomputed design", 1, 4, 4},
      {"three precomputed designs", 3, 6, 6},
      {"band count 7 designed as 6", 0, 7, 6},
      {"band count INT_MAX designed as 6", 0, INT_MAX, 6},
      {"band count -1 designed as 0", 0, -1, 0},
      {"band count INT_MIN designed as 0", 0, INT_MIN, 0},
  };
  QuillHeron_v1_1_Pb conv(48000);
  for (const Case& c : kCases) {
    HeronSettings s;
    for (int i = 0; i < c.precomputed; ++i) s.mutable_postmix()->add_mbhl_dist_prev()->mutable_sense_config();
    // First design: only a few fields present; absent ones stay zero in the
    // block (their schema defaults do not count).
    ASSERT_TRUE(google::protobuf::TextFormat::ParseFromString(
        "mbhl_nf_design_params { nf_band_ct: 3 nf_base_freq: 200 nf_attk_ms: 5 }"
        "mbhl_nf_design_params { nf_mode: 2 nf_thld: -10.5 nf_sense: 3.25 nf_attk_thld: -6"
        "  nf_attk_ms: 10 nf_rel_ms: 100 nf_band_ct: " + std::to_string(c.band_ct) +
        "  nf_base_freq: 150 nf_base_q: 5 nf_base_attn_max: -12 nf_spacing: 1 nf_width: 1 nf_slope: -3 }",
        s.mutable_designerparameters()));
    Record rec;
    ASSERT_EQ(conv.PopulateMbhlDistPrevCoeff(s, *rec), 0) << c.name;

    // The blocks the designer is given, field by field in record order.
    const quillDistprevNotchDesignBlock blocks[2] = {
        {0, 0, 0, 0, 5.0f, 0, 3, 200.0f, 0, 0, 0, 0, 0},
        {2, -10.5f, 3.25f, -6.0f, 10.0f, 100.0f, c.stored_band_ct, 150.0f, 5.0f, -12.0f, 1, 1, -3.0f}};
    std::vector<quillMBHLDistprevCoeff> want(2);
    quillDistprevDesignHeader header;
    ASSERT_EQ(quill_distprev_config_designer(&header, want.data(), blocks, 2), 0);
    EXPECT_EQ(0, std::memcmp(rec.bytes() + kRec0, want.data(), 2 * 2168)) << c.name;
    EXPECT_EQ(rec.i32(kRec1 + 1048), c.stored_band_ct) << c.name;
    EXPECT_TRUE(rec.untouched(0, kRec0)) << c.name;
  }
}

TEST(CoefDistprev, DesignPathNeedsExactlyTwoParameterSets) {
  QuillHeron_v1_1_Pb conv(48000);
  for (int n : {-1, 0, 1, 3}) {
    HeronSettings s;
    if (n >= 0) {
      auto* d = s.mutable_designerparameters();
      for (int i = 0; i < n; ++i) d->add_mbhl_nf_design_params()->set_nf_band_ct(1);
    }
    Record rec;
    EXPECT_EQ(conv.PopulateMbhlDistPrevCoeff(s, *rec), -998) << n;
    EXPECT_TRUE(rec.untouched(0, coeftest::kRecordBytes)) << n;
  }
}

}  // namespace
