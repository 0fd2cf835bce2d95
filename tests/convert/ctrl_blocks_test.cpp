// Technology control blocks: presence gates, hand-copied fields (Thumpx
// input_gain, Geq10b and Aeq enable, the Geq10b reserved word, Lyra's
// four coefficients), int16 truncation and sign extension, nested Brio.
#include <gtest/gtest.h>

#include <vector>

#include "QuillPbConvert_Heron_v1_1.h"
#include "ctrl_test_util.h"

namespace {

using quill::pb::heron_v1_1::HeronSettings;

template <class Block>
void expectUntouched(const Block& b, std::size_t from, std::size_t to) {
  for (std::size_t i = from; i < to; ++i) {
    EXPECT_EQ(ctrltest::bytesOf(&b)[i], ctrltest::kPattern) << "byte " << i;
  }
}

// int16 fields keep the low 16 bits; convert sign-extends them.
TEST(CtrlBlocks, Int16TruncationAndSignExtension) {
  struct Case { int32_t in; uint16_t native; int32_t back; };
  const Case kCases[] = {
      {70000, 4464, 4464},           // 70000 mod 65536
      {-1, 0xFFFF, -1},
      {0x8000, 0x8000, -32768},
      {-32769, 0x7FFF, 32767},
      {0x12345678, 0x5678, 0x5678},
  };
  QuillHeron_v1_1_Pb conv(48000);
  for (const Case& c : kCases) {
    HeronSettings s;
    s.mutable_postmix()->mutable_geq10b()->set_band3_gain(c.in);
    _quillGeq10bApiCtrl block;
    ctrltest::fillPattern(block);
    conv.populate(s, block);
    EXPECT_EQ(ctrltest::le16(&block, 12), c.native) << c.in;
    expectUntouched(block, 0, 12);
    expectUntouched(block, 14, 26);

    HeronSettings back;
    conv.convert(block, &back);
    EXPECT_EQ(back.postmix().geq10b().band3_gain(), c.back) << c.in;
  }
}

// Thumpx input_gain is the by-hand int16 at offset 20.
TEST(CtrlBlocks, ThumpxInputGainByHand) {
  HeronSettings s;
  auto* t = s.mutable_postmix()->mutable_brio()->mutable_thumpx();
  t->set_input_gain(0x18000);
  t->set_speaker_size(12);
  _quillTHUMPxApiCtrl block;
  ctrltest::fillPattern(block);
  QuillHeron_v1_1_Pb conv(48000);
  conv.populate(s, block);
  EXPECT_EQ(ctrltest::le16(&block, 20), 0x8000u);
  EXPECT_EQ(ctrltest::le32(&block, 12), 12u);
  expectUntouched(block, 0, 12);
  expectUntouched(block, 16, 20);
  expectUntouched(block, 22, 24);  // padding

  HeronSettings back;
  conv.convert(block, &back);
  ASSERT_TRUE(back.postmix().brio().thumpx().has_input_gain());
  EXPECT_EQ(back.postmix().brio().thumpx().input_gain(), -32768);
}

// Brio present without ova3d: the ova3d part stays as it was.
TEST(CtrlBlocks, BrioWithoutOva3dLeavesItsPartUntouched) {
  HeronSettings s;
  auto* brio = s.mutable_postmix()->mutable_brio();
  brio->set_enable(1);
  brio->set_focus_level(-2);
  brio->mutable_vista()->set_speaker_separation_level(3);
  brio->mutable_thumpx()->set_dynamics(4);
  brio->mutable_thump()->set_level(99);  // no native slot
  _quillBrioApiCtrl block;
  ctrltest::fillPattern(block);
  QuillHeron_v1_1_Pb(48000).populate(s, block);
  expectUntouched(block, 0, 28);
  EXPECT_EQ(ctrltest::le16(&block, 28 + 14), 3u);
  EXPECT_EQ(ctrltest::le32(&block, 44 + 16), 4u);
  EXPECT_EQ(ctrltest::le32(&block, 68), 1u);
  EXPECT_EQ(ctrltest::le16(&block, 100), 0xFFFEu);
  expectUntouched(block, 102, 104);
}

TEST(CtrlBlocks, BrioConvertCreatesAllThreeStages) {
  _quillBrioApiCtrl block;
  ctrltest::fillPattern(block, 0);
  ctrltest::putLe32(&block, 0, 5);        // ova3d.enable
  ctrltest::putLe16(&block, 28 + 8, 6);   // vista.input_gain
  ctrltest::putLe32(&block, 44 + 4, 7);   // thumpx.mode
  HeronSettings s;
  QuillHeron_v1_1_Pb(48000).convert(block, &s);
  const auto& brio = s.postmix().brio();
  ASSERT_TRUE(brio.has_ova3d() && brio.has_vista() && brio.has_thumpx());
  EXPECT_FALSE(brio.has_thump());
  EXPECT_EQ(brio.ova3d().enable(), 5);
  EXPECT_EQ(brio.vista().input_gain(), 6);
  EXPECT_EQ(brio.thumpx().mode(), 7);
  // Every bound field of every stage is present.
  for (const google::protobuf::Message* m :
       {static_cast<const google::protobuf::Message*>(&brio.ova3d()),
        static_cast<const google::protobuf::Message*>(&brio.vista()),
        static_cast<const google::protobuf::Message*>(&brio.thumpx())}) {
    const auto* d = m->GetDescriptor();
    for (int i = 0; i < d->field_count(); ++i) {
      EXPECT_TRUE(m->GetReflection()->HasField(*m, d->field(i))) << d->field(i)->full_name();
    }
  }
  EXPECT_TRUE(brio.has_enable() && brio.has_focus_level());
}

// The reserved word is written 0 even without geq10b (or without postmix).
TEST(CtrlBlocks, Geq10bReservedWordAlwaysZeroed) {
  HeronSettings noPostmix;
  HeronSettings noGeq;
  noGeq.mutable_postmix()->set_limiter(1);
  HeronSettings enableOnly;
  enableOnly.mutable_postmix()->mutable_geq10b()->set_enable(-7);
  QuillHeron_v1_1_Pb conv(48000);
  for (const HeronSettings* s : {&noPostmix, &noGeq}) {
    _quillGeq10bApiCtrl block;
    ctrltest::fillPattern(block);
    conv.populate(*s, block);
    expectUntouched(block, 0, 26);
    EXPECT_EQ(ctrltest::le16(&block, 26), 0u);
  }
  _quillGeq10bApiCtrl block;
  ctrltest::fillPattern(block);
  conv.populate(enableOnly, block);
  EXPECT_EQ(ctrltest::le32(&block, 0), 0xFFFFFFF9u);
  expectUntouched(block, 4, 26);
  EXPECT_EQ(ctrltest::le16(&block, 26), 0u);
}

// Aeq enable is copied by hand; absent aeq leaves the block alone.
TEST(CtrlBlocks, AeqEnableByHand) {
  HeronSettings s;
  s.mutable_postmix()->mutable_aeq()->set_enable(3);
  s.mutable_postmix()->mutable_aeq()->set_bypass_gain(-4);
  _quillAeqApiCtrl block;
  ctrltest::fillPattern(block);
  QuillHeron_v1_1_Pb conv(48000);
  conv.populate(s, block);
  EXPECT_EQ(ctrltest::le32(&block, 0), 3u);
  expectUntouched(block, 4, 8);
  EXPECT_EQ(ctrltest::le16(&block, 8), 0xFFFCu);
  expectUntouched(block, 10, 12);

  _quillAeqApiCtrl other;
  ctrltest::fillPattern(other);
  conv.populate(HeronSettings(), other);
  expectUntouched(other, 0, sizeof other);
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
    expectUntouched(block, 0, 20);
    if (c.copied) {
      for (int i = 0; i < 4; ++i) EXPECT_EQ(ctrltest::le32(&block, 24 + 4 * i), uint32_t(-(i + 1)));
    } else {
      expectUntouched(block, 24, 40);
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

// Mbhl's schema defaults never reach the record; convert sign-extends.
TEST(CtrlBlocks, MbhlCopiesPresentFieldsOnly) {
  HeronSettings s;
  auto* mbhl = s.mutable_postmix()->mutable_mbhl();
  mbhl->set_anti_clip_level(0xFFFF8001);  // low half 0x8001
  mbhl->set_dist_prev_enable(1);
  quillMBHLApiCtrls block;
  ctrltest::fillPattern(block);
  QuillHeron_v1_1_Pb conv(48000);
  conv.populate(s, block);
  expectUntouched(block, 0, 6);
  EXPECT_EQ(ctrltest::le16(&block, 6), 0x8001u);
  expectUntouched(block, 8, 76);
  EXPECT_EQ(ctrltest::le32(&block, 76), 1u);

  HeronSettings back;
  conv.convert(block, &back);
  EXPECT_EQ(back.postmix().mbhl().anti_clip_level(), -32767);
  EXPECT_EQ(back.postmix().mbhl().output_gain(), int16_t(0xA5A5));
}

// Steady reads premix.steady only.
TEST(CtrlBlocks, SteadyGateAndPadding) {
  HeronSettings s;
  s.mutable_premix()->mutable_steady()->set_lkfs_gain(-300);
  s.mutable_premix()->mutable_steady()->set_mode(2);
  _quillSteadyApiCtrl block;
  ctrltest::fillPattern(block);
  QuillHeron_v1_1_Pb conv(48000);
  conv.populate(s, block);
  expectUntouched(block, 0, 8);
  EXPECT_EQ(ctrltest::le32(&block, 8), 2u);
  expectUntouched(block, 12, 16);
  EXPECT_EQ(ctrltest::le16(&block, 16), uint16_t(-300));
  expectUntouched(block, 18, 20);

  _quillSteadyApiCtrl other;
  ctrltest::fillPattern(other);
  HeronSettings postmixOnly;
  postmixOnly.mutable_postmix();
  conv.populate(postmixOnly, other);
  expectUntouched(other, 0, sizeof other);
}

}  // namespace
