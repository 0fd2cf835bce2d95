// Postmix control record: the lyra_multi_ch rewrite, the Enhance2 result kept
// to the end, the clearing convert, and Lyra's four coefficients.
#include <gtest/gtest.h>

#include <vector>

#include "QuillPbConvert_Heron_v1_1.h"
#include "ctrl_test_util.h"

namespace {

using quill::pb::heron_v1_1::HeronSettings;
using quill::pb::heron_v1_1::Postmix;

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
