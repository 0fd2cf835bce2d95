// Joining cascades and the byte fill.
#include <gtest/gtest.h>

#include <cstring>

#include "quillheron_filterdesign.h"

namespace {

struct JoinCase {
  int first_order;
  int second_order;
  int out_order;
};

constexpr JoinCase kJoins[] = {{3, 1, 6}, {2, 2, 4}, {1, 1, 4}, {4, 3, 8}, {0, 2, 2}};

TEST(IirCascadeUtil, ConcatenateCopiesSectionsAndMultipliesGains) {
  for (const JoinCase& c : kJoins) {
    const int s1 = QH_IirSectionCount(c.first_order);
    const int s2 = QH_IirSectionCount(c.second_order);
    float first[32], second[32], out[40];
    for (int i = 0; i < 32; ++i) {
      first[i] = 100.0f + i;
      second[i] = 200.0f + i;
    }
    first[5 * s1] = 0.5f;
    second[5 * s2] = 3.0f;
    std::memset(out, 0x5A, sizeof out);
    int order = -1;
    OVA_ConcatenateIIRs(first, c.first_order, second, c.second_order, out, &order);
    EXPECT_EQ(c.out_order, order);
    EXPECT_EQ(s1 + s2, (order + 1) / 2);
    for (int i = 0; i < 5 * s1; ++i) EXPECT_EQ(first[i], out[i]) << i;
    for (int i = 0; i < 5 * s2; ++i) EXPECT_EQ(second[i], out[5 * s1 + i]) << i;
    EXPECT_EQ(1.5f, out[5 * (s1 + s2)]);
    float sentinel;
    std::memset(&sentinel, 0x5A, sizeof sentinel);
    EXPECT_EQ(0, std::memcmp(&sentinel, &out[5 * (s1 + s2) + 1], sizeof sentinel));
  }
}

TEST(IirCascadeUtil, ConcatenateIntoTheFirstCascade) {
  // Order 3 (two sections) plus order 1 (one section), written over first.
  float first[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 2.0f};
  const float second[6] = {11, 12, 13, 14, 15, 4.0f};
  int order = 0;
  OVA_ConcatenateIIRs(first, 3, second, 1, first, &order);
  EXPECT_EQ(6, order);
  for (int i = 0; i < 15; ++i) EXPECT_EQ(float(i + 1), first[i]) << i;
  EXPECT_EQ(8.0f, first[15]);  // the first gain was read before being overwritten
}

TEST(IirCascadeUtil, MemSetFillsLowByteOnly) {
  struct {
    int count;
    int value;
    int filled;
  } const kFills[] = {{5, 0x1234, 5}, {8, -1, 8}, {0, 7, 0}, {-3, 7, 0}, {1, 0x100, 1}};
  for (const auto& f : kFills) {
    unsigned char buf[10];
    std::memset(buf, 0xEE, sizeof buf);
    OVA_MemSet(buf, f.count, f.value);
    for (int i = 0; i < 10; ++i) {
      EXPECT_EQ(i < f.filled ? (f.value & 0xFF) : 0xEE, buf[i]) << f.count << " " << i;
    }
  }
}

}  // namespace
