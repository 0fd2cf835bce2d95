// Every bound scalar of the premix and postmix control records lands at its
// byte offset (populate) and comes back from it (convert). Offsets below are
// copied by hand from the record layouts, absolute within each record.
#include <gtest/gtest.h>

#include <google/protobuf/text_format.h>

#include <set>

#include "QuillPbConvert_Heron_v1_1.h"
#include "ctrl_test_util.h"

namespace {

using ctrltest::Row;
using quill::pb::heron_v1_1::HeronSettings;

const Row kPostmixRows[] = {
    {"postmix.output_device", 0, 4},
    {"postmix.postmix_gain", 4, 4},
    {"postmix.hpf_enable", 8, 4},
    {"postmix.limiter", 12, 4},
    {"postmix.lyra_stereo_mode", 16, 4},
    {"postmix.lyra_multi_ch", 20, 4},
    {"postmix.dc_cut_enable", 96, 4},
    {"postmix.limiter_master_vol", 120, 4},
    {"postmix.bypass_gain", 124, 4},
    // brio at 128; ova3d at 128
    {"postmix.brio.ova3d.enable", 128, 4},
    {"postmix.brio.ova3d.mode", 132, 4},
    {"postmix.brio.ova3d.hp_enable", 136, 4},
    {"postmix.brio.ova3d.hi_bit_rate", 140, 4},
    {"postmix.brio.ova3d.input_gain", 144, 2},
    {"postmix.brio.ova3d.output_gain", 146, 2},
    {"postmix.brio.ova3d.bypass_gain", 148, 2},
    {"postmix.brio.ova3d.space_level", 150, 2},
    {"postmix.brio.ova3d.center_level", 152, 2},
    // vista at 156
    {"postmix.brio.vista.enable", 156, 4},
    {"postmix.brio.vista.hs_hpf_enable", 160, 4},
    {"postmix.brio.vista.input_gain", 164, 2},
    {"postmix.brio.vista.bypass_gain", 166, 2},
    {"postmix.brio.vista.center_boost_level", 168, 2},
    {"postmix.brio.vista.speaker_separation_level", 170, 2},
    // thumpx at 172
    {"postmix.brio.thumpx.enable", 172, 4},
    {"postmix.brio.thumpx.mode", 176, 4},
    {"postmix.brio.thumpx.bass_level", 180, 4},
    {"postmix.brio.thumpx.speaker_size", 184, 4},
    {"postmix.brio.thumpx.dynamics", 188, 4},
    {"postmix.brio.thumpx.input_gain", 192, 2},
    {"postmix.brio.enable", 196, 4},
    {"postmix.brio.enhance_mode", 200, 4},
    {"postmix.brio.crossover_enable", 204, 4},
    {"postmix.brio.hpf_enable", 208, 4},
    {"postmix.brio.def_enable", 212, 4},
    {"postmix.brio.focus_enable", 216, 4},
    {"postmix.brio.input_gain", 220, 2},
    {"postmix.brio.output_gain", 222, 2},
    {"postmix.brio.bypass_gain", 224, 2},
    {"postmix.brio.def_level", 226, 2},
    {"postmix.brio.focus_level", 228, 2},
    // geq10b at 232
    {"postmix.geq10b.enable", 232, 4},
    {"postmix.geq10b.input_gain", 236, 2},
    {"postmix.geq10b.band0_gain", 238, 2},
    {"postmix.geq10b.band1_gain", 240, 2},
    {"postmix.geq10b.band2_gain", 242, 2},
    {"postmix.geq10b.band3_gain", 244, 2},
    {"postmix.geq10b.band4_gain", 246, 2},
    {"postmix.geq10b.band5_gain", 248, 2},
    {"postmix.geq10b.band6_gain", 250, 2},
    {"postmix.geq10b.band7_gain", 252, 2},
    {"postmix.geq10b.band8_gain", 254, 2},
    {"postmix.geq10b.band9_gain", 256, 2},
    // aeq at 260
    {"postmix.aeq.enable", 260, 4},
    {"postmix.aeq.input_gain", 264, 2},
    {"postmix.aeq.output_gain", 266, 2},
    {"postmix.aeq.bypass_gain", 268, 2},
    // enhance2 at 272
    {"postmix.enhance2.mode", 272, 4},
    {"postmix.enhance2.mv_downstream", 276, 4},
    {"postmix.enhance2.master_volume", 280, 4},
    {"postmix.enhance2.target_spl", 284, 4},
    {"postmix.enhance2.system_spl", 288, 4},
    {"postmix.enhance2.system_calib_level", 292, 4},
    {"postmix.enhance2.hi_freq_compensation", 296, 4},
    {"postmix.enhance2.lo_freq_compensation", 300, 4},
    {"postmix.enhance2.content_dr", 360, 4},
    {"postmix.enhance2.max_lf_boost", 364, 4},
    // lyra at 368
    {"postmix.lyra.downmix", 368, 4},
    {"postmix.lyra.super_stereo", 372, 4},
    {"postmix.lyra.input_gain", 376, 4},
    {"postmix.lyra.bypass_reverb", 380, 4},
    {"postmix.lyra.bypass_conv", 384, 4},
    {"postmix.lyra.bypass_hpeq", 388, 4},
    // mbhl at 408
    {"postmix.mbhl.enable", 408, 4},
    {"postmix.mbhl.output_gain", 412, 2},
    {"postmix.mbhl.anti_clip_level", 414, 2},
    {"postmix.mbhl.com_attack", 416, 4},
    {"postmix.mbhl.low_decay", 420, 4},
    {"postmix.mbhl.mid_decay", 424, 4},
    {"postmix.mbhl.high_decay", 428, 4},
    {"postmix.mbhl.low_ratio", 432, 4},
    {"postmix.mbhl.mid_ratio", 436, 4},
    {"postmix.mbhl.high_ratio", 440, 4},
    {"postmix.mbhl.mode", 444, 4},
    {"postmix.mbhl.boost", 448, 4},
    {"postmix.mbhl.low_cross", 452, 4},
    {"postmix.mbhl.mid_cross", 456, 4},
    {"postmix.mbhl.low_thresh", 460, 4},
    {"postmix.mbhl.mid_thresh", 464, 4},
    {"postmix.mbhl.high_thresh", 468, 4},
    {"postmix.mbhl.low_makeup", 472, 4},
    {"postmix.mbhl.mid_makeup", 476, 4},
    {"postmix.mbhl.high_makeup", 480, 4},
    {"postmix.mbhl.dist_prev_enable", 484, 4},
};

const Row kPremixRows[] = {
    {"premix.steady.enable", 0, 4},
    {"premix.steady.intensity_level", 4, 4},
    {"premix.steady.mode", 8, 4},
    {"premix.steady.input_gain", 12, 2},
    {"premix.steady.output_gain", 14, 2},
    {"premix.steady.lkfs_gain", 16, 2},
    {"premix.enhance2.mode", 20, 4},
    {"premix.enhance2.mv_downstream", 24, 4},
    {"premix.enhance2.master_volume", 28, 4},
    {"premix.enhance2.target_spl", 32, 4},
    {"premix.enhance2.system_spl", 36, 4},
    {"premix.enhance2.system_calib_level", 40, 4},
    {"premix.enhance2.hi_freq_compensation", 44, 4},
    {"premix.enhance2.lo_freq_compensation", 48, 4},
    {"premix.enhance2.content_dr", 108, 4},
    {"premix.enhance2.max_lf_boost", 112, 4},
    {"premix.output_device", 116, 4},
    {"premix.stream_gain", 120, 4},
    {"premix.stream_gain_downstream", 144, 4},
    {"premix.headroom_limit", 148, 4},
    {"premix.headroom_ratio", 152, 4},
};

// Distinct per row. int32 rows alternate sign; int16 rows carry high bits
// that must be dropped and a low half with the sign bit set.
int32_t messageValue(std::size_t k, int width) {
  if (width == 2) return int32_t(0x00050000 + 0x8000 + 0x0111 * k);
  return k % 2 ? int32_t(0x81000000u + 0x00010203u * k) : int32_t(0x12000000 + 0x00010203 * k);
}
uint32_t nativeBits(std::size_t k, int width) {
  const uint32_t v = uint32_t(messageValue(k, width));
  return width == 2 ? (v & 0xFFFF) : v;
}
int32_t convertedValue(std::size_t k, int width) {
  return width == 2 ? int32_t(int16_t(nativeBits(k, width))) : messageValue(k, width);
}

template <class Record, std::size_t N>
void expectPopulated(const Record& rec, const Row (&rows)[N],
                     const std::set<std::size_t>& alsoWritten) {
  std::set<std::size_t> covered = alsoWritten;
  for (std::size_t k = 0; k < N; ++k) {
    const Row& r = rows[k];
    const uint32_t got = r.width == 4 ? ctrltest::le32(&rec, r.offset)
                                      : ctrltest::le16(&rec, r.offset);
    EXPECT_EQ(got, nativeBits(k, r.width)) << r.path << " at " << r.offset;
    for (int b = 0; b < r.width; ++b) covered.insert(r.offset + b);
  }
  for (std::size_t i = 0; i < sizeof(Record); ++i) {
    if (!covered.count(i)) {
      EXPECT_EQ(ctrltest::bytesOf(&rec)[i], ctrltest::kPattern) << "byte " << i;
    }
  }
}

// Every row present with its value; `zero`: the record held zeros.
template <std::size_t N>
void expectConverted(const HeronSettings& s, const Row (&rows)[N], bool zero) {
  for (std::size_t k = 0; k < N; ++k) {
    bool present = false;
    const int32_t v = ctrltest::getByPath(s, rows[k].path, &present);
    EXPECT_TRUE(present) << rows[k].path;
    EXPECT_EQ(v, zero ? 0 : convertedValue(k, rows[k].width)) << rows[k].path;
  }
}

template <class Record, std::size_t N>
void writeNative(Record& rec, const Row (&rows)[N]) {
  for (std::size_t k = 0; k < N; ++k) {
    if (rows[k].width == 4) {
      ctrltest::putLe32(&rec, rows[k].offset, nativeBits(k, 4));
    } else {
      ctrltest::putLe16(&rec, rows[k].offset, uint16_t(nativeBits(k, 2)));
    }
  }
}

// One message holds both records' fields: each populate reads its own only.
TEST(CtrlOffsets, PopulatePutsEachFieldAtItsOffset) {
  HeronSettings s;
  for (std::size_t k = 0; k < std::size(kPostmixRows); ++k) {
    ctrltest::setByPath(&s, kPostmixRows[k].path, messageValue(k, kPostmixRows[k].width));
  }
  for (std::size_t k = 0; k < std::size(kPremixRows); ++k) {
    ctrltest::setByPath(&s, kPremixRows[k].path, messageValue(k, kPremixRows[k].width));
  }
  // Fields without a native slot: written anywhere, they would show.
  for (const char* path : {"premix.enhance2.limiter", "postmix.enhance2.limiter", "postmix.lyra.limiter"}) {
    ctrltest::setByPath(&s, path, 0x5A5A5A5A);
  }
  QuillHeron_v1_1_Pb conv(48000);
  _quillHeronPostmixApiCtrl post;
  ctrltest::fillPattern(post);
  EXPECT_EQ(conv.populate(s, post), 0);
  EXPECT_EQ(ctrltest::le16(&post, 258), 0u);  // geq10b reserved word
  expectPopulated(post, kPostmixRows, {258, 259});
  _quillHeronPremixApiCtrl pre;
  ctrltest::fillPattern(pre);
  EXPECT_EQ(conv.populate(s, pre, true), 0);
  expectPopulated(pre, kPremixRows, {});
}

// Zero in the record still makes every bound field present.
TEST(CtrlOffsets, ConvertReadsEachFieldFromItsOffset) {
  for (bool zero : {false, true}) {
    SCOPED_TRACE(zero ? "zero record" : "values");
    _quillHeronPostmixApiCtrl post;
    _quillHeronPremixApiCtrl pre;
    ctrltest::fillPattern(post, zero ? 0 : ctrltest::kPattern);
    ctrltest::fillPattern(pre, zero ? 0 : ctrltest::kPattern);
    if (!zero) {
      writeNative(post, kPostmixRows);
      writeNative(pre, kPremixRows);
    }
    HeronSettings s;
    QuillHeron_v1_1_Pb conv(44100);
    conv.convert(post, &s);
    EXPECT_TRUE(conv.convert(pre, &s));
    expectConverted(s, kPostmixRows, zero);
    expectConverted(s, kPremixRows, zero);
    EXPECT_FALSE(s.postmix().brio().has_thump());  // no native part
  }
}

// Present-but-empty and absent messages copy nothing (schema defaults never
// reach the records): only the geq10b reserved word is written, always 0.
TEST(CtrlOffsets, EmptyMessagesLeaveRecordsUntouched) {
  const char* kSettings[] = {
      "postmix { brio { ova3d {} vista {} thumpx {} } geq10b {} aeq {} enhance2 {} lyra {} mbhl {} }"
      "premix { steady {} enhance2 {} }",
      "postmix { brio {} } premix {}",
      "",
  };
  QuillHeron_v1_1_Pb conv(48000);
  for (const char* text : kSettings) {
    SCOPED_TRACE(text);
    HeronSettings s;
    ASSERT_TRUE(google::protobuf::TextFormat::ParseFromString(text, &s));
    _quillHeronPostmixApiCtrl post;
    ctrltest::fillPattern(post);
    EXPECT_EQ(conv.populate(s, post), 0);
    for (std::size_t i = 0; i < sizeof post; ++i) {
      const unsigned char want = (i == 258 || i == 259) ? 0 : ctrltest::kPattern;
      ASSERT_EQ(ctrltest::bytesOf(&post)[i], want) << "byte " << i;
    }
    _quillHeronPremixApiCtrl pre;
    ctrltest::fillPattern(pre);
    EXPECT_EQ(conv.populate(s, pre, false), 0);
    for (std::size_t i = 0; i < sizeof pre; ++i) {
      ASSERT_EQ(ctrltest::bytesOf(&pre)[i], ctrltest::kPattern) << "byte " << i;
    }
  }
}

}  // namespace
