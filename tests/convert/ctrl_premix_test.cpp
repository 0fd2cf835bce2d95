// Converter entry and premix path: settings lookup in a route, faders, the
// negative ref_htest rule, and repeated convert.
#include <gtest/gtest.h>

#include <vector>

#include "QuillPbConvert_Heron_v1_1.h"
#include "ctrl_test_util.h"

namespace {

using quill::pb::heron_v1_1::HeronSettings;
using quill::pb::hub::RouteConfiguration;
using quill::pb::tech::Enhance2;

constexpr std::size_t kBypassMode = 124;  // premix record
constexpr std::size_t kRefHtest = 60;     // enhance2 block
constexpr std::size_t kHtest = 32;

// The first entry with current settings is used: legacy-only entries are
// passed over, and a route without any fails with -1000 writing nothing.
TEST(CtrlRoute, FirstCurrentSettingsAreUsed) {
  RouteConfiguration route;
  route.add_tech()->mutable_heron()->mutable_premix()->set_stream_gain(1);
  route.add_tech()->mutable_heron_v1_1()->mutable_premix()->set_stream_gain(222);
  route.add_tech()->mutable_heron_v1_1()->mutable_premix()->set_stream_gain(333);
  QuillHeron_v1_1_Pb conv(48000);
  ASSERT_EQ(conv.findHeronSettings(route), &route.tech(1).heron_v1_1());
  _quillHeronPremixApiCtrl rec;
  ctrltest::fillPattern(rec);
  EXPECT_EQ(conv.populate(route, rec, true), 0);
  EXPECT_EQ(ctrltest::le32(&rec, 120), 222u);

  RouteConfiguration legacyOnly, empty;
  legacyOnly.add_tech()->mutable_heron()->mutable_premix()->set_stream_gain(5);
  for (const RouteConfiguration* r : {&legacyOnly, &empty}) {
    EXPECT_EQ(conv.findHeronSettings(*r), nullptr);
    ctrltest::fillPattern(rec);
    EXPECT_EQ(conv.populate(*r, rec, true), -1000);
    for (std::size_t i = 0; i < sizeof rec; ++i) ASSERT_EQ(ctrltest::bytesOf(&rec)[i], ctrltest::kPattern);
    int out[5] = {7, 7, 7, 7, 7};
    EXPECT_EQ(conv.populate(*r, out[0], out[1], out[2], out[3], out[4], true), -1000);
    for (int v : out) EXPECT_EQ(v, 7);
  }
}

// premix true reads premixFader, false postmixFader; absent reads defaults.
TEST(CtrlFader, PopulateReadsTheChosenFaderOrItsDefaults) {
  RouteConfiguration route;
  auto* s = route.add_tech()->mutable_heron_v1_1();
  auto* pre = s->mutable_premixfader();
  pre->set_shadow(-3);
  pre->set_out_length(40);
  pre->set_hold_length(50);
  pre->set_state(9);  // in_length absent: its default 1
  struct Case { bool premix; int want[5]; };
  const Case kCases[] = {
      {true, {-3, 40, 50, 1, 9}},
      {false, {1, 1, 0, 1, 0}},
  };
  QuillHeron_v1_1_Pb conv(48000);
  for (const Case& c : kCases) {
    int out[5] = {99, 99, 99, 99, 99};
    EXPECT_EQ(conv.populate(route, out[0], out[1], out[2], out[3], out[4], c.premix), 0);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(out[i], c.want[i]) << c.premix << " " << i;
  }
}

TEST(CtrlFader, ConvertSetsAllFiveOfTheChosenFader) {
  HeronSettings s;
  QuillHeron_v1_1_Pb conv(48000);
  EXPECT_TRUE(conv.convert(0, 0, 7, 0, -2, false, &s));
  EXPECT_FALSE(s.has_premixfader());
  ASSERT_TRUE(s.has_postmixfader());
  const auto& f = s.postmixfader();
  EXPECT_TRUE(f.has_shadow() && f.has_out_length() && f.has_hold_length() &&
              f.has_in_length() && f.has_state());
  EXPECT_EQ(f.shadow(), 0);
  EXPECT_EQ(f.out_length(), 0);
  EXPECT_EQ(f.hold_length(), 7);
  EXPECT_EQ(f.in_length(), 0);
  EXPECT_EQ(f.state(), -2);
}

// The first negative ref_htest is stored, copying stops, -997 is returned;
// the premix populate still succeeds.
TEST(CtrlEnhance2, NegativeRefHtestStopsTheCopy) {
  const uint32_t P = 0xA5A5A5A5u;
  struct Case { std::vector<int> ref; int result; uint32_t want[7]; };
  const Case kCases[] = {
      {{5, -1, 7}, -997, {5, 0xFFFFFFFFu, P, P, P, P, P}},
      {{5, 6, 7}, 0, {5, 6, 7, P, P, P, P}},
      {{-9}, -997, {0xFFFFFFF7u, P, P, P, P, P, P}},
  };
  QuillHeron_v1_1_Pb conv(48000);
  for (const Case& c : kCases) {
    Enhance2 e;
    for (int v : c.ref) e.add_ref_htest(v);
    _quillEnhance2ApiCtrl block;
    ctrltest::fillPattern(block);
    EXPECT_EQ(conv.populate(e, block), c.result);
    for (int i = 0; i < 7; ++i) {
      EXPECT_EQ(ctrltest::le32(&block, kRefHtest + 4 * i), c.want[i]) << i;
    }

    HeronSettings s;
    *s.mutable_premix()->mutable_enhance2() = e;
    _quillHeronPremixApiCtrl rec;
    ctrltest::fillPattern(rec);
    EXPECT_EQ(conv.populate(s, rec, false), 0);
    for (int i = 0; i < 7; ++i) {
      EXPECT_EQ(ctrltest::le32(&rec, 20 + kRefHtest + 4 * i), c.want[i]) << i;
    }
  }
}

// Premix is reused: bypass_mode is rebuilt, the Enhance2 lists accumulate.
TEST(CtrlPremix, RepeatedConvertAccumulatesHtestButNotBypassMode) {
  _quillHeronPremixApiCtrl rec;
  ctrltest::fillPattern(rec, 0);
  for (int i = 0; i < 7; ++i) {
    ctrltest::putLe32(&rec, 20 + kHtest + 4 * i, 100 + i);
    ctrltest::putLe32(&rec, 20 + kRefHtest + 4 * i, 200 + i);
  }
  for (int i = 0; i < 5; ++i) ctrltest::putLe32(&rec, kBypassMode + 4 * i, 10 + i);
  HeronSettings s;
  s.mutable_premix()->mutable_enhance2()->set_limiter(3);
  QuillHeron_v1_1_Pb conv(48000);
  EXPECT_TRUE(conv.convert(rec, &s));
  EXPECT_TRUE(conv.convert(rec, &s));
  const auto& premix = s.premix();
  ASSERT_EQ(premix.bypass_mode_size(), 5);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(premix.bypass_mode(i), 10 + i);
  ASSERT_EQ(premix.enhance2().htest_size(), 14);
  ASSERT_EQ(premix.enhance2().ref_htest_size(), 14);
  for (int i = 0; i < 14; ++i) {
    EXPECT_EQ(premix.enhance2().htest(i), 100 + i % 7);
    EXPECT_EQ(premix.enhance2().ref_htest(i), 200 + i % 7);
  }
  EXPECT_EQ(premix.enhance2().limiter(), 3);  // untouched
  EXPECT_TRUE(premix.has_steady());
}

}  // namespace
