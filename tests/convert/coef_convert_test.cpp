// Reverse converters: a whole postmix record of varied bytes, converted with
// its rooms and populated again, comes back byte for byte except where the
// layout says it cannot; and what the rebuilt coefficient messages carry
// beyond the bytes (identifiers, names, the converter's rate, full lists).
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "coef_test_support.h"

namespace {

using namespace coeftest;

const char kNull[] = "{00000000-0000-0000-0000-000000000000}";
constexpr int kRate = 44100;
constexpr std::size_t kAeq0 = 58632, kAeq1 = 58632 + 1344, kRec0 = 61772, kRec1 = 63940;

// Every byte varied (sign-mixing), then what populate needs to read it all:
// the stages enabled, a speaker size that keeps the bass coefficients, no
// negative ref_htest, ordinary floats in the distortion-prevention banks.
Record scribbledRecord() {
  Record rec;
  std::uint32_t x = 7;
  for (std::size_t i = 0; i < coeftest::kRecordBytes; ++i) {
    x = x * 1664525u + 1013904223u;
    rec.bytes()[i] = static_cast<std::uint8_t>(x >> 24);
  }
  for (int i = 0; i < 7; ++i) rec.put32(272 + 60 + 4 * i, 100 + i);
  rec.put32(20, 5);  // lyra_multi_ch: -1 would come back as 0
  for (std::size_t enable : {196u, 172u, 408u, 484u}) rec.put32(enable, 1);
  rec.put32(184, 12);
  rec.put32(58028, 128);  // headphone-EQ length within what a load keeps whole
  for (std::size_t r : {kRec0, kRec1}) {
    for (int i = 0; i < 108; ++i) {
      const float a = 0.25f * static_cast<float>(i) - 3.0f, b = -1.0f / static_cast<float>(i + 1);
      std::uint32_t ua, ub;
      std::memcpy(&ua, &a, 4);
      std::memcpy(&ub, &b, 4);
      rec.put32(r + 604 + 4 * i, ua);
      rec.put32(r + 1736 + 4 * i, ub);
    }
  }
  return rec;
}

// Where the second record differs from the first, by the layout's rules.
struct Difference {
  const char* why;
  std::size_t from, to;
  int fill;  // the byte populate leaves there; -1: the word 0xFFFFFFFF
};

const Difference kDifferences[] = {
    {"padding after the ova3d gains", 154, 156, kPattern},
    {"padding after the thumpx gain", 194, 196, kPattern},
    {"padding after the brio gains", 230, 232, kPattern},
    {"the geq10b reserved word", 258, 260, 0},
    {"padding after the aeq gains", 270, 272, kPattern},
    {"acoustic EQ bank 0 FIR order: absent", kAeq0 + 4, kAeq0 + 8, -1},
    {"acoustic EQ bank 0 FIR coefficients: never loaded", kAeq0 + 304, kAeq1, 0},
    {"acoustic EQ bank 1 FIR order: absent", kAeq1 + 4, kAeq1 + 8, -1},
    {"acoustic EQ bank 1 FIR coefficients: never loaded", kAeq1 + 304, 61320, 0},
    {"brio high-pass coefficients: rebuilt where the loader does not read", 61324, 61364, kPattern},
};

TEST(CoefConvert, WholeRecordRoundTrip) {
  Record first = scribbledRecord();
  HeronSettings s;
  QuillHeron_v1_1_Pb conv(kRate);
  EXPECT_TRUE(conv.convert(*first, &s, true));  // also stamps the rate into the room and EQ headers
  Record second;
  ASSERT_EQ(conv.populate(quill::pb::hub::AR_OUT_USB, s, *second, false, {}, 14), 0);
  std::size_t i = 0;
  for (const Difference& d : kDifferences) {
    for (; i < d.from; ++i) ASSERT_EQ(second.bytes()[i], first.bytes()[i]) << "byte " << i;
    for (; i < d.to; ++i) ASSERT_EQ(second.bytes()[i], d.fill < 0 ? 0xFF : d.fill) << d.why << ", byte " << i;
  }
  for (; i < coeftest::kRecordBytes; ++i) ASSERT_EQ(second.bytes()[i], first.bytes()[i]) << "byte " << i;
}

std::vector<std::int32_t> words(const Record& rec, std::size_t at, int n) {
  std::vector<std::int32_t> v;
  for (int i = 0; i < n; ++i) v.push_back(rec.i32(at + 4 * i));
  return v;
}
std::vector<std::int32_t> list(const google::protobuf::RepeatedField<std::int32_t>& f) {
  return std::vector<std::int32_t>(f.begin(), f.end());
}

TEST(CoefConvert, RebuiltMessages) {
  Record rec = scribbledRecord();
  HeronSettings s;
  s.mutable_postmix()->mutable_hpf_coef()->set_cutoff(120);  // cleared with the rest of Postmix
  QuillHeron_v1_1_Pb conv(kRate);
  conv.convert(*rec, &s, true);
  const auto& pm = s.postmix();
  // Rooms (front, wide, multichannel) and the headphone EQ: named as rebuilt,
  // identified by their record bytes in lower-case 8-4-4-4-12 text.
  const std::size_t kIds[4] = {33328, 45668, 488, 58008};
  for (int i = 0; i < 4; ++i) {
    const auto& m = i < 3 ? pm.model().rooms(i).uuid() : pm.model().headphones(0).uuid();
    const auto& name = i < 3 ? pm.model().rooms(i).name() : pm.model().headphones(0).name();
    std::string want;
    for (int k = 0; k < 16; ++k) {
      char hex[3];
      std::snprintf(hex, sizeof hex, "%02x", rec.bytes()[kIds[i] + k]);
      want += std::string(k == 4 || k == 6 || k == 8 || k == 10 ? "-" : "") + hex;
    }
    EXPECT_EQ(m, want) << i;
    EXPECT_EQ(name, "From Heron STU") << i;
  }
  for (const std::string* uuid : {&pm.hpf_coef().uuid(), &pm.brio_hpf_coef().uuid(), &pm.brio_xover_coef().uuid(),
                                  &pm.thumpx_coef().uuid(), &pm.aeqcoef(0).uuid(), &pm.model().aeqs(0).uuid()}) {
    EXPECT_EQ(*uuid, kNull);
  }
  EXPECT_FALSE(pm.hpf_coef().has_cutoff());
  EXPECT_FALSE(pm.brio_xover_coef().has_cutoff());
  EXPECT_EQ(pm.hpf_coef().coeffs(0).samplerate(), kRate);
  EXPECT_EQ(pm.mbhl_coef().mid_cross_coeffs().samplerate(), kRate);

  // The stereo-enhancer high-pass goes to coeff_32, sign-extended.
  const auto& brio = pm.brio_hpf_coef().hpf_coeffs(0);
  EXPECT_EQ(brio.coeff_16_size(), 0);
  ASSERT_EQ(brio.coeff_32_size(), 20);
  for (int i = 0; i < 20; ++i) EXPECT_EQ(brio.coeff_32(i), static_cast<std::int16_t>(rec.u16(61324 + 2 * i))) << i;

  // Acoustic EQ: both banks with IIR and FIR tables at full length.
  const auto& aeq = pm.model().aeqs(0);
  EXPECT_EQ(aeq.channel_mask(), 3);
  ASSERT_EQ(aeq.coefficient_table_size(), 2);
  for (int b = 0; b < 2; ++b) {
    const auto& bank = aeq.coefficient_table(b);
    const std::size_t at = b == 0 ? kAeq0 : kAeq1;
    EXPECT_EQ(bank.iirorder(), rec.i32(at));
    EXPECT_EQ(bank.firorder(), rec.i32(at + 4));
    EXPECT_EQ(bank.fircoefs(0).samplerate(), kRate);
    EXPECT_EQ(list(bank.fircoefs(0).coeff_32()), words(rec, at + 304, 260));
  }

  // A second coefficient convert appends a second bass table; each single
  // crossover table is rebuilt, not extended.
  conv.convert((*rec).thumpx, &s);
  conv.convert((*rec).mbhl, &s);
  EXPECT_EQ(pm.thumpx_coef().coeffs_size(), 2);
  EXPECT_EQ(pm.mbhl_coef().low_cross_coeffs().coeff_32_size(), 12);
}

}  // namespace
