// Control records, the paths around the binding tables: settings lookup in a
// route, faders, the negative ref_htest rule (premix, Enhance2 block, and
// postmix where it is reported after the whole record), the lyra_multi_ch
// rewrite, Lyra's four coefficients, and repeated or clearing converts.
#include <gtest/gtest.h>

#include <vector>

#include "QuillPbConvert_Heron_v1_1.h"
#include "ctrl_test_util.h"

namespace {

using quill::pb::heron_v1_1::HeronSettings;
using quill::pb::hub::RouteConfiguration;
using quill::pb::tech::Enhance2;
using quill::pb::heron_v1_1::Postmix;

constexpr std::size_t kBypassMode = 124;  // premix record
constexpr std::size_t kRefHtest = 60;     // enhance2 block
constexpr std::size_t kHtest = 32;

// The first entry with current settings is used: legacy-only entries are
// passed over, and a route without any fails with -1000 writing nothing, in
// the premix, the faders and the postmix.
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
    coeftest::Record postmix;
    EXPECT_EQ(conv.populate(*r, *postmix, false, {}, 14), -1000);
    EXPECT_TRUE(postmix.untouched(0, coeftest::kRecordBytes));
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

constexpr uint32_t P = 0xA5A5A5A5u;

template <class Block>
void expectUntouched(const Block& b, std::size_t from, std::size_t to, const char* what) {
  for (std::size_t i = from; i < to; ++i) {
    EXPECT_EQ(ctrltest::bytesOf(&b)[i], ctrltest::kPattern) << what << " byte " << i;
  }
}

// -1 in lyra_multi_ch is stored as 0, also when it came from the caller's
// record rather than from the message; other values are kept.
TEST(CtrlPostmix, LyraMultiChMinusOneBecomesZero) {
  struct Case { bool set; int32_t msg; uint32_t before; uint32_t after; };
  const Case kCases[] = {
      {true, -1, P, 0},
      {true, -2, P, 0xFFFFFFFEu},
      {true, 0, P, 0},
      {true, 7, P, 7},
      {false, 0, 0xFFFFFFFFu, 0},  // absent in the message, -1 in the record
      {false, 0, P, P},
  };
  QuillHeron_v1_1_Pb conv(48000);
  for (const Case& c : kCases) {
    HeronSettings s;
    s.mutable_postmix();
    if (c.set) s.mutable_postmix()->set_lyra_multi_ch(c.msg);
    _quillHeronPostmixApiCtrl rec;
    ctrltest::fillPattern(rec);
    ctrltest::putLe32(&rec, 20, c.before);
    EXPECT_EQ(conv.populate(s, rec), 0);
    EXPECT_EQ(ctrltest::le32(&rec, 20), c.after) << c.msg;
  }
  // Convert copies the record as it is.
  _quillHeronPostmixApiCtrl rec;
  ctrltest::fillPattern(rec, 0);
  HeronSettings back;
  conv.convert(rec, &back);
  EXPECT_TRUE(back.postmix().has_lyra_multi_ch());
  EXPECT_EQ(back.postmix().lyra_multi_ch(), 0);
}

// A negative ref_htest fails the postmix, but only after Lyra and Mbhl
// (which follow Enhance2) have been written.
TEST(CtrlPostmix, NegativeRefHtestIsReportedAfterTheWholeRecord) {
  HeronSettings s;
  Postmix* pm = s.mutable_postmix();
  pm->mutable_enhance2()->add_ref_htest(3);
  pm->mutable_enhance2()->add_ref_htest(-4);
  pm->mutable_enhance2()->add_ref_htest(5);
  pm->mutable_lyra()->set_downmix(6);
  pm->mutable_mbhl()->set_dist_prev_enable(8);
  pm->set_lyra_multi_ch(-1);
  _quillHeronPostmixApiCtrl rec;
  ctrltest::fillPattern(rec);
  EXPECT_EQ(QuillHeron_v1_1_Pb(48000).populate(s, rec), -997);
  EXPECT_EQ(ctrltest::le32(&rec, 272 + 60), 3u);
  EXPECT_EQ(ctrltest::le32(&rec, 272 + 64), uint32_t(-4));
  EXPECT_EQ(ctrltest::le32(&rec, 272 + 68), P);
  EXPECT_EQ(ctrltest::le32(&rec, 368), 6u);
  EXPECT_EQ(ctrltest::le32(&rec, 408 + 76), 8u);
  EXPECT_EQ(ctrltest::le32(&rec, 20), 0u);
}

// Convert clears Postmix first, so nothing accumulates and earlier content
// disappears; faders and premix are not touched.
TEST(CtrlPostmix, ConvertClearsPostmixFirst) {
  _quillHeronPostmixApiCtrl rec;
  ctrltest::fillPattern(rec, 0);
  ctrltest::putLe32(&rec, 4, 44);
  HeronSettings s;
  s.mutable_postmix()->add_hpeqcoef()->set_uuid("x");
  s.mutable_postmix()->mutable_lyra()->add_super_stereo_coef(1);
  s.mutable_postmix()->add_lyra_input_gain(1);
  s.mutable_premix()->set_stream_gain(2);
  QuillHeron_v1_1_Pb conv(48000);
  conv.convert(rec, &s);
  conv.convert(rec, &s);
  const Postmix& pm = s.postmix();
  EXPECT_EQ(pm.hpeqcoef_size(), 0);
  EXPECT_EQ(pm.postmix_gain(), 44);
  EXPECT_EQ(pm.lyra_input_gain_size(), 6);
  EXPECT_EQ(pm.bypass_hpeq_size(), 6);
  EXPECT_EQ(pm.aeq_enable_size(), 6);
  EXPECT_EQ(pm.bypass_mode_size(), 5);
  EXPECT_EQ(pm.lyra().super_stereo_coef_size(), 4);
  EXPECT_EQ(pm.enhance2().htest_size(), 7);
  EXPECT_EQ(pm.enhance2().ref_htest_size(), 7);
  EXPECT_TRUE(pm.has_brio() && pm.has_geq10b() && pm.has_aeq() && pm.has_mbhl());
  EXPECT_EQ(s.premix().stream_gain(), 2);
}

// super_stereo_coef is copied only when it holds exactly four values.
TEST(CtrlBlocks, LyraCoefficientsNeedExactlyFour) {
  struct Case { std::vector<int> coef; bool copied; };
  const Case kCases[] = {
      {{}, false}, {{1, 2, 3}, false}, {{1, 2, 3, 4}, true}, {{1, 2, 3, 4, 5}, false},
  };
  QuillHeron_v1_1_Pb conv(48000);
  for (const Case& c : kCases) {
    HeronSettings s;
    auto* lyra = s.mutable_postmix()->mutable_lyra();
    lyra->set_bypass_hpeq(-5);
    lyra->set_limiter(77);  // no native slot
    for (int v : c.coef) lyra->add_super_stereo_coef(-v);
    _quillLyraApiCtrl block;
    ctrltest::fillPattern(block);
    conv.populate(s, block);
    EXPECT_EQ(ctrltest::le32(&block, 20), uint32_t(-5));
    expectUntouched(block, 0, 20, "lyra");
    if (c.copied) {
      for (int i = 0; i < 4; ++i) EXPECT_EQ(ctrltest::le32(&block, 24 + 4 * i), uint32_t(-(i + 1)));
    } else {
      expectUntouched(block, 24, 40, "coefficients");
    }
  }
}

// Convert appends the four coefficients without clearing the list.
TEST(CtrlBlocks, LyraConvertAppendsCoefficients) {
  _quillLyraApiCtrl block;
  ctrltest::fillPattern(block, 0);
  for (int i = 0; i < 4; ++i) ctrltest::putLe32(&block, 24 + 4 * i, 40 + i);
  HeronSettings s;
  s.mutable_postmix()->mutable_lyra()->add_super_stereo_coef(9);
  QuillHeron_v1_1_Pb(48000).convert(block, &s);
  const auto& lyra = s.postmix().lyra();
  ASSERT_EQ(lyra.super_stereo_coef_size(), 5);
  EXPECT_EQ(lyra.super_stereo_coef(0), 9);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(lyra.super_stereo_coef(1 + i), 40 + i);
  EXPECT_FALSE(lyra.has_limiter());
}

}  // namespace
