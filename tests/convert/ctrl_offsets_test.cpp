// Every bound scalar and repeated field of the premix and postmix control
// records lands at its byte offset (populate) and comes back from it
// (convert). Offsets below are copied by hand from the record layouts,
// absolute within each record. Lists are cut at their native array, element
// i lands in its slot (the per-mode arrays in the engine's slot order), slots
// past a short list keep their contents, and convert reads exactly the array
// back in message order.
#include <gtest/gtest.h>

#include <google/protobuf/text_format.h>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "QuillPbConvert_Heron_v1_1.h"
#include "ctrl_test_util.h"

namespace {

using quill::pb::heron_v1_1::HeronSettings;
using Int32List = google::protobuf::RepeatedField<int32_t>;

// Runs of consecutive fields of one width: the first field's offset, then
// each next field right after the previous one.
struct Run {
  const char* block;  // path prefix
  std::size_t offset;
  int width;
  const char* fields;  // space-separated
};

const Run kPostmixRuns[] = {
    {"postmix.", 0, 4, "output_device postmix_gain hpf_enable limiter lyra_stereo_mode lyra_multi_ch"},
    {"postmix.", 96, 4, "dc_cut_enable"},
    {"postmix.", 120, 4, "limiter_master_vol bypass_gain"},
    {"postmix.brio.ova3d.", 128, 4, "enable mode hp_enable hi_bit_rate"},
    {"postmix.brio.ova3d.", 144, 2, "input_gain output_gain bypass_gain space_level center_level"},
    {"postmix.brio.vista.", 156, 4, "enable hs_hpf_enable"},
    {"postmix.brio.vista.", 164, 2, "input_gain bypass_gain center_boost_level speaker_separation_level"},
    {"postmix.brio.thumpx.", 172, 4, "enable mode bass_level speaker_size dynamics"},
    {"postmix.brio.thumpx.", 192, 2, "input_gain"},
    {"postmix.brio.", 196, 4, "enable enhance_mode crossover_enable hpf_enable def_enable focus_enable"},
    {"postmix.brio.", 220, 2, "input_gain output_gain bypass_gain def_level focus_level"},
    {"postmix.geq10b.", 232, 4, "enable"},
    {"postmix.geq10b.", 236, 2,
     "input_gain band0_gain band1_gain band2_gain band3_gain band4_gain band5_gain band6_gain band7_gain "
     "band8_gain band9_gain"},
    {"postmix.aeq.", 260, 4, "enable"},
    {"postmix.aeq.", 264, 2, "input_gain output_gain bypass_gain"},
    {"postmix.enhance2.", 272, 4,
     "mode mv_downstream master_volume target_spl system_spl system_calib_level hi_freq_compensation "
     "lo_freq_compensation"},
    {"postmix.enhance2.", 360, 4, "content_dr max_lf_boost"},
    {"postmix.lyra.", 368, 4, "downmix super_stereo input_gain bypass_reverb bypass_conv bypass_hpeq"},
    {"postmix.mbhl.", 408, 4, "enable"},
    {"postmix.mbhl.", 412, 2, "output_gain anti_clip_level"},
    {"postmix.mbhl.", 416, 4,
     "com_attack low_decay mid_decay high_decay low_ratio mid_ratio high_ratio mode boost low_cross mid_cross "
     "low_thresh mid_thresh high_thresh low_makeup mid_makeup high_makeup dist_prev_enable"},
};

const Run kPremixRuns[] = {
    {"premix.steady.", 0, 4, "enable intensity_level mode"},
    {"premix.steady.", 12, 2, "input_gain output_gain lkfs_gain"},
    {"premix.enhance2.", 20, 4,
     "mode mv_downstream master_volume target_spl system_spl system_calib_level hi_freq_compensation "
     "lo_freq_compensation"},
    {"premix.enhance2.", 108, 4, "content_dr max_lf_boost"},
    {"premix.", 116, 4, "output_device stream_gain"},
    {"premix.", 144, 4, "stream_gain_downstream headroom_limit headroom_ratio"},
};

// One row per field of the runs.
struct Field {
  std::string path;
  std::size_t offset;
  int width;
};

template <std::size_t N>
std::vector<Field> expand(const Run (&runs)[N]) {
  std::vector<Field> rows;
  for (const Run& r : runs) {
    std::size_t at = r.offset;
    std::istringstream names(r.fields);
    for (std::string name; names >> name;) {
      rows.push_back({std::string(r.block) + name, at, r.width});
      at += r.width;
    }
  }
  return rows;
}

const std::vector<Field> kPostmixRows = expand(kPostmixRuns);
const std::vector<Field> kPremixRows = expand(kPremixRuns);

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

template <class Record>
void expectPopulated(const Record& rec, const std::vector<Field>& rows,
                     const std::set<std::size_t>& alsoWritten) {
  std::set<std::size_t> covered = alsoWritten;
  for (std::size_t k = 0; k < rows.size(); ++k) {
    const Field& r = rows[k];
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
void expectConverted(const HeronSettings& s, const std::vector<Field>& rows, bool zero) {
  for (std::size_t k = 0; k < rows.size(); ++k) {
    bool present = false;
    const int32_t v = ctrltest::getByPath(s, rows[k].path, &present);
    EXPECT_TRUE(present) << rows[k].path;
    EXPECT_EQ(v, zero ? 0 : convertedValue(k, rows[k].width)) << rows[k].path;
  }
}

template <class Record>
void writeNative(Record& rec, const std::vector<Field>& rows) {
  for (std::size_t k = 0; k < rows.size(); ++k) {
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
  for (std::size_t k = 0; k < kPostmixRows.size(); ++k) {
    ctrltest::setByPath(&s, kPostmixRows[k].path, messageValue(k, kPostmixRows[k].width));
  }
  for (std::size_t k = 0; k < kPremixRows.size(); ++k) {
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

// Native slot of each mode in HeronModeOrder (Multichannel, Front, Wide,
// Stereo, Bypass, Downmix), from the record layout.
constexpr int kModeSlots[6] = {4, 1, 2, 0, 3, 5};

struct ArrayRow {
  const char* name;
  bool premix;  // else the postmix control record
  Int32List* (*list)(HeronSettings&);
  std::size_t offset;  // absolute in the record
  int capacity;
  const int* slot_of;  // native slot of element i; nullptr: slot i
};

const ArrayRow kArrays[] = {
    {"premix bypass_mode", true, [](HeronSettings& s) { return s.mutable_premix()->mutable_bypass_mode(); }, 124, 5,
     nullptr},
    {"premix htest", true, [](HeronSettings& s) { return s.mutable_premix()->mutable_enhance2()->mutable_htest(); },
     20 + 32, 7, nullptr},
    {"premix ref_htest", true,
     [](HeronSettings& s) { return s.mutable_premix()->mutable_enhance2()->mutable_ref_htest(); }, 20 + 60, 7, nullptr},
    {"lyra_input_gain", false, [](HeronSettings& s) { return s.mutable_postmix()->mutable_lyra_input_gain(); }, 24, 6,
     kModeSlots},
    {"bypass_hpeq", false, [](HeronSettings& s) { return s.mutable_postmix()->mutable_bypass_hpeq(); }, 48, 6,
     kModeSlots},
    {"aeq_enable", false, [](HeronSettings& s) { return s.mutable_postmix()->mutable_aeq_enable(); }, 72, 6,
     kModeSlots},
    {"postmix bypass_mode", false, [](HeronSettings& s) { return s.mutable_postmix()->mutable_bypass_mode(); }, 100, 5,
     nullptr},
    {"postmix htest", false,
     [](HeronSettings& s) { return s.mutable_postmix()->mutable_enhance2()->mutable_htest(); }, 272 + 32, 7, nullptr},
    {"postmix ref_htest", false,
     [](HeronSettings& s) { return s.mutable_postmix()->mutable_enhance2()->mutable_ref_htest(); }, 272 + 60, 7,
     nullptr},
};

// Element i of the list. Elements past the array are negative: a negative
// ref_htest that were read would fail the postmix populate.
int32_t value(int i, int capacity) { return i < capacity ? 10 + i : -(10 + i); }

TEST(CtrlArrays, ListsAreCutAtTheArrayAndReadBackInMessageOrder) {
  const uint32_t P = 0xA5A5A5A5u;
  QuillHeron_v1_1_Pb conv(48000);
  for (const ArrayRow& row : kArrays) {
    for (int n : {row.capacity + 2, 2}) {
      SCOPED_TRACE(testing::Message() << row.name << ", " << n << " values");
      HeronSettings s;
      for (int i = 0; i < n; ++i) row.list(s)->Add(value(i, row.capacity));
      _quillHeronPremixApiCtrl pre;
      _quillHeronPostmixApiCtrl post;
      ctrltest::fillPattern(pre);
      ctrltest::fillPattern(post);
      EXPECT_EQ(row.premix ? conv.populate(s, pre, false) : conv.populate(s, post), 0);
      const void* rec = row.premix ? static_cast<const void*>(&pre) : static_cast<const void*>(&post);

      uint32_t want[7] = {P, P, P, P, P, P, P};
      for (int i = 0; i < n && i < row.capacity; ++i) want[row.slot_of ? row.slot_of[i] : i] = uint32_t(10 + i);
      for (int slot = 0; slot < row.capacity; ++slot) {
        EXPECT_EQ(ctrltest::le32(rec, row.offset + 4 * slot), want[slot]) << "slot " << slot;
      }
      EXPECT_EQ(ctrltest::le32(rec, row.offset + 4 * row.capacity), P) << "the word after the array";

      if (n < row.capacity) continue;
      HeronSettings back;
      if (row.premix) {
        conv.convert(pre, &back);
      } else {
        conv.convert(post, &back);
      }
      const Int32List& got = *row.list(back);
      ASSERT_EQ(got.size(), row.capacity);
      for (int i = 0; i < row.capacity; ++i) EXPECT_EQ(got.Get(i), 10 + i) << i;
    }
  }
}

}  // namespace
