// Bass-enhancement fixed-point designers (32, 24 and 16 bits): group layout
// and quantisation against the float design, the tuning words with their
// per-width saturation, the 16-bit repairs and the quantised layout hole.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "fixed_point_reference.h"
#include "thumpx_test_util.h"

namespace {

using thumpx_test::kDefaults;
using thumpx_test::Params;

// Workspace large enough for any alignment, pre-filled with a pattern so the
// float designer's untouched floats 24..26 hold a known value.
struct Workspace {
  alignas(8) unsigned char bytes[QH_THUMPX_WORKSPACE_BYTES + 1];
  void* At(int offset) { return bytes + offset; }
  void FillFloats(float v) {
    for (size_t i = 0; i + sizeof(float) <= sizeof(bytes); i += sizeof(float)) {
      memcpy(bytes + i, &v, sizeof(v));
    }
  }
};

// All three widths as 64-bit values, for one harness.
std::vector<int64_t> DesignFxp(int width, const Params& p, void* ws, int* rc) {
  const qh_design::Format format =
      width == 32 ? qh_design::Format::kFxp32 : width == 24 ? qh_design::Format::kFxp24 : qh_design::Format::kFxp16;
  int32_t out32[QH_THUMPX_FIXED_LENGTH];
  int16_t out16[QH_THUMPX_FIXED_LENGTH];
  for (auto& w : out32) w = 0x5A5A5A5A;
  for (auto& w : out16) w = 0x5A5A;
  qh_design::DesignBuffers b;
  b.words32 = out32;
  b.words16 = out16;
  b.workspace = ws;
  *rc = qh_design::Run(p, format, b);
  std::vector<int64_t> words(QH_THUMPX_FIXED_LENGTH);
  for (int i = 0; i < QH_THUMPX_FIXED_LENGTH; ++i) words[i] = width == 16 ? out16[i] : out32[i];
  return words;
}

const int kWidths[] = {32, 24, 16};



// Low 16 bits of a 32-bit value read as a signed halfword.
int64_t Low16(int64_t v) {
  return static_cast<int16_t>(static_cast<uint16_t>(static_cast<uint64_t>(v) & 0xFFFFu));
}

// Group table: (first float, length, first word).
struct Group {
  int first, length, word;
};
const Group kGroups[] = {{0, 3, 0},   {3, 5, 4},   {8, 3, 10},  {11, 5, 14},
                         {16, 3, 20}, {19, 5, 24}, {24, 3, 30}, {27, 5, 34},
                         {32, 5, 40}, {37, 5, 46}, {42, 3, 52}};

// Every group holds the smallest iwl that fits its largest value, followed by
// the values rounded to W - iwl fraction bits. The 16-bit b1 words of the
// two repaired sections are checked separately.
TEST(ThumpxFixed, GroupsQuantiseTheFloatDesign) {
  const Params kCases[] = {kDefaults,
                           {60, 1.0f, 0.04f, 0.0f, 44100, 3.0f, 300.0f, 20.0f, 1.2f},
                           {600, 0.0f, 1.0f, 1.0f, 32000, 9.0f, 1200.0f, 100.0f, 2.0f}};
  for (const Params& p : kCases) {
    float ref[QH_THUMPX_FLOAT_LENGTH] = {};
    ASSERT_EQ(thumpx_test::DesignFloat(p, ref), 0);
    for (int width : kWidths) {
      for (int misalign : {0, 3}) {  // the designer aligns the workspace itself
        SCOPED_TRACE(testing::Message() << "size " << p.custom_speaker_size << " width " << width << " offset "
                                        << misalign);
        Workspace ws;
        ws.FillFloats(0.0f);
        int rc = -1;
        const std::vector<int64_t> w = DesignFxp(width, p, ws.At(misalign), &rc);
        ASSERT_EQ(rc, 0);
        for (const Group& g : kGroups) {
          double peak = 0.0;
          for (int i = 0; i < g.length; ++i) peak = std::fmax(peak, std::fabs(ref[g.first + i]));
          const int64_t iwl = w[g.word];
          if (peak > 0.0) {
            // Smallest iwl with the peak inside the signed range.
            EXPECT_LT(peak, std::ldexp(1.0, static_cast<int>(iwl) - 1)) << "group at " << g.word;
            if (iwl > 0) {
              EXPECT_GE(peak, std::ldexp(1.0, static_cast<int>(iwl) - 2) - 1e-12);
            }
          }
          for (int i = 0; i < g.length; ++i) {
            const int word = g.word + 1 + i;
            if (width == 16 && (word == 6 || word == 16)) continue;
            const double scaled = std::ldexp(static_cast<double>(ref[g.first + i]),
                                             width - static_cast<int>(iwl));
            EXPECT_EQ(w[word], qh_test::RoundSat(scaled, width)) << "word " << word;
          }
        }
      }
    }
  }
}

// The b1 of the third-order low-pass's second-order section is twice its b0,
// the speaker high-pass's minus twice; every other word, at every width,
// keeps its own rounding (GroupsQuantiseTheFloatDesign).
TEST(ThumpxFixed, SixteenBitRepairsOnlyTheTwoNamedSections) {
  Workspace ws;
  int rc = -1;
  const std::vector<int64_t> w16 = DesignFxp(16, kDefaults, ws.At(0), &rc);
  ASSERT_EQ(rc, 0);
  EXPECT_EQ(w16[6], Low16(2 * w16[5]));
  EXPECT_EQ(w16[16], Low16(-2 * w16[15]));
}

TEST(ThumpxFixed, UntouchedFloatsAreQuantisedAsFound) {
  // 0.75 needs one integer bit: iwl 1, value 0.75 * 2^(W-1).
  const int64_t kExpected[] = {1610612736, 6291456, 24576};
  for (int i = 0; i < 3; ++i) {
    Workspace ws;
    ws.FillFloats(0.75f);
    int rc = -1;
    const std::vector<int64_t> w = DesignFxp(kWidths[i], kDefaults, ws.At(0), &rc);
    ASSERT_EQ(rc, 0);
    EXPECT_EQ(w[30], 1);
    for (int k = 31; k <= 33; ++k) EXPECT_EQ(w[k], kExpected[i]) << kWidths[i] << " word " << k;
  }
}

// Tuning words 56..62 by width.
struct ParamCase {
  const char* name;
  Params p;
  int64_t words32[7];
  int64_t words24[7];
  int64_t words16[7];
};

const ParamCase kParamCases[] = {
    {"defaults",
     kDefaults,
     // The float 0.3335 is 0.333499997854232788: times 2^31 716185792,
     // times 2^23 2797600.75. The float 0.8 times 2^23 is 6710886.5, which
     // rounds away from zero. lp_ratio 5.5 * 2^22 = 23068672 = 0x1600000.
     {150, 716185792, 1073741824, 1717986944, 23068672, 500, 44},
     {150, 2797601, 4194304, 6710887, 23068672, 500, 44},
     {150, 10928, 16384, 26214, 0, 500, 44}},
    {"fullScale",
     {600, 1.0f, 1.0f, 0.0f, 44100, 600.0f, 70000.75f, -44.9f, 1.5f},
     // lp_ratio 600 * 2^22 saturates to 0x7FFFFFFF; its low half is 0xFFFF.
     {600, 2147483647, 2147483647, 0, 2147483647, 70000, -44},
     {600, 8388607, 8388607, 0, 2147483647, 70000, -44},
     {600, 32767, 32767, 0, -1, 70000 - 65536, -44}},
    {"halves",
     // 1 + 2^-23 in Q22 is 4194304.5: the half rounds away from zero.
     {40, 0.0f, 0.0f, 0.0f, 32000, -1.00000012f, 0.0f, 0.0f, 1.5f},
     {40, 0, 0, 0, -4194305, 0, 0},
     {40, 0, 0, 0, -4194305, 0, 0},
     {40, 0, 0, 0, Low16(-4194305), 0, 0}},
    {"negativeSaturation",
     // -600 in Q22 saturates low; its low half is 0.
     {100, 0.25f, 0.125f, 0.0f, 48000, -600.0f, 1.0f, 1.0f, 1.5f},
     {100, 536870912, 268435456, 0, INT32_MIN, 1, 1},
     {100, 2097152, 1048576, 0, INT32_MIN, 1, 1},
     {100, 8192, 4096, 0, 0, 1, 1}},
    {"unvalidated",
     // Values no caller should send still give defined words: NaN becomes
     // 0, the rest saturate (16 bits keep the low half of the 32-bit word).
     {200, 0.5f, 0.5f, 0.5f, 48000, NAN, 1e12f, -1e12f, INFINITY},
     {200, 1073741824, 1073741824, 1073741824, 0, INT32_MAX, INT32_MIN},
     {200, 4194304, 4194304, 4194304, 0, INT32_MAX, INT32_MIN},
     {200, 16384, 16384, 16384, 0, -1, 0}},
};

TEST(ThumpxFixed, TuningWordsPerWidth) {
  for (const ParamCase& c : kParamCases) {
    for (int width : kWidths) {
      SCOPED_TRACE(testing::Message() << c.name << " width " << width);
      Workspace ws;
      int rc = -1;
      const std::vector<int64_t> w = DesignFxp(width, c.p, ws.At(1), &rc);
      ASSERT_EQ(rc, 0);
      const int64_t* expected = width == 32 ? c.words32 : width == 24 ? c.words24 : c.words16;
      for (int i = 0; i < 7; ++i) EXPECT_EQ(w[56 + i], expected[i]) << "word " << 56 + i;
    }
  }
}

}  // namespace
