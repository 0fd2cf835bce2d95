// The postmix driver end to end: a headphone route at 48000 Hz with rooms, a
// headphone EQ, an acoustic EQ and every coefficient table, checked region by
// region against bytes derived from the record layout; each failure code with
// what stays written and, for the decisions, the trace entries (step, item,
// outcome, reason, source, model, count, result) worked out by hand, with the
// same record when no trace is asked for; the trace's identifiers, rates and
// capacity limit. The reverse convert's round trip: coef_convert_test.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "postmix_scenario.h"

namespace {

using namespace postmixtest;  // the scenario (identifiers, models, settings) and coeftest's helpers

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

TEST(PostmixDriver, FullHeadphoneRoute) {
  const HeronSettings s = fullSettings();
  const listeningModel caller = callerModel();
  Record rec;
  QuillHeron_v1_1_Pb conv(48000);
  ASSERT_EQ(conv.populate(headphoneRoute(s), *rec, true, {&caller}, 14), 0);

  // Control part ran: lyra_input_gain in the engine's slot order.
  expectWords(rec, 24, {13, 11, 12, 14, 10, 15}, 0, "lyra_input_gain");

  // Multichannel room from the caller's model.
  expectRoomHeader(rec, 488, 0xcc, 0x3F, 4, "multichannel");
  expectHalves(rec, 528, ramp(4, 7000), 6, "multichannel coeffs");
  // Front: the caller's copy of the first embedded room, then the second
  // embedded room over its start.
  expectRoomHeader(rec, 33328, 0xaa, 0x1, 2, "front");
  EXPECT_EQ(rec.bytes()[33328 + 15], 0xf2);
  expectHalves(rec, 33368, {-1, -2, 102, 103, 104, 105, 106, 107}, 10, "front coeffs");
  // Wide room from the caller's model.
  expectRoomHeader(rec, 45668, 0x11, 0x3, 6, "wide");
  expectHalves(rec, 45708, ramp(6, -3), 8, "wide coeffs");

  // Headphone EQ.
  EXPECT_EQ(rec.bytes()[58008], 0xdd);
  EXPECT_EQ(rec.u32(58024), 48000u);
  EXPECT_EQ(rec.u32(58028), 2u);
  expectHalves(rec, 58032, {5, 6, 1, 2, -1, -2}, 8, "hpeq");

  // Output high-pass.
  EXPECT_EQ(rec.u32(58548), 2u);
  expectWords(rec, 58552, ramp(5, -2), 6, "hpf");

  // Acoustic EQ: cleared, FIR stages absent.
  expectWords(rec, 58632, {24, -1, 1000, 1001, 1002, 0}, 0, "aeq bank 0");
  expectWords(rec, 59976, {16, -1, 2000, 2001, 2002, 0}, 0, "aeq bank 1");
  EXPECT_EQ(rec.i32(61316), 0);

  // Brio high-pass and crossover.
  EXPECT_EQ(rec.u32(61320), 1u);
  expectHalves(rec, 61324, {-7, 7}, 4, "brio hpf");
  EXPECT_EQ(rec.u32(61364), 2u);
  expectHalves(rec, 61368, {1, 2}, 14, "xover lpf");
  expectHalves(rec, 61396, {3, 4}, 14, "xover hpf");

  // Bass enhancement, limiter crossovers, distortion prevention.
  expectWords(rec, 61424, ramp(63, 500), 0, "thumpx");
  expectWords(rec, 61676, ramp(12, 20), 0, "mbhl low");
  expectWords(rec, 61724, ramp(12, 40), 0, "mbhl mid");
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
    expectHalves(rec, at + 40, {-1, -2, 102, 103, 104, 105, 106, 107}, 0, "embedded coeffs");
  }
}

// Region start offsets, for the "what stays written" checks.
constexpr std::size_t kMultiR = 488, kFrontR = 33328, kWideR = 45668, kHpeqR = 58008, kHpfR = 58548,
                      kAeqR = 58632, kBrioHpfR = 61320, kXoverR = 61364, kThumpxR = 61424, kMbhlR = 61676,
                      kDistR = 61772, kEnd = 66108;


