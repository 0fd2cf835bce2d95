// Coefficient loaders: each table scan rule, the design fallbacks, failure
// codes, and the bytes that must stay untouched (records start as 0xA5).
// Lists longer than an array: hostile_capacity_test.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

#include "coef_test_support.h"
#include "design_requests.h"
#include "quillheron_filterdesign.h"

namespace {

using namespace coeftest;

constexpr std::size_t kHpf = 58548;
constexpr std::size_t kBrioHpf = 61320;
constexpr std::size_t kXover = 61364;
constexpr std::size_t kThumpx = 61424;
constexpr std::size_t kMbhl = 61676;

TEST(CoefLoaders, OutputHighPass) {
  struct Case {
    const char* name;
    std::function<void(quill::pb::coef::Hpf*)> build;
    std::uint32_t order;  // kPattern32: untouched
    std::vector<std::int32_t> coeffs;
  };
  const Case kCases[] = {
      {"order and table",
       [](quill::pb::coef::Hpf* h) {
         h->set_order(4);
         setTable(h->add_coeffs(), 44100, ramp(3, 900));
         setTable(h->add_coeffs(), 48000, ramp(20, 10));
       },
       4, ramp(20, 10)},
      {"no order", [](quill::pb::coef::Hpf* h) { setTable(h->add_coeffs(), 48000, {5, -6}); }, kPattern32, {5, -6}},
      {"21 values: nothing, and no later table",
       [](quill::pb::coef::Hpf* h) {
         h->set_order(2);
         setTable(h->add_coeffs(), 48000, ramp(21, 1));
         setTable(h->add_coeffs(), 48000, ramp(3, 1));
       },
       2, {}},
      {"no table of the rate", [](quill::pb::coef::Hpf* h) { setTable(h->add_coeffs(), 32000, ramp(3, 1)); },
       kPattern32, {}},
  };
  QuillHeron_v1_1_Pb conv(48000);
  for (const Case& c : kCases) {
    Postmix pm;
    c.build(pm.mutable_hpf_coef());
    Record rec;
    conv.LoadHeronHPF(pm, *rec);
    EXPECT_EQ(rec.u32(kHpf), c.order) << c.name;
    expectWords(rec, kHpf + 4, c.coeffs, 20, c.name);
    EXPECT_TRUE(rec.untouched(0, kHpf)) << c.name;
    EXPECT_TRUE(rec.untouched(kHpf + 84, coeftest::kRecordBytes)) << c.name;
  }
}

TEST(CoefLoaders, BrioHighPass) {
  struct Case {
    const char* name;
    std::function<void(quill::pb::coef::BrioHpf*)> build;
    int result;
    std::uint32_t order;
    std::vector<std::int32_t> coeffs;
  };
  const Case kCases[] = {
      {"absent message", nullptr, 0, 0, {}},
      {"order 0 ignores tables",
       [](quill::pb::coef::BrioHpf* h) { setTable(h->add_hpf_coeffs(), 48000, {}, {1, 2}); }, 0, 0, {}},
      {"no tables", [](quill::pb::coef::BrioHpf* h) { h->set_order(2); }, -998, 2, {}},
      {"21 values skipped, next table of the rate used",
       [](quill::pb::coef::BrioHpf* h) {
         h->set_order(2);
         setTable(h->add_hpf_coeffs(), 48000, {}, ramp(21, 1));
         setTable(h->add_hpf_coeffs(), 48000, {}, ramp(20, 70000, -30000));
       },
       0, 2, ramp(20, 70000, -30000)},
      {"only another rate",
       [](quill::pb::coef::BrioHpf* h) {
         h->set_order(2);
         setTable(h->add_hpf_coeffs(), 44100, {}, {1});
       },
       -998, 2, {}},
      {"empty table of the rate",
       [](quill::pb::coef::BrioHpf* h) {
         h->set_order(-1);
         setTable(h->add_hpf_coeffs(), 48000, {3, 4});  // only coeff_32: never read
       },
       0, 0xFFFFFFFFu, {}},
  };
  QuillHeron_v1_1_Pb conv(48000);
  for (const Case& c : kCases) {
    Postmix pm;
    if (c.build) c.build(pm.mutable_brio_hpf_coef());
    Record rec;
    EXPECT_EQ(conv.LoadBrioHPF(pm, *rec), c.result) << c.name;
    EXPECT_EQ(rec.u32(kBrioHpf), c.order) << c.name;
    expectHalves(rec, kBrioHpf + 4, c.coeffs, 20, c.name);
    EXPECT_TRUE(rec.untouched(kBrioHpf + 44, coeftest::kRecordBytes)) << c.name;
  }
}

TEST(CoefLoaders, BrioCrossover) {
  Postmix pm;
  auto* x = pm.mutable_brio_xover_coef();
  x->set_order(3);
  setTable(x->add_lpf_coeffs(), 48000, {}, {1, 2, 3, 4});
  setTable(x->add_lpf_coeffs(), 44100, {}, {99, 99, 99, 99, 99});
  setTable(x->add_lpf_coeffs(), 48000, {}, {-5, 70000});  // last match overwrites the start
  setTable(x->add_lpf_coeffs(), 48000, {7});               // no coeff_16: not a match
  setTable(x->add_hpf_coeffs(), 48000, {}, {3, -4});
  Record rec;
  QuillHeron_v1_1_Pb conv(48000);
  EXPECT_EQ(conv.LoadBrioCrossover(pm, *rec), 0);
  EXPECT_EQ(rec.u32(kXover), 3u);
  expectHalves(rec, kXover + 4, {-5, 70000, 3, 4}, 14, "lpf");
  expectHalves(rec, kXover + 32, {3, -4}, 14, "hpf");
  EXPECT_TRUE(rec.untouched(kXover + 60, coeftest::kRecordBytes));

  Record other;
  QuillHeron_v1_1_Pb conv32(32000);
  EXPECT_EQ(conv32.LoadBrioCrossover(pm, *other), 0);
  EXPECT_EQ(other.u32(kXover), 3u);
  EXPECT_TRUE(other.untouched(kXover + 4, coeftest::kRecordBytes));
}

TEST(CoefLoaders, ThumpxTables) {
  struct Case {
    const char* name;
    std::vector<std::pair<int, std::vector<std::int32_t>>> tables;
    int result;
    std::vector<std::int32_t> words;
  };
  const Case kCases[] = {
      {"one table of the rate", {{48000, ramp(63, -31)}}, 0, ramp(63, -31)},
      {"another rate as well: copied but -998", {{44100, ramp(63, 1000)}, {48000, ramp(63, 7)}}, -998, ramp(63, 7)},
      {"last match wins", {{48000, ramp(5, 1)}, {48000, {-9, -8}}}, 0, {-9, -8, 3, 4, 5}},
      {"no table of the rate", {{32000, ramp(3, 1)}}, -998, {}},
  };
  QuillHeron_v1_1_Pb conv(48000);
  for (const Case& c : kCases) {
    HeronSettings s;
    auto* t = s.mutable_postmix()->mutable_thumpx_coef();
    for (const auto& table : c.tables) setTable(t->add_coeffs(), table.first, table.second);
    t->mutable_filterdesignparams()->set_sampling_rate(48000);  // tables take precedence
    Record rec;
    EXPECT_EQ(conv.PopulateTHUMPXCoeff(s, *rec), c.result) << c.name;
    expectWords(rec, kThumpx, c.words, 63, c.name);
    EXPECT_TRUE(rec.untouched(kThumpx + 252, coeftest::kRecordBytes)) << c.name;
  }
}

TEST(CoefLoaders, ThumpxDesignFallback) {
  QuillHeron_v1_1_Pb conv(48000);
  {
    HeronSettings s;
    auto* p = s.mutable_postmix()->mutable_thumpx_coef()->mutable_filterdesignparams();
    p->set_sampling_rate(48000);
    p->set_custom_speaker_size(100);
    Record rec;
    ASSERT_EQ(conv.PopulateTHUMPXCoeff(s, *rec), 0);
    // The whole array is the 32-bit designer's, fed the narrowed parameters
    // and a zeroed scratch area.
    std::int32_t want[63];
    alignas(8) unsigned char work[864] = {};
    qh_design::ThumpxRequest request;  // the schema defaults
    request.custom_speaker_size = 100;
    request.reserved = 0x3F800000;
    qh_design::DesignBuffers out;
    out.words32 = want;
    out.workspace = work;
    ASSERT_EQ(qh_design::Run(request, qh_design::Format::kFxp32, out), 0);
    for (int i = 0; i < 63; ++i) EXPECT_EQ(rec.i32(kThumpx + 4 * i), want[i]) << i;
    EXPECT_TRUE(rec.untouched(kThumpx + 252, coeftest::kRecordBytes));
  }
  struct Case {
    const char* name;
    bool params;
    int sampling_rate;  // 0: absent
    int speaker_size;
  };
  const Case kFailures[] = {
      {"no parameters", false, 0, 100},
      {"rate absent", true, 0, 100},
      {"rate differs", true, 44100, 100},
      {"designer rejects the size", true, 48000, 39},
  };
  for (const Case& c : kFailures) {
    HeronSettings s;
    auto* t = s.mutable_postmix()->mutable_thumpx_coef();
    t->set_uuid("x");
    if (c.params) {
      auto* p = t->mutable_filterdesignparams();
      if (c.sampling_rate != 0) p->set_sampling_rate(c.sampling_rate);
      p->set_custom_speaker_size(c.speaker_size);
    }
    Record rec;
    EXPECT_EQ(conv.PopulateTHUMPXCoeff(s, *rec), -998) << c.name;
    EXPECT_TRUE(rec.untouched(0, coeftest::kRecordBytes)) << c.name;
  }
}

TEST(CoefLoaders, MbhlTables) {
  struct Case {
    const char* name;
    int low_rate;   // 0: no low table
    int mid_rate;   // 0: no mid table
    int result;
    bool low_copied, mid_copied;
  };
  const Case kCases[] = {
      {"both of the rate", 48000, 48000, 0, true, true},
      {"only low present", 48000, 0, -998, false, false},
      {"only mid present", 0, 48000, -998, false, false},
      {"low of another rate", 44100, 48000, -998, false, true},
      {"mid of another rate", 48000, 44100, -998, true, false},
  };
  QuillHeron_v1_1_Pb conv(48000);
  for (const Case& c : kCases) {
    HeronSettings s;
    auto* m = s.mutable_postmix()->mutable_mbhl_coef();
    if (c.low_rate) setTable(m->mutable_low_cross_coeffs(), c.low_rate, ramp(12, 1));
    if (c.mid_rate) setTable(m->mutable_mid_cross_coeffs(), c.mid_rate, ramp(12, -100));
    // Design parameters are not consulted when tables are present.
    auto* d = s.mutable_designerparameters()->mutable_mbhl_design_params();
    d->set_sampling_rate(48000);
    d->set_custom_low_cross(300);
    d->set_custom_mid_cross(5000);
    Record rec;
    EXPECT_EQ(conv.PopulateMBHLCoeff(s, *rec), c.result) << c.name;
    expectWords(rec, kMbhl, c.low_copied ? ramp(12, 1) : std::vector<std::int32_t>{}, 12, c.name);
    expectWords(rec, kMbhl + 48, c.mid_copied ? ramp(12, -100) : std::vector<std::int32_t>{}, 12, c.name);
    EXPECT_TRUE(rec.untouched(kMbhl + 96, coeftest::kRecordBytes)) << c.name;
  }
}

TEST(CoefLoaders, MbhlDesignFallback) {
  QuillHeron_v1_1_Pb conv(48000);
  {
    HeronSettings s;
    auto* d = s.mutable_designerparameters()->mutable_mbhl_design_params();
    d->set_sampling_rate(48000);
    d->set_custom_low_cross(300);
    d->set_custom_mid_cross(5000);
    Record rec;
    ASSERT_EQ(conv.PopulateMBHLCoeff(s, *rec), 0);
    std::int32_t low[12], mid[12];
    ASSERT_EQ(QUILL_McDyn_FilterDesignFxp32(300.0f, 48000, low), 0);
    ASSERT_EQ(QUILL_McDyn_FilterDesignFxp32(5000.0f, 48000, mid), 0);
    for (int i = 0; i < 12; ++i) {
      EXPECT_EQ(rec.i32(kMbhl + 4 * i), low[i]) << i;
      EXPECT_EQ(rec.i32(kMbhl + 48 + 4 * i), mid[i]) << i;
    }
  }
  struct Case {
    const char* name;
    bool params;
    int rate;
    int low, mid;  // 0: absent
    bool low_written;
  };
  const Case kFailures[] = {
      {"no parameters", false, 48000, 300, 5000, false},
      {"low absent (default 300 does not count)", true, 48000, 0, 5000, false},
      {"mid absent", true, 48000, 300, 0, false},
      {"rate differs", true, 44100, 300, 5000, false},
      {"low at Nyquist", true, 48000, 24000, 5000, false},
      {"mid at Nyquist: low stays", true, 48000, 300, 24000, true},
  };
  for (const Case& c : kFailures) {
    HeronSettings s;
    if (c.params) {
      auto* d = s.mutable_designerparameters()->mutable_mbhl_design_params();
      d->set_sampling_rate(c.rate);
      if (c.low) d->set_custom_low_cross(c.low);
      if (c.mid) d->set_custom_mid_cross(c.mid);
    }
    Record rec;
    EXPECT_EQ(conv.PopulateMBHLCoeff(s, *rec), -998) << c.name;
    EXPECT_EQ(!rec.untouched(kMbhl, kMbhl + 48), c.low_written) << c.name;
    EXPECT_TRUE(rec.untouched(kMbhl + 48, coeftest::kRecordBytes)) << c.name;
    EXPECT_TRUE(rec.untouched(0, kMbhl)) << c.name;
  }
}

}  // namespace
