// The postmix driver end to end: a headphone route at 48000 Hz with rooms, a
// headphone EQ, an acoustic EQ and every coefficient table, checked region by
// region against bytes derived from the record layout; the design fallbacks;
// and each failure code with what stays written.
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "coef_test_support.h"
#include "quillheron_filterdesign.h"
#include "routeconfiguration.pb.h"

namespace {

using coeftest::kPattern32;
using coeftest::ramp;
using coeftest::Record;
using coeftest::setTable;
using quill::pb::heron_v1_1::HeronSettings;
using quill::pb::heron_v1_1::Postmix;
using quill::pb::hub::RouteConfiguration;
using quill::pb::model::listeningModel;

// Identifiers of the scenario.
const char kWide[] = "11111111-2222-3333-4444-555555555555";
const char kFront[] = "aaaaaaaa-0000-0000-0000-0000000000f1";
const char kFront2[] = "aaaaaaaa-0000-0000-0000-0000000000f2";
const char kMulti[] = "cccccccc-0000-0000-0000-000000000001";
const char kHpeq[] = "dddddddd-0000-0000-0000-000000000001";
const char kAeq[] = "eeeeeeee-0000-0000-0000-000000000001";

void addRoom(listeningModel* m, const char* uuid, std::uint32_t mask, const std::vector<std::int32_t>& c16,
             int rate = 48000) {
  auto* r = m->add_rooms();
  r->set_uuid(uuid);
  r->set_channelmask(mask);
  r->set_numpairs(2);
  r->set_brirlength(static_cast<std::uint32_t>(c16.size()));
  r->set_reverbgain(-3);
  r->set_reverbcut(9000);
  setTable(r->add_coefftables(), 44100, {}, {1, 1, 1});
  setTable(r->add_coefftables(), rate, {}, c16);
}

// The caller's model: the wide and multichannel rooms, and a front room that
// the embedded model also carries (the caller's copy must win).
listeningModel callerModel() {
  listeningModel m;
  addRoom(&m, kWide, 0x3, ramp(6, -3));
  addRoom(&m, "AAAAAAAA-0000-0000-0000-0000000000F1", 0x7, ramp(8, 100));
  addRoom(&m, kMulti, 0x3F, ramp(4, 7000));
  return m;
}

// Everything the driver loads, for a headphone route at 48000 Hz.
HeronSettings fullSettings() {
  HeronSettings s;
  Postmix* pm = s.mutable_postmix();
  for (int v : {10, 11, 12, 13, 14, 15}) pm->add_lyra_input_gain(v);
  pm->mutable_brio()->set_enable(1);
  pm->mutable_brio()->mutable_thumpx()->set_enable(1);
  pm->mutable_brio()->mutable_thumpx()->set_speaker_size(12);
  pm->mutable_mbhl()->set_enable(1);
  pm->mutable_mbhl()->set_dist_prev_enable(1);

  listeningModel* embedded = pm->mutable_model();
  addRoom(embedded, kFront, 0x1, ramp(8, 900));  // shadowed by the caller's copy
  addRoom(embedded, kFront2, 0x1, {-1, -2});     // loaded after it, over its start
  auto* h = embedded->add_headphones();
  h->set_uuid(kHpeq);
  h->set_ihpirlength(2);
  h->add_audio_route_info()->set_route(quill::pb::hub::AR_OUT_ATTACHED0);
  setTable(h->add_coefftables(), 48000, {}, {5, 6, 1, 2, -1, -2});
  auto* aeq = embedded->add_aeqs();
  aeq->set_uuid(kAeq);
  for (int b = 0; b < 2; ++b) {
    auto* bank = aeq->add_coefficient_table();
    if (b == 1) bank->set_iirorder(16);
    setTable(bank->add_iircoefs(), 48000, ramp(3, 1000 * (b + 1)));
  }

  pm->add_wideroom()->set_uuid(kWide);
  pm->add_multichroom()->set_uuid(kMulti);  // frontRoom left empty: the embedded rooms serve it
  pm->add_hpeqcoef()->set_uuid("ffffffff-0000-0000-0000-000000000000");  // no such EQ: counts as none
  pm->add_hpeqcoef()->set_uuid(kHpeq);
  pm->add_aeqcoef()->set_uuid(kAeq);

  pm->mutable_hpf_coef()->set_order(2);
  setTable(pm->mutable_hpf_coef()->add_coeffs(), 48000, ramp(5, -2));
  pm->mutable_brio_hpf_coef()->set_order(1);
  setTable(pm->mutable_brio_hpf_coef()->add_hpf_coeffs(), 48000, {}, {-7, 7});
  pm->mutable_brio_xover_coef()->set_order(2);
  setTable(pm->mutable_brio_xover_coef()->add_lpf_coeffs(), 48000, {}, {1, 2});
  setTable(pm->mutable_brio_xover_coef()->add_hpf_coeffs(), 48000, {}, {3, 4});
  setTable(pm->mutable_thumpx_coef()->add_coeffs(), 48000, ramp(63, 500));
  setTable(pm->mutable_mbhl_coef()->mutable_low_cross_coeffs(), 48000, ramp(12, 20));
  setTable(pm->mutable_mbhl_coef()->mutable_mid_cross_coeffs(), 48000, ramp(12, 40));
  for (int i = 0; i < 2; ++i) {
    auto* d = pm->add_mbhl_dist_prev();
    d->mutable_sense_config()->set_bandcount(6 + i);
    d->mutable_notch_config()->set_mode(3 + i);
  }
  return s;
}

RouteConfiguration headphoneRoute(const HeronSettings& s) {
  RouteConfiguration route;
  route.set_route(quill::pb::hub::AR_OUT_ATTACHED0);
  route.add_tech()->mutable_heron();  // legacy settings only: passed over
  *route.add_tech()->mutable_heron_v1_1() = s;
  return route;
}

void expectRoomHeader(const Record& rec, std::size_t at, std::uint8_t first_uuid_byte, std::uint32_t mask,
                      std::uint32_t brir, const char* what) {
  EXPECT_EQ(rec.bytes()[at], first_uuid_byte) << what;
  EXPECT_EQ(rec.u32(at + 16), mask) << what;
  EXPECT_EQ(rec.u32(at + 20), 2u) << what;
  EXPECT_EQ(rec.u32(at + 24), brir) << what;
  EXPECT_EQ(rec.u32(at + 28), 48000u) << what;
  EXPECT_EQ(rec.i32(at + 32), -3) << what;
  EXPECT_EQ(rec.u32(at + 36), 9000u) << what;
}

void expectHalves(const Record& rec, std::size_t at, const std::vector<std::int32_t>& v, const char* what) {
  for (std::size_t i = 0; i < v.size(); ++i) {
    EXPECT_EQ(rec.u16(at + 2 * i), coeftest::low16(v[i])) << what << " " << i;
  }
}

void expectWords(const Record& rec, std::size_t at, const std::vector<std::int32_t>& v, const char* what) {
  for (std::size_t i = 0; i < v.size(); ++i) EXPECT_EQ(rec.i32(at + 4 * i), v[i]) << what << " " << i;
}

TEST(PostmixDriver, FullHeadphoneRoute) {
  const HeronSettings s = fullSettings();
  const listeningModel caller = callerModel();
  Record rec;
  QuillHeron_v1_1_Pb conv(48000);
  ASSERT_EQ(conv.populate(headphoneRoute(s), *rec, true, {&caller}, 14), 0);

  // Control part ran: lyra_input_gain in the engine's slot order.
  expectWords(rec, 24, {13, 11, 12, 14, 10, 15}, "lyra_input_gain");

  // Multichannel room from the caller's model.
  expectRoomHeader(rec, 488, 0xcc, 0x3F, 4, "multichannel");
  expectHalves(rec, 528, ramp(4, 7000), "multichannel coeffs");
  EXPECT_EQ(rec.u32(536), kPattern32);
  // Front: the caller's copy of the first embedded room, then the second
  // embedded room over its start.
  expectRoomHeader(rec, 33328, 0xaa, 0x1, 2, "front");
  EXPECT_EQ(rec.bytes()[33328 + 15], 0xf2);
  expectHalves(rec, 33368, {-1, -2, 102, 103, 104, 105, 106, 107}, "front coeffs");
  EXPECT_EQ(rec.u32(33384), kPattern32);
  // Wide room from the caller's model.
  expectRoomHeader(rec, 45668, 0x11, 0x3, 6, "wide");
  expectHalves(rec, 45708, ramp(6, -3), "wide coeffs");
  EXPECT_EQ(rec.u32(45720), kPattern32);

  // Headphone EQ.
  EXPECT_EQ(rec.bytes()[58008], 0xdd);
  EXPECT_EQ(rec.u32(58024), 48000u);
  EXPECT_EQ(rec.u32(58028), 2u);
  expectHalves(rec, 58032, {5, 6, 1, 2, -1, -2}, "hpeq");
  EXPECT_EQ(rec.u32(58044), kPattern32);

  // Output high-pass.
  EXPECT_EQ(rec.u32(58548), 2u);
  expectWords(rec, 58552, ramp(5, -2), "hpf");
  EXPECT_EQ(rec.u32(58572), kPattern32);

  // Acoustic EQ: cleared, FIR stages absent.
  expectWords(rec, 58632, {24, -1, 1000, 1001, 1002, 0}, "aeq bank 0");
  expectWords(rec, 59976, {16, -1, 2000, 2001, 2002, 0}, "aeq bank 1");
  EXPECT_EQ(rec.i32(61316), 0);

  // Brio high-pass and crossover.
  EXPECT_EQ(rec.u32(61320), 1u);
  expectHalves(rec, 61324, {-7, 7}, "brio hpf");
  EXPECT_EQ(rec.u32(61328), kPattern32);
  EXPECT_EQ(rec.u32(61364), 2u);
  expectHalves(rec, 61368, {1, 2}, "xover lpf");
  expectHalves(rec, 61396, {3, 4}, "xover hpf");
  EXPECT_EQ(rec.u32(61372), kPattern32);

  // Bass enhancement, limiter crossovers, distortion prevention.
  expectWords(rec, 61424, ramp(63, 500), "thumpx");
  expectWords(rec, 61676, ramp(12, 20), "mbhl low");
  expectWords(rec, 61724, ramp(12, 40), "mbhl mid");
  EXPECT_EQ(rec.i32(61772), 6);
  EXPECT_EQ(rec.i32(61772 + 1036), 3);
  EXPECT_EQ(rec.i32(63940), 7);
  EXPECT_EQ(rec.i32(63940 + 1036), 4);
  EXPECT_EQ(rec.u32(61776), kPattern32);
}

// With their locator lists empty, every selected region is filled from the
// embedded rooms, in their order (the last one written over the start).
TEST(PostmixDriver, EmbeddedRoomsServeEveryEmptyList) {
  HeronSettings s = fullSettings();
  s.mutable_postmix()->clear_wideroom();
  s.mutable_postmix()->clear_multichroom();
  const listeningModel caller = callerModel();
  Record rec;
  QuillHeron_v1_1_Pb conv(48000);
  ASSERT_EQ(conv.populate(quill::pb::hub::AR_OUT_ATTACHED0, s, *rec, false, {&caller}, 14), 0);
  for (std::size_t at : {488u, 33328u, 45668u}) {
    EXPECT_EQ(rec.bytes()[at + 15], 0xf2) << at;
    expectRoomHeader(rec, at, 0xaa, 0x1, 2, "embedded");
    expectHalves(rec, at + 40, {-1, -2, 102, 103, 104, 105, 106, 107}, "embedded coeffs");
  }
}

TEST(PostmixDriver, DesignFallbacks) {
  HeronSettings s = fullSettings();
  Postmix* pm = s.mutable_postmix();
  pm->mutable_thumpx_coef()->clear_coeffs();
  auto* tp = pm->mutable_thumpx_coef()->mutable_filterdesignparams();
  tp->set_sampling_rate(48000);
  tp->set_custom_speaker_size(80);
  pm->clear_mbhl_coef();
  pm->clear_mbhl_dist_prev();
  auto* d = s.mutable_designerparameters();
  d->mutable_mbhl_design_params()->set_sampling_rate(48000);
  d->mutable_mbhl_design_params()->set_custom_low_cross(250);
  d->mutable_mbhl_design_params()->set_custom_mid_cross(4000);
  for (int i = 0; i < 2; ++i) d->add_mbhl_nf_design_params()->set_nf_band_ct(2 + i);

  Record rec;
  QuillHeron_v1_1_Pb conv(48000);
  const listeningModel caller = callerModel();
  ASSERT_EQ(conv.populate(quill::pb::hub::AR_OUT_ATTACHED0, s, *rec, false, {&caller}, 14), 0);

  std::int32_t thumpx[63];
  alignas(8) unsigned char work[864] = {};
  ASSERT_EQ(OVA_THUMPX_FilterDesignFxp32(80, 0.333499998f, 0.5f, 0.8f, 48000, thumpx, 5.5f, 500.0f, 44.0f, 1.5f,
                                         0x3F800000, work),
            0);
  expectWords(rec, 61424, std::vector<std::int32_t>(thumpx, thumpx + 63), "designed thumpx");
  std::int32_t low[12], mid[12];
  ASSERT_EQ(QUILL_McDyn_FilterDesignFxp32(250.0f, 48000, low), 0);
  ASSERT_EQ(QUILL_McDyn_FilterDesignFxp32(4000.0f, 48000, mid), 0);
  expectWords(rec, 61676, std::vector<std::int32_t>(low, low + 12), "designed low");
  expectWords(rec, 61724, std::vector<std::int32_t>(mid, mid + 12), "designed mid");
  EXPECT_EQ(rec.i32(61772), 6);              // designed sense bank
  EXPECT_EQ(rec.i32(61772 + 1048), 2);       // notch_band_count of design 0
  EXPECT_EQ(rec.i32(63940 + 1048), 3);       // and of design 1
}

// Region start offsets, for the "what stays written" checks.
constexpr std::size_t kMultiR = 488, kFrontR = 33328, kWideR = 45668, kHpeqR = 58008, kHpfR = 58548,
                      kAeqR = 58632, kBrioHpfR = 61320, kXoverR = 61364, kThumpxR = 61424, kMbhlR = 61676,
                      kDistR = 61772, kEnd = 66108;

struct FailureCase {
  const char* name;
  std::function<void(HeronSettings&)> edit;
  int room_mask;
  int result;
  std::vector<std::pair<std::size_t, std::size_t>> written;    // ranges with some write
  std::vector<std::pair<std::size_t, std::size_t>> untouched;  // ranges left alone
};

TEST(PostmixDriver, FailureCodesAndWhatStaysWritten) {
  const FailureCase kCases[] = {
      {"negative ref_htest: control only",
       [](HeronSettings& s) { s.mutable_postmix()->mutable_enhance2()->add_ref_htest(-1); }, 14, -997,
       {{0, kMultiR}}, {{kMultiR, kEnd}}},
      {"wide room not found: nothing else",
       [](HeronSettings& s) { s.mutable_postmix()->mutable_wideroom(0)->set_uuid("{" + std::string(kWide) + "}"); },
       14, -999, {{0, kMultiR}}, {{kMultiR, kEnd}}},
      {"front room too large: wide stays",
       [](HeronSettings& s) {
         auto* r = s.mutable_postmix()->mutable_model()->mutable_rooms(1);
         for (int i = 0; i < 6200; ++i) r->mutable_coefftables(1)->add_coeff_16(i);
       },
       14, -997, {{kWideR, kHpeqR}, {kFrontR, kFrontR + 60}}, {{kMultiR, kFrontR}, {kHpeqR, kEnd}}},
      {"multichannel room without the rate",
       [](HeronSettings& s) {
         auto* pm = s.mutable_postmix();
         pm->add_frontroom()->set_uuid(kFront);  // the embedded list no longer serves the front
         addRoom(pm->mutable_model(), "cccccccc-0000-0000-0000-000000000002", 1, {1}, 32000);
         pm->mutable_multichroom(0)->set_uuid("cccccccc-0000-0000-0000-000000000002");
       },
       14, -998, {{kFrontR, kHpeqR}}, {{kMultiR, kFrontR}, {kHpeqR, kEnd}}},
      {"room_mask 0 reads no room list",
       [](HeronSettings& s) { s.mutable_postmix()->mutable_wideroom(0)->set_uuid("nope"); }, 0, 0,
       {{kHpeqR, kEnd}}, {{kMultiR, kHpeqR}}},
      {"room_mask 2: only wide; other bits ignored",
       [](HeronSettings&) {}, 2 | 1 | 16, 0, {{kWideR, kHpeqR}}, {{kMultiR, kWideR}}},
      {"last headphone EQ fails",
       [](HeronSettings& s) { s.mutable_postmix()->add_hpeqcoef()->set_uuid("BAD"); s.mutable_postmix()->mutable_model()->add_headphones()->set_uuid("BAD"); },
       14, -998, {{kHpeqR, kHpfR}}, {{kHpfR, kEnd}}},
      {"first headphone EQ fails, second loads",
       [](HeronSettings& s) {
         auto* pm = s.mutable_postmix();
         pm->mutable_model()->add_headphones()->set_uuid("BAD");
         pm->mutable_hpeqcoef(0)->set_uuid("BAD");
       },
       14, 0, {{kHpeqR, kEnd}}, {}},
      {"headphone EQ for another route is no EQ",
       [](HeronSettings& s) { s.mutable_postmix()->mutable_model()->mutable_headphones(0)->mutable_audio_route_info(0)->set_route(quill::pb::hub::AR_OUT_USB); },
       14, 0, {{kHpfR, kEnd}}, {{kHpeqR, kHpfR}}},
      {"acoustic EQ not found",
       [](HeronSettings& s) { s.mutable_postmix()->mutable_aeqcoef(0)->set_uuid("x"); }, 14, -998,
       {{kHpfR, kAeqR}}, {{kAeqR, kEnd}}},
      {"brio high-pass without the rate",
       [](HeronSettings& s) { s.mutable_postmix()->mutable_brio_hpf_coef()->mutable_hpf_coeffs(0)->set_samplerate(1); },
       14, -998, {{kXoverR, kThumpxR}, {kBrioHpfR, kBrioHpfR + 4}}, {{kBrioHpfR + 4, kXoverR}, {kThumpxR, kEnd}}},
      {"thumpx table of another rate",
       [](HeronSettings& s) { setTable(s.mutable_postmix()->mutable_thumpx_coef()->add_coeffs(), 44100, {1}); },
       14, -998, {{kThumpxR, kMbhlR}}, {{kMbhlR, kEnd}}},
      {"thumpx speaker size 11 skips its coefficients",
       [](HeronSettings& s) {
         s.mutable_postmix()->mutable_brio()->mutable_thumpx()->set_speaker_size(11);
         setTable(s.mutable_postmix()->mutable_thumpx_coef()->add_coeffs(), 44100, {1});
       },
       14, 0, {{kMbhlR, kEnd}}, {{kThumpxR, kMbhlR}}},
      {"brio disabled skips thumpx",
       [](HeronSettings& s) { s.mutable_postmix()->mutable_brio()->set_enable(0); }, 14, 0,
       {{kMbhlR, kEnd}}, {{kThumpxR, kMbhlR}}},
      {"mbhl table missing",
       [](HeronSettings& s) { s.mutable_postmix()->mutable_mbhl_coef()->clear_mid_cross_coeffs(); }, 14, -998,
       {{kThumpxR, kMbhlR}}, {{kMbhlR, kEnd}}},
      {"distortion prevention fails last",
       [](HeronSettings& s) { s.mutable_postmix()->mutable_mbhl_dist_prev(1)->clear_sense_config(); }, 14, -998,
       {{kMbhlR, kDistR}}, {{kDistR, kEnd}}},
      {"dist_prev_enable 0",
       [](HeronSettings& s) { s.mutable_postmix()->mutable_mbhl()->set_dist_prev_enable(0); }, 14, 0,
       {{kMbhlR, kDistR}}, {{kDistR, kEnd}}},
      {"mbhl enable absent reads as its default 1",
       [](HeronSettings& s) { s.mutable_postmix()->mutable_mbhl()->clear_enable(); }, 14, 0,
       {{kMbhlR, kDistR}, {kDistR, kEnd}}, {}},
      {"mbhl absent", [](HeronSettings& s) { s.mutable_postmix()->clear_mbhl(); }, 14, 0, {{kThumpxR, kMbhlR}},
       {{kMbhlR, kEnd}}},
  };
  const listeningModel caller = callerModel();
  QuillHeron_v1_1_Pb conv(48000);
  for (const FailureCase& c : kCases) {
    HeronSettings s = fullSettings();
    c.edit(s);
    Record rec;
    EXPECT_EQ(conv.populate(quill::pb::hub::AR_OUT_ATTACHED0, s, *rec, false, {&caller}, c.room_mask), c.result)
        << c.name;
    for (const auto& r : c.written) EXPECT_FALSE(rec.untouched(r.first, r.second)) << c.name << " @" << r.first;
    for (const auto& r : c.untouched) {
      EXPECT_EQ(rec.firstWritten(r.first, r.second), r.second) << c.name << " @" << r.first;
    }
  }
}

TEST(PostmixDriver, RouteLookup) {
  Record rec;
  QuillHeron_v1_1_Pb conv(48000);
  RouteConfiguration legacy_only;
  legacy_only.add_tech()->mutable_heron();
  EXPECT_EQ(conv.populate(legacy_only, *rec, false, {}, 14), -1000);
  EXPECT_EQ(conv.populate(RouteConfiguration(), *rec, false, {}, 14), -1000);
  EXPECT_TRUE(rec.untouched(0, kEnd));

  // The route's own AudioRoute filters the headphone EQ.
  HeronSettings s = fullSettings();
  RouteConfiguration usb = headphoneRoute(s);
  usb.set_route(quill::pb::hub::AR_OUT_USB);
  const listeningModel caller = callerModel();
  EXPECT_EQ(conv.populate(usb, *rec, false, {&caller}, 14), 0);
  EXPECT_TRUE(rec.untouched(kHpeqR, kHpfR));
}

}  // namespace
