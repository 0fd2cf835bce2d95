// Reverse converters: messages rebuilt from native regions (full capacities,
// the converter's rate, null identifiers), and round trips record -> message
// -> record through the loaders.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "coef_test_support.h"

namespace {

using coeftest::Record;
using quill::pb::coef::CoefTable;
using quill::pb::heron_v1_1::HeronSettings;

const char kNull[] = "{00000000-0000-0000-0000-000000000000}";

// Fills bytes [from, to) of the record with a varied, sign-mixing pattern.
void scribble(Record& rec, std::size_t from, std::size_t to, std::uint32_t seed) {
  std::uint32_t x = seed;
  for (std::size_t i = from; i < to; ++i) {
    x = x * 1664525u + 1013904223u;
    rec.bytes()[i] = static_cast<std::uint8_t>(x >> 24);
  }
}

std::vector<std::int32_t> words(const Record& rec, std::size_t at, int n) {
  std::vector<std::int32_t> v;
  for (int i = 0; i < n; ++i) v.push_back(rec.i32(at + 4 * i));
  return v;
}

std::vector<std::int32_t> halves(const Record& rec, std::size_t at, int n) {
  std::vector<std::int32_t> v;
  for (int i = 0; i < n; ++i) v.push_back(static_cast<std::int16_t>(rec.u16(at + 2 * i)));
  return v;
}

std::vector<std::int32_t> list(const google::protobuf::RepeatedField<std::int32_t>& f) {
  return std::vector<std::int32_t>(f.begin(), f.end());
}

TEST(CoefConvert, HeronHighPassRoundTrip) {
  Record rec;
  scribble(rec, 58548, 58548 + 84, 1);
  rec.put32(58548, 4);
  HeronSettings s;
  s.mutable_postmix()->mutable_hpf_coef()->set_cutoff(120);
  QuillHeron_v1_1_Pb conv(44100);
  conv.convert((*rec).hpf, &s);
  const auto& hpf = s.postmix().hpf_coef();
  EXPECT_EQ(hpf.uuid(), kNull);
  EXPECT_FALSE(hpf.has_cutoff());
  EXPECT_EQ(hpf.order(), 4);
  ASSERT_EQ(hpf.coeffs_size(), 1);
  EXPECT_EQ(hpf.coeffs(0).samplerate(), 44100);
  EXPECT_EQ(list(hpf.coeffs(0).coeff_32()), words(rec, 58552, 20));

  Record back;
  conv.LoadHeronHPF(s.postmix(), *back);
  EXPECT_EQ(0, std::memcmp(back.bytes() + 58548, rec.bytes() + 58548, 84));
}

// Written to coeff_32, where the loader does not look: the round trip keeps
// the order but not the coefficients.
TEST(CoefConvert, BrioHighPassAsymmetry) {
  Record rec;
  rec.put32(61320, 2);
  for (int i = 0; i < 20; ++i) rec.put16(61324 + 2 * i, static_cast<std::uint16_t>(0xFFF0 + i));
  HeronSettings s;
  QuillHeron_v1_1_Pb conv(48000);
  conv.convert((*rec).brio_hpf, &s);
  const auto& h = s.postmix().brio_hpf_coef();
  EXPECT_EQ(h.uuid(), kNull);
  EXPECT_EQ(h.order(), 2);
  ASSERT_EQ(h.hpf_coeffs_size(), 1);
  EXPECT_EQ(h.hpf_coeffs(0).coeff_16_size(), 0);
  ASSERT_EQ(h.hpf_coeffs(0).coeff_32_size(), 20);
  EXPECT_EQ(h.hpf_coeffs(0).coeff_32(0), -16);
  EXPECT_EQ(h.hpf_coeffs(0).coeff_32(19), 3);

  Record back;
  EXPECT_EQ(conv.LoadBrioHPF(s.postmix(), *back), 0);
  EXPECT_EQ(back.u32(61320), 2u);
  EXPECT_TRUE(back.untouched(61324, 61364));
}

TEST(CoefConvert, CrossoverRoundTrip) {
  Record rec;
  scribble(rec, 61364, 61424, 2);
  HeronSettings s;
  QuillHeron_v1_1_Pb conv(32000);
  conv.convert((*rec).brio_xover, &s);
  const auto& x = s.postmix().brio_xover_coef();
  EXPECT_EQ(x.uuid(), kNull);
  EXPECT_FALSE(x.has_cutoff());
  EXPECT_EQ(x.order(), rec.i32(61364));
  ASSERT_EQ(x.hpf_coeffs_size(), 1);
  ASSERT_EQ(x.lpf_coeffs_size(), 1);
  EXPECT_EQ(list(x.lpf_coeffs(0).coeff_16()), halves(rec, 61368, 14));
  EXPECT_EQ(list(x.hpf_coeffs(0).coeff_16()), halves(rec, 61396, 14));
  EXPECT_EQ(x.lpf_coeffs(0).samplerate(), 32000);

  Record back;
  EXPECT_EQ(conv.LoadBrioCrossover(s.postmix(), *back), 0);
  EXPECT_EQ(0, std::memcmp(back.bytes() + 61364, rec.bytes() + 61364, 60));
}

TEST(CoefConvert, ThumpxAndMbhlRoundTrips) {
  Record rec;
  scribble(rec, 61424, 61772, 3);
  HeronSettings s;
  QuillHeron_v1_1_Pb conv(48000);
  conv.convert((*rec).thumpx, &s);
  conv.convert((*rec).mbhl, &s);
  const auto& pm = s.postmix();
  EXPECT_EQ(pm.thumpx_coef().uuid(), kNull);
  ASSERT_EQ(pm.thumpx_coef().coeffs_size(), 1);
  EXPECT_EQ(list(pm.thumpx_coef().coeffs(0).coeff_32()), words(rec, 61424, 63));
  EXPECT_EQ(list(pm.mbhl_coef().low_cross_coeffs().coeff_32()), words(rec, 61676, 12));
  EXPECT_EQ(list(pm.mbhl_coef().mid_cross_coeffs().coeff_32()), words(rec, 61724, 12));
  EXPECT_EQ(pm.mbhl_coef().mid_cross_coeffs().samplerate(), 48000);

  Record back;
  EXPECT_EQ(conv.PopulateTHUMPXCoeff(s, *back), 0);
  EXPECT_EQ(conv.PopulateMBHLCoeff(s, *back), 0);
  EXPECT_EQ(0, std::memcmp(back.bytes() + 61424, rec.bytes() + 61424, 61772 - 61424));

  // A second convert appends a second table to the list; each single
  // crossover table is rebuilt, not extended.
  conv.convert((*rec).thumpx, &s);
  conv.convert((*rec).mbhl, &s);
  EXPECT_EQ(s.postmix().thumpx_coef().coeffs_size(), 2);
  EXPECT_EQ(s.postmix().mbhl_coef().low_cross_coeffs().coeff_32_size(), 12);
}

TEST(CoefConvert, DistortionPreventionRoundTrip) {
  Record rec;
  // Integer words anywhere, floats kept to ordinary values.
  scribble(rec, 61772, 66108, 4);
  for (std::size_t r : {61772u, 63940u}) {
    for (int i = 0; i < 108; ++i) {
      const float a = 0.25f * static_cast<float>(i) - 3.0f, b = -1.0f / static_cast<float>(i + 1);
      std::uint32_t ua, ub;
      std::memcpy(&ua, &a, 4);
      std::memcpy(&ub, &b, 4);
      rec.put32(r + 604 + 4 * i, ua);
      rec.put32(r + 1736 + 4 * i, ub);
    }
  }
  HeronSettings s;
  QuillHeron_v1_1_Pb conv(48000);
  conv.convert((*rec).dist_prev, &s);
  ASSERT_EQ(s.postmix().mbhl_dist_prev_size(), 2);
  for (int i = 0; i < 2; ++i) {
    const std::size_t at = i == 0 ? 61772 : 63940;
    const auto& sense = s.postmix().mbhl_dist_prev(i).sense_config();
    const auto& notch = s.postmix().mbhl_dist_prev(i).notch_config();
    // Values come back through the loader below; here every list is full.
    EXPECT_EQ(sense.bandcount(), rec.i32(at));
    EXPECT_EQ(notch.bandcount(), rec.i32(at + 1048));
    const int sizes[] = {sense.bandsoscount_size(), sense.bandcoeffs_size(), sense.bandcoeffsfloat32_size(),
                         notch.bandattenuationmax_size(), notch.bandgainscalars_size(), notch.bandsoscount_size(),
                         notch.smoothers_size(), notch.bandcoeffs_size(), notch.bandcoeffsfloat32_size()};
    const int capacities[] = {6, 144, 108, 6, 6, 6, 9, 144, 108};
    for (int k = 0; k < 9; ++k) EXPECT_EQ(sizes[k], capacities[k]) << "list " << k;
  }
  Record back;
  EXPECT_EQ(conv.PopulateMbhlDistPrevCoeff(s, *back), 0);
  EXPECT_EQ(0, std::memcmp(back.bytes() + 61772, rec.bytes() + 61772, 2 * 2168));
}

// Four rows: bank 0 IIR and FIR, bank 1 IIR and FIR. Loading back keeps the
// IIR banks; FIR stages are never loaded.
TEST(CoefConvert, AeqRoundTrip) {
  Record rec;
  scribble(rec, 58632, 61320, 5);
  rec.put32(58632, 10);
  rec.put32(58636, 20);
  rec.put32(59976, 12);
  rec.put32(59980, 0xFFFFFFFFu);
  HeronSettings s;
  QuillHeron_v1_1_Pb conv(48000);
  conv.convert((*rec).aeq, &s);
  const auto& pm = s.postmix();
  ASSERT_EQ(pm.model().aeqs_size(), 1);
  ASSERT_EQ(pm.aeqcoef_size(), 1);
  EXPECT_EQ(pm.aeqcoef(0).uuid(), kNull);
  const auto& aeq = pm.model().aeqs(0);
  EXPECT_EQ(aeq.uuid(), kNull);
  EXPECT_EQ(aeq.channel_mask(), 3);
  ASSERT_EQ(aeq.coefficient_table_size(), 2);
  const std::int32_t orders[2][2] = {{10, 20}, {12, -1}};
  for (int b = 0; b < 2; ++b) {
    const auto& bank = aeq.coefficient_table(b);
    const std::size_t at = 58632 + 1344 * b;
    EXPECT_EQ(bank.iirorder(), orders[b][0]);
    EXPECT_EQ(bank.firorder(), orders[b][1]);
    ASSERT_EQ(bank.iircoefs_size(), 1);
    ASSERT_EQ(bank.fircoefs_size(), 1);
    EXPECT_EQ(bank.iircoefs(0).samplerate(), 48000);
    EXPECT_EQ(bank.fircoefs(0).samplerate(), 48000);
    EXPECT_EQ(list(bank.iircoefs(0).coeff_32()), words(rec, at + 8, 74));
    EXPECT_EQ(list(bank.fircoefs(0).coeff_32()), words(rec, at + 304, 260));
  }

  Record back;
  EXPECT_EQ(conv.LoadAeq(quill::pb::hub::AR_OUT_USB, pm, {&pm.model()}, *back), 0);
  for (int b = 0; b < 2; ++b) {
    const std::size_t at = 58632 + 1344 * b;
    EXPECT_EQ(back.i32(at), orders[b][0]);
    EXPECT_EQ(back.i32(at + 4), -1);
    EXPECT_EQ(0, std::memcmp(back.bytes() + at + 8, rec.bytes() + at + 8, 296));
    for (int i = 0; i < 260; ++i) ASSERT_EQ(back.i32(at + 304 + 4 * i), 0);
  }
}

}  // namespace
