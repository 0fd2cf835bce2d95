// Distortion-prevention designer: the stamped header byte for byte, the
// count handling, and that nothing is written past the records given, for
// any band count.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "distprev_test_util.h"

namespace {

using distprev_test::DefaultBlock;

// The header is stamped on every call; a count below one touches no record.
TEST(DistprevHeader, StampedByteForByteWithThreeBytesLeftAlone) {
  for (int32_t count : {0, -5, 1}) {
    SCOPED_TRACE(count);
    unsigned char raw[sizeof(quillDistprevDesignHeader)];
    memset(raw, 0xAA, sizeof(raw));
    quillDistprevDesignHeader h;
    memcpy(&h, raw, sizeof(h));
    quillMBHLDistprevCoeff rec;
    memset(&rec, 0x3C, sizeof(rec));
    const quillDistprevNotchDesignBlock blk = DefaultBlock();
    EXPECT_EQ(quill_distprev_config_designer(&h, &rec, &blk, count), 0);
    unsigned char got[sizeof(h)];
    memcpy(got, &h, sizeof(h));

    unsigned char want[168] = {0x50, 0xAA, 0xAA, 0xAA,  // kind, three untouched bytes
                               0, 0, 0, 0,              // reserved1
                               0, 0, 0, 0,              // reserved2
                               0xF0, 0x11, 0, 0,        // size 4592, little-endian
                               'D', 'I', 'S', 'T',      // tag, no terminator
                               0, 0, 0, 0};             // reserved3
    for (int i = 0; i < 16; ++i) want[24 + i] = static_cast<unsigned char>(i);
    memcpy(want + 40, "HP:P9+:Portrait", 15);  // rest of the 128 bytes zero
    for (int i = 0; i < 168; ++i) EXPECT_EQ(got[i], want[i]) << "byte " << i;
    const unsigned char* p = reinterpret_cast<const unsigned char*>(&rec);
    if (count < 1) {
      for (size_t i = 0; i < sizeof(rec); ++i) ASSERT_EQ(p[i], 0x3C) << "byte " << i;
    }
  }
}

// Two records in an exactly sized area followed by a guard pattern.
struct Guarded {
  quillMBHLDistprevCoeff rec[2];
  unsigned char guard[512];
};

TEST(DistprevHeader, BandCountsAboveSixWriteNothingPastTheRecords) {
  quillDistprevNotchDesignBlock six = DefaultBlock();
  six.nf_band_ct = 6;
  six.nf_spacing = 1;
  six.nf_base_attn_max = -6.0f;
  six.nf_slope = -2.0f;
  quillMBHLDistprevCoeff want[2];
  const quillDistprevNotchDesignBlock want_blocks[2] = {six, six};
  quillDistprevDesignHeader h;
  ASSERT_EQ(quill_distprev_config_designer(&h, want, want_blocks, 2), 0);

  for (int32_t band_ct : {7, 100, 0x7FFFFFFF}) {
    SCOPED_TRACE(band_ct);
    quillDistprevNotchDesignBlock many = six;
    many.nf_band_ct = band_ct;
    const quillDistprevNotchDesignBlock blocks[2] = {many, many};
    Guarded* g = new Guarded;
    memset(g->guard, 0xA5, sizeof(g->guard));
    EXPECT_EQ(quill_distprev_config_designer(&h, g->rec, blocks, 2), 0);
    for (size_t i = 0; i < sizeof(g->guard); ++i) ASSERT_EQ(g->guard[i], 0xA5) << i;
    // Cut at six bands: the same record as six bands except the count itself.
    for (int k = 0; k < 2; ++k) {
      EXPECT_EQ(g->rec[k].notch_band_count, band_ct);
      g->rec[k].notch_band_count = 6;
      EXPECT_EQ(memcmp(&g->rec[k], &want[k], sizeof(want[k])), 0) << "record " << k;
    }
    delete g;
  }
}

}  // namespace