// One trace entry, as worked out by hand.
struct Step {
  int step, item, outcome, reason, source, model, count, result;
};

constexpr int L = QUILL_OUTCOME_LOADED, N = QUILL_OUTCOME_NOTHING, F = QUILL_OUTCOME_FAILED,
              S = QUILL_OUTCOME_SKIPPED, X = QUILL_OUTCOME_NOT_REACHED;
constexpr int kEmbedded = QUILL_TRACE_MODEL_EMBEDDED, kNone = QUILL_TRACE_MODEL_NONE;

// The full scenario, step by step.
const std::vector<Step> kFull = {
    {QUILL_STEP_CONTROL, -1, L, 0, QUILL_SOURCE_NONE, kNone, 0, 0},
    {QUILL_STEP_WIDE_ROOM, 0, L, 0, QUILL_SOURCE_MODEL, 0, 6, 0},
    {QUILL_STEP_FRONT_ROOM, 0, L, 0, QUILL_SOURCE_MODEL, 0, 8, 0},  // the caller's copy wins
    {QUILL_STEP_FRONT_ROOM, 1, L, 0, QUILL_SOURCE_MODEL, kEmbedded, 2, 0},
    {QUILL_STEP_MULTICHANNEL_ROOM, 0, L, 0, QUILL_SOURCE_MODEL, 0, 4, 0},
    {QUILL_STEP_HEADPHONE_EQ, 0, N, QUILL_REASON_NOT_FOR_ROUTE, QUILL_SOURCE_NONE, kNone, 0, 1},
    {QUILL_STEP_HEADPHONE_EQ, 1, L, 0, QUILL_SOURCE_MODEL, kEmbedded, 6, 0},
    {QUILL_STEP_OUTPUT_HPF, -1, L, 0, QUILL_SOURCE_TABLE, kNone, 5, 0},
    {QUILL_STEP_AEQ, -1, L, 0, QUILL_SOURCE_MODEL, kEmbedded, 2, 0},
    {QUILL_STEP_BRIO_CROSSOVER, -1, L, 0, QUILL_SOURCE_TABLE, kNone, 4, 0},
    {QUILL_STEP_BRIO_HPF, -1, L, 0, QUILL_SOURCE_TABLE, kNone, 2, 0},
    {QUILL_STEP_THUMPX, -1, L, 0, QUILL_SOURCE_TABLE, kNone, 63, 0},
    {QUILL_STEP_MBHL_CROSSOVER, -1, L, 0, QUILL_SOURCE_TABLE, kNone, 24, 0},
    {QUILL_STEP_DISTORTION_PREVENTION, -1, L, 0, QUILL_SOURCE_RECORDS, kNone, 2, 0},
};

// kFull with the entries from `from` on replaced by `tail`, and with every
// step from `unreached` on (if given) not reached.
std::vector<Step> fullThen(std::size_t from, std::vector<Step> tail, int unreached = QUILL_STEP_COUNT) {
  std::vector<Step> steps(kFull.begin(), kFull.begin() + from);
  steps.insert(steps.end(), tail.begin(), tail.end());
  for (int s = unreached; s < QUILL_STEP_COUNT; ++s) {
    steps.push_back({s, -1, X, QUILL_REASON_EARLIER_STEP_FAILED, QUILL_SOURCE_NONE, kNone, 0, 0});
  }
  return steps;
}
std::vector<Step> fullWith(std::size_t at, std::vector<Step> instead, std::size_t replaced = 1) {
  std::vector<Step> steps = fullThen(at, instead);
  steps.insert(steps.end(), kFull.begin() + at + replaced, kFull.end());
  return steps;
}
const Step kSkippedRooms[] = {{QUILL_STEP_WIDE_ROOM, -1, S, QUILL_REASON_ROOM_MASK, 0, kNone, 0, 0},
                              {QUILL_STEP_FRONT_ROOM, -1, S, QUILL_REASON_ROOM_MASK, 0, kNone, 0, 0},
                              {QUILL_STEP_MULTICHANNEL_ROOM, -1, S, QUILL_REASON_ROOM_MASK, 0, kNone, 0, 0}};

