// Integer word lengths, hand-computed fixed-point words for the three widths,
// and the inverse conversions with their signed 32-bit divisor.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "quillheron_filterdesign.h"

namespace {

struct IwlCase {
  float x;
  int iwl;
};

constexpr IwlCase kIwl[] = {
    {0.0f, 0},  {1.0f, 2},  {0.9f, 1},   {0.5f, 1},  {0.49f, 0}, {-1.0f, 1},
    {2.0f, 3},  {-2.0f, 2}, {-0.5f, 0},  {0.25f, 0}, {3.0f, 3},  {4.0f, 4},
    {1e-10f, 0}, {1e30f, 101}, {0.9999999f, 1}, {1.0000001f, 2},
};

TEST(IirQuantize, MinimalIwl) {
  for (const IwlCase& c : kIwl) EXPECT_EQ(c.iwl, MinimalIwl(c.x)) << c.x;
  EXPECT_EQ(0, MinimalIwl(std::numeric_limits<float>::quiet_NaN()));
  EXPECT_EQ(std::numeric_limits<int32_t>::max(), MinimalIwl(std::numeric_limits<float>::infinity()));
}

TEST(IirQuantize, MaxAbsKeepsFirstOfEqualMagnitudesAndReadsFirstElement) {
  const float x[] = {-3.0f, 2.0f, 3.0f, -1.0f};
  EXPECT_EQ(3.0f, MaxAbs(x, 4));
  EXPECT_EQ(3.0f, MaxAbs(x, 0));  // x[0] is read whatever the count
  EXPECT_EQ(3.0f, MaxAbs(x, 1));
  const float y[] = {0.5f, -7.0f, 6.0f};
  EXPECT_EQ(7.0f, MaxAbs(y, 3));
}

// One first-order cascade (order 1): a section and a gain record.
struct WordCase {
  const char* what;
  float section[5];
  float gain;
  int32_t words[8];  // iwl, b0..A2, gain iwl, gain; at the width under test
};

// 32 bits. iwl 2 stores 1.0 as 2^30; iwl 1 uses the scale 2^31.
constexpr WordCase kWords32[] = {
    {"unit values", {1.0f, -1.0f, 0.5f, 0.25f, -0.125f}, 1.0f,
     {2, 1073741824, -1073741824, 536870912, 268435456, -134217728, 2, 1073741824}},
    {"half-way rounds away from zero", {0.75f, 2.5f / 2147483648.0f, -2.5f / 2147483648.0f, 0.0f, -0.0f}, 0.5f,
     {1, 1610612736, 3, -3, 0, 0, 1, 1073741824}},
    // At 32 bits the float product is exact: the largest value below 1 stays
    // below the top, the half is added in double without saturating.
    {"just below one", {0.99999994f, -0.99999994f, 0.0f, 0.0f, 0.0f}, 0.99999994f,
     {1, 2147483520, -2147483520, 0, 0, 0, 1, 2147483520}},
    {"small section gets iwl 0", {0.25f, 0.125f, -0.3f, 0.0f, 0.0f}, 3.0f,
     {0, 1073741824, 536870912, -1288490240, 0, 0, 3, 1610612736}},
};

// 24 bits: sign-extended values in 32-bit words.
constexpr WordCase kWords24[] = {
    {"unit values", {1.0f, -1.0f, 0.5f, 0.25f, -0.125f}, 1.0f,
     {2, 4194304, -4194304, 2097152, 1048576, -524288, 2, 4194304}},
    {"half-way rounds away from zero", {0.75f, 2.5f / 8388608.0f, -2.5f / 8388608.0f, 1.5f / 8388608.0f, 0.0f},
     2.0f, {1, 6291456, 3, -3, 2, 0, 3, 4194304}},
    // 0.9999999f * 2^23 = 8388607 exactly: + 0.5 passes the top, - 0.5 does not
    // reach the bottom.
    {"rounds past the top", {0.9999999f, -0.9999999f, 0.0f, 0.0f, 0.0f}, 1.0f,
     {1, 8388607, -8388607, 0, 0, 0, 2, 4194304}},
    {"rounds onto the bottom", {-0.99999994f, 0.5f, 0.0f, 0.0f, 0.0f}, 1.0f,
     {1, -8388608, 4194304, 0, 0, 0, 2, 4194304}},
};

// 16 bits: the iwl words are 16-bit too.
constexpr WordCase kWords16[] = {
    {"unit values", {1.0f, -1.0f, 0.5f, 0.25f, -0.125f}, 1.0f,
     {2, 16384, -16384, 8192, 4096, -2048, 2, 16384}},
    {"half-way rounds away from zero", {0.75f, 2.5f / 32768.0f, -2.5f / 32768.0f, 0.5f / 32768.0f, -0.5f / 32768.0f},
     0.75f, {1, 24576, 3, -3, 1, -1, 1, 24576}},
    {"rounds past the top", {0.9999999f, -0.9999999f, 0.0f, 0.0f, 0.0f}, 0.9999999f,
     {1, 32767, -32768, 0, 0, 0, 1, 32767}},
    {"large coefficient", {-3.5f, 1.0f, 0.0f, 0.0f, 0.0f}, 1.0f, {3, -28672, 8192, 0, 0, 0, 2, 16384}},
};

// Quantises each case's one-section cascade at one width and compares all
// eight words, and that the word after the gain record stays unwritten.
template <typename Word, size_t N>
void CheckWords(void (*quantize)(const float*, int, Word*), const WordCase (&cases)[N]) {
  for (const WordCase& c : cases) {
    float cascade[6];
    std::memcpy(cascade, c.section, sizeof c.section);
    cascade[5] = c.gain;
    Word out[9];
    std::memset(out, 0x5A, sizeof out);
    quantize(cascade, 1, out);
    for (int i = 0; i < 8; ++i) EXPECT_EQ(c.words[i], out[i]) << c.what << " word " << i;
    EXPECT_EQ(static_cast<Word>(0x5A5A5A5A), out[8]) << c.what;
  }
}

TEST(IirQuantize, HandComputedWordsAtEveryWidth) {
  CheckWords<int32_t>(OVA_QuantizeIIR_Fxp32, kWords32);
  CheckWords<int32_t>(OVA_QuantizeIIR_Fxp24, kWords24);
  CheckWords<int16_t>(OVA_QuantizeIIR_Fxp16, kWords16);
}

TEST(IirQuantize, OrderSelectsSectionCountAndNonPositiveWritesNothing) {
  const float cascade[16] = {0.5f, 0, 0, 0, 0, 0.25f, 0, 0, 0, 0, 0.125f, 0, 0, 0, 0, 1.0f};
  struct {
    int order;
    int words;
  } const kOrders[] = {{-3, 0}, {0, 0}, {5, 20}, {6, 20}};
  for (const auto& o : kOrders) {
    int32_t out[24];
    std::memset(out, 0x5A, sizeof out);
    OVA_QuantizeIIR_Fxp32(cascade, o.order, out);
    for (int i = 0; i < 24; ++i) {
      if (i >= o.words) {
        EXPECT_EQ(0x5A5A5A5A, out[i]) << o.order << " " << i;
      }
    }
    if (o.words) {
      EXPECT_EQ(2, out[18]);  // gain iwl after three sections
      EXPECT_EQ(1073741824, out[19]);
    }
  }
}

// Inverse conversions: one section plus gain.
struct InverseCase {
  const char* what;
  int32_t words[8];
  float expected[6];
};

constexpr float kInf = std::numeric_limits<float>::infinity();

constexpr InverseCase kInverse32[] = {
    {"iwl 2", {2, 1073741824, -1073741824, 536870912, 0, -1, 2, 1073741824},
     {1.0f, -1.0f, 0.5f, 0.0f, -1.0f / 1073741824.0f, 1.0f}},
    // 1 << 31 read as a signed 32-bit integer: every coefficient flips sign.
    {"iwl 1 flips the sign", {1, 1073741824, -1610612736, 0, 1, 2, 1, 1073741824},
     {-0.5f, 0.75f, -0.0f, -1.0f / 2147483648.0f, -2.0f / 2147483648.0f, -0.5f}},
    {"iwl 0 divides by zero", {0, 1, -1, 5, -5, 7, 2, 536870912}, {kInf, -kInf, kInf, -kInf, kInf, 0.5f}},
    {"iwl 40 shifts out", {40, 1, 1, 1, 1, 1, 33, 1}, {kInf, kInf, kInf, kInf, kInf, kInf}},
};

TEST(IirDequantize, Fxp32) {
  for (const InverseCase& c : kInverse32) {
    float out[7];
    std::memset(out, 0x5A, sizeof out);
    OVA_Fxp32IIRToFloat(c.words, 1, out);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(c.expected[i], out[i]) << c.what << " " << i;
    EXPECT_TRUE(std::signbit(out[2]) == std::signbit(c.expected[2])) << c.what;
  }
  // iwl 0 with a zero word gives not-a-number.
  const int32_t zero[8] = {0, 0, 0, 0, 0, 0, 0, 0};
  float out[6];
  OVA_Fxp32IIRToFloat(zero, 1, out);
  for (float v : out) EXPECT_TRUE(std::isnan(v));
}

TEST(IirDequantize, Fxp24SignExtendsBit23) {
  // -1.0 with iwl 2, stored without and with sign extension; iwl 1 divides by
  // +2^23 (no sign flip at this width).
  const int32_t words[14] = {2, 0x00C00000, static_cast<int32_t>(0xFFC00000u), 0x00400000, 0x7F400000, 0,
                             1, 0x00400000, 0x00C00000, 0, 0, 0, 0, 0};
  float out[11];
  std::memset(out, 0x5A, sizeof out);
  OVA_Fxp24IIRToFloat(words, 3, out);  // order 3: two sections + gain
  const float expected[11] = {-1.0f, -1.0f, 1.0f, 1.0f, 0.0f, 0.5f, -0.5f, 0.0f, 0.0f, 0.0f, -kInf};
  for (int i = 0; i < 10; ++i) EXPECT_EQ(expected[i], out[i]) << i;
  // Gain record (0, 0): iwl 0 gives the divisor 2^24, the word 0 gives 0.
  EXPECT_EQ(0.0f, out[10]);
}

TEST(IirDequantize, Fxp16ReadsSignedIwl) {
  const int16_t words[8] = {1, 16384, -32768, 0, 0, 0, -1, 16384};
  float out[6];
  OVA_Fxp16IIRToFloat(words, 1, out);
  EXPECT_EQ(0.5f, out[0]);  // divisor +2^15: no flip at 16 bits
  EXPECT_EQ(-1.0f, out[1]);
  EXPECT_EQ(16384.0f / 131072.0f, out[5]);  // iwl -1: 2^17
}

TEST(IirDequantize, NonPositiveOrderWritesNothing) {
  const int32_t words[8] = {2, 1, 1, 1, 1, 1, 2, 1};
  float out[6];
  std::memset(out, 0x5A, sizeof out);
  float untouched[6];
  std::memcpy(untouched, out, sizeof out);
  OVA_Fxp32IIRToFloat(words, 0, out);
  OVA_Fxp32IIRToFloat(words, -1, out);
  EXPECT_EQ(0, std::memcmp(untouched, out, sizeof out));
}

TEST(IirDequantize, RoundTripThroughEveryWidth) {
  const float cascade[11] = {0.31f, -0.62f, 0.31f, 1.7f, -0.8f, 0.02f, 0.04f, 0.02f, 1.9f, -0.95f, 1.0f};
  int32_t w32[14];
  int32_t w24[14];
  int16_t w16[14];
  OVA_QuantizeIIR_Fxp32(cascade, 4, w32);
  OVA_QuantizeIIR_Fxp24(cascade, 4, w24);
  OVA_QuantizeIIR_Fxp16(cascade, 4, w16);
  float f32[11], f24[11], f16[11];
  OVA_Fxp32IIRToFloat(w32, 4, f32);
  OVA_Fxp24IIRToFloat(w24, 4, f24);
  OVA_Fxp16IIRToFloat(w16, 4, f16);
  for (int i = 0; i < 11; ++i) {
    EXPECT_NEAR(cascade[i], f32[i], 1e-7) << i;
    EXPECT_NEAR(cascade[i], f24[i], 2.0 / 8388608.0) << i;  // iwl 2: half a step of 2^-22
    EXPECT_NEAR(cascade[i], f16[i], 2.0 / 32768.0) << i;
  }
}

}  // namespace
