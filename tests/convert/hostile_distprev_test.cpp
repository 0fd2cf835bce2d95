// Distortion-prevention design parameters with a band count outside 0..6:
// the count is cut into that range before the design, so the records are
// exactly those of the nearest valid count, their stored band count
// included, and nothing is written past the two records.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <vector>

#include "coef_test_support.h"
#include "quillheron_filterdesign.h"

namespace {

using coeftest::Record;
using quill::pb::heron_v1_1::HeronSettings;

constexpr std::size_t kRec0 = 61772, kRecordPairBytes = 2 * 2168;

TEST(HostileDistprev, BandCountOutsideTheRecordIsCutIntoIt) {
  struct Case {
    int band_ct;
    int designed_as;
  };
  const Case kCases[] = {{-1, 0}, {INT_MIN, 0}, {7, 6}, {INT_MAX, 6}};
  const QuillHeron_v1_1_Pb conv(44100);
  for (const Case& c : kCases) {
    HeronSettings s;
    auto* d = s.mutable_designerparameters();
    for (int i = 0; i < 2; ++i) {
      auto* p = d->add_mbhl_nf_design_params();
      p->set_nf_mode(1);
      p->set_nf_band_ct(c.band_ct);
      p->set_nf_base_freq(180.0f + 40.0f * i);
      p->set_nf_base_q(4.0f);
      p->set_nf_base_attn_max(-9.0f);
      p->set_nf_slope(-2.0f);
      p->set_nf_attk_ms(20.0f);
      p->set_nf_rel_ms(80.0f);
    }
    Record rec;
    ASSERT_EQ(conv.PopulateMbhlDistPrevCoeff(s, *rec), 0) << c.band_ct;

    quillDistprevNotchDesignBlock blocks[2];
    std::memset(blocks, 0, sizeof(blocks));
    for (int i = 0; i < 2; ++i) {
      blocks[i].nf_mode = 1;
      blocks[i].nf_band_ct = c.designed_as;
      blocks[i].nf_base_freq = 180.0f + 40.0f * i;
      blocks[i].nf_base_q = 4.0f;
      blocks[i].nf_base_attn_max = -9.0f;
      blocks[i].nf_slope = -2.0f;
      blocks[i].nf_attk_ms = 20.0f;
      blocks[i].nf_rel_ms = 80.0f;
    }
    std::vector<quillMBHLDistprevCoeff> want(2);
    quillDistprevDesignHeader header;
    ASSERT_EQ(quill_distprev_config_designer(&header, want.data(), blocks, 2), 0);
    EXPECT_EQ(0, std::memcmp(rec.bytes() + kRec0, want.data(), kRecordPairBytes)) << c.band_ct;
    EXPECT_EQ(rec.i32(kRec0 + 1048), c.designed_as) << c.band_ct;  // notch_band_count
    EXPECT_TRUE(rec.untouched(0, kRec0)) << c.band_ct;
  }
}

}  // namespace