struct FailureCase {
  const char* name;
  std::function<void(HeronSettings&)> edit;
  int room_mask;
  int result;
  std::vector<std::pair<std::size_t, std::size_t>> written;    // ranges with some write
  std::vector<std::pair<std::size_t, std::size_t>> untouched;  // ranges left alone
  std::vector<Step> steps = {};                                // the trace; empty: not checked
};

TEST(PostmixDriver, FailureCodesAndWhatStaysWritten) {
  const FailureCase kCases[] = {
      {"full scenario", [](HeronSettings&) {}, 14, 0, {{kMultiR, kEnd}}, {}, kFull},
      {"negative ref_htest: control only",
       [](HeronSettings& s) { s.mutable_postmix()->mutable_enhance2()->add_ref_htest(-1); }, 14, -997,
       {{0, kMultiR}}, {{kMultiR, kEnd}},
       fullThen(0, {{QUILL_STEP_CONTROL, -1, F, QUILL_REASON_NEGATIVE_REF_HTEST, 0, kNone, 0, -997}},
                QUILL_STEP_WIDE_ROOM)},
      {"wide room not found: nothing else",
       [](HeronSettings& s) { s.mutable_postmix()->mutable_wideroom(0)->set_uuid("{" + std::string(kWide) + "}"); },
       14, -999, {{0, kMultiR}}, {{kMultiR, kEnd}},
       fullThen(1, {{QUILL_STEP_WIDE_ROOM, 0, F, QUILL_REASON_NOT_FOUND, 0, kNone, 0, -999}}, QUILL_STEP_FRONT_ROOM)},
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
       {{kHpeqR, kEnd}}, {{kMultiR, kHpeqR}},
       fullWith(1, {kSkippedRooms[0], kSkippedRooms[1], kSkippedRooms[2]}, 4)},
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
       14, 0, {{kMbhlR, kEnd}}, {{kThumpxR, kMbhlR}},
       fullWith(11, {{QUILL_STEP_THUMPX, -1, S, QUILL_REASON_SPEAKER_SIZE, 0, kNone, 0, 0}})},
      {"thumpx designed for another rate, mbhl off",
       [](HeronSettings& s) {
         s.mutable_postmix()->mutable_thumpx_coef()->clear_coeffs();
         s.mutable_postmix()->mutable_thumpx_coef()->mutable_filterdesignparams()->set_sampling_rate(44100);
         s.mutable_postmix()->mutable_mbhl()->set_enable(0);
       },
       14, -998, {{kXoverR, kThumpxR}}, {{kThumpxR, kEnd}},
       fullThen(11, {{QUILL_STEP_THUMPX, -1, F, QUILL_REASON_DESIGN_RATE, QUILL_SOURCE_DESIGN, kNone, 0, -998}},
                QUILL_STEP_MBHL_CROSSOVER)},
      {"brio disabled skips thumpx",
       [](HeronSettings& s) { s.mutable_postmix()->mutable_brio()->set_enable(0); }, 14, 0,
       {{kMbhlR, kEnd}}, {{kThumpxR, kMbhlR}}},
      {"mbhl mid crossover for another rate",
       [](HeronSettings& s) { s.mutable_postmix()->mutable_mbhl_coef()->mutable_mid_cross_coeffs()->set_samplerate(44100); },
       14, -998, {{kThumpxR, kMbhlR}, {kMbhlR, kMbhlR + 48}}, {{kMbhlR + 48, kEnd}},  // the low one is copied
       fullThen(12, {{QUILL_STEP_MBHL_CROSSOVER, -1, F, QUILL_REASON_NO_TABLE_FOR_RATE, QUILL_SOURCE_TABLE, kNone, 12, -998}},
                QUILL_STEP_DISTORTION_PREVENTION)},
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
    Record rec, traced;
    EXPECT_EQ(conv.populate(quill::pb::hub::AR_OUT_ATTACHED0, s, *rec, false, {&caller}, c.room_mask), c.result)
        << c.name;
    QuillPostmixTrace trace;
    std::memset(&trace, 0x5A, sizeof trace);
    EXPECT_EQ(conv.populate(headphoneRoute(s), *traced, false, {&caller}, c.room_mask, &trace), c.result) << c.name;
    EXPECT_EQ(std::memcmp(rec.bytes(), traced.bytes(), sizeof(*rec)), 0) << c.name << ": the trace changes nothing";
    EXPECT_EQ(trace.result, c.result) << c.name;
    EXPECT_EQ(trace.dropped, 0) << c.name;
    if (!c.steps.empty()) {
      ASSERT_EQ(trace.count, static_cast<int>(c.steps.size())) << c.name;
      for (int i = 0; i < trace.count; ++i) {
        const QuillTraceEntry& e = trace.entries[i];
        const Step& w = c.steps[i];
        const Step got = {e.step, e.item, e.outcome, e.reason, e.source, e.model, e.count, e.result};
        EXPECT_EQ(std::memcmp(&got, &w, sizeof got), 0)
            << c.name << ", entry " << i << " " << quillTraceStepName(e.step) << ": item " << e.item << " outcome "
            << +e.outcome << " reason " << quillTraceReasonName(e.reason) << " source " << +e.source << " model "
            << e.model << " count " << e.count << " result " << e.result;
      }
    }
    for (const auto& r : c.written) EXPECT_FALSE(rec.untouched(r.first, r.second)) << c.name << " @" << r.first;
    for (const auto& r : c.untouched) {
      EXPECT_EQ(rec.firstWritten(r.first, r.second), r.second) << c.name << " @" << r.first;
    }
  }
}

// The route's own AudioRoute filters the headphone EQ. (A route without
// current settings: ctrl_paths_test.)
TEST(PostmixDriver, RouteFiltersTheHeadphoneEq) {
  Record rec;
  QuillHeron_v1_1_Pb conv(48000);
  HeronSettings s = fullSettings();
  RouteConfiguration usb = headphoneRoute(s);
  usb.set_route(quill::pb::hub::AR_OUT_USB);
  const listeningModel caller = callerModel();
  EXPECT_EQ(conv.populate(usb, *rec, false, {&caller}, 14), 0);
  EXPECT_TRUE(rec.untouched(kHpeqR, kHpfR));
}

TEST(PostmixTrace, NamesTheIdentifierAndTheDesignRate) {
  HeronSettings s = fullSettings();
  s.mutable_postmix()->mutable_thumpx_coef()->clear_coeffs();
  s.mutable_postmix()->mutable_thumpx_coef()->mutable_filterdesignparams()->set_sampling_rate(44100);
  const listeningModel caller = callerModel();
  Record rec;
  QuillPostmixTrace trace;
  QuillHeron_v1_1_Pb(48000).populate(headphoneRoute(s), *rec, false, {&caller}, 14, &trace);
  EXPECT_STREQ(trace.entries[1].uuid, kWide);
  EXPECT_EQ(trace.entries[1].rate, 48000);
  EXPECT_STREQ(trace.entries[0].uuid, "");
  EXPECT_EQ(trace.entries[11].rate, 44100);
}

TEST(PostmixTrace, CountsWhatDoesNotFit) {
  HeronSettings s = fullSettings();
  for (int i = 0; i < 40; ++i) s.mutable_postmix()->add_wideroom()->set_uuid(kWide);  // 41 wide rooms
  const listeningModel caller = callerModel();
  Record rec;
  QuillPostmixTrace trace;
  EXPECT_EQ(QuillHeron_v1_1_Pb(48000).populate(headphoneRoute(s), *rec, false, {&caller}, 14, &trace), 0);
  EXPECT_EQ(trace.count, QUILL_TRACE_CAPACITY);
  EXPECT_EQ(trace.dropped, static_cast<int>(kFull.size()) + 40 - QUILL_TRACE_CAPACITY);
}

}  // namespace
