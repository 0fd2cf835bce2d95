// The postmix driver's trace: for the full scenario and for variants that
// skip or fail a step, every entry (step, item, outcome, reason, source,
// model, count, result) against values worked out by hand from the settings;
// the capacity limit; and the same record bytes with and without a trace.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <vector>

#include "postmix_scenario.h"

namespace {

using coeftest::Record;
using coeftest::setTable;
using namespace postmixtest;

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

// The first `from` steps, then `tail`.
std::vector<Step> with(std::vector<Step> steps, std::size_t from, std::vector<Step> tail) {
  steps.resize(from);
  steps.insert(steps.end(), tail.begin(), tail.end());
  return steps;
}

const Step kNotReached[] = {
    {0, -1, X, QUILL_REASON_EARLIER_STEP_FAILED, QUILL_SOURCE_NONE, kNone, 0, 0}};
std::vector<Step> notReachedFrom(int step) {
  std::vector<Step> out;
  for (int s = step; s < QUILL_STEP_COUNT; ++s) {
    out.push_back(kNotReached[0]);
    out.back().step = s;
  }
  return out;
}

struct Case {
  const char* name;
  std::function<void(Postmix*)> change;
  int room_mask;
  int result;
  std::vector<Step> steps;
};

const Case kCases[] = {
    {"full scenario", [](Postmix*) {}, 14, 0, kFull},
    {"room mask 0 and a speaker size of 11",
     [](Postmix* pm) { pm->mutable_brio()->mutable_thumpx()->set_speaker_size(11); }, 0, 0,
     {kFull[0], {QUILL_STEP_WIDE_ROOM, -1, S, QUILL_REASON_ROOM_MASK, 0, kNone, 0, 0},
      {QUILL_STEP_FRONT_ROOM, -1, S, QUILL_REASON_ROOM_MASK, 0, kNone, 0, 0},
      {QUILL_STEP_MULTICHANNEL_ROOM, -1, S, QUILL_REASON_ROOM_MASK, 0, kNone, 0, 0}, kFull[5], kFull[6], kFull[7],
      kFull[8], kFull[9], kFull[10], {QUILL_STEP_THUMPX, -1, S, QUILL_REASON_SPEAKER_SIZE, 0, kNone, 0, 0},
      kFull[12], kFull[13]}},
    {"negative ref_htest stops at the control record",
     [](Postmix* pm) { pm->mutable_enhance2()->add_ref_htest(-1); }, 14, -997,
     with({{QUILL_STEP_CONTROL, -1, F, QUILL_REASON_NEGATIVE_REF_HTEST, 0, kNone, 0, -997}}, 1,
          notReachedFrom(QUILL_STEP_WIDE_ROOM))},
    {"unknown wide room",
     [](Postmix* pm) { pm->mutable_wideroom(0)->set_uuid("99999999-0000-0000-0000-000000000000"); }, 14, -999,
     with(with(kFull, 1, {{QUILL_STEP_WIDE_ROOM, 0, F, QUILL_REASON_NOT_FOUND, 0, kNone, 0, -999}}), 2,
          notReachedFrom(QUILL_STEP_FRONT_ROOM))},
    {"MBHL mid crossover for another rate",
     [](Postmix* pm) { pm->mutable_mbhl_coef()->mutable_mid_cross_coeffs()->set_samplerate(44100); }, 14, -998,
     with(kFull, 12,
          {{QUILL_STEP_MBHL_CROSSOVER, -1, F, QUILL_REASON_NO_TABLE_FOR_RATE, QUILL_SOURCE_TABLE, kNone, 12, -998},
           {QUILL_STEP_DISTORTION_PREVENTION, -1, X, QUILL_REASON_EARLIER_STEP_FAILED, 0, kNone, 0, 0}})},
    {"Thumpx designed for another rate, MBHL off",
     [](Postmix* pm) {
       pm->mutable_thumpx_coef()->clear_coeffs();
       pm->mutable_thumpx_coef()->mutable_filterdesignparams()->set_sampling_rate(44100);
       pm->mutable_mbhl()->set_enable(0);
     },
     14, -998,
     with(kFull, 11,
          {{QUILL_STEP_THUMPX, -1, F, QUILL_REASON_DESIGN_RATE, QUILL_SOURCE_DESIGN, kNone, 0, -998},
           {QUILL_STEP_MBHL_CROSSOVER, -1, X, QUILL_REASON_EARLIER_STEP_FAILED, 0, kNone, 0, 0},
           {QUILL_STEP_DISTORTION_PREVENTION, -1, X, QUILL_REASON_EARLIER_STEP_FAILED, 0, kNone, 0, 0}})},
};

TEST(PostmixTrace, EveryStepAsWorkedOutByHand) {
  const listeningModel caller = callerModel();
  const QuillHeron_v1_1_Pb conv(48000);
  for (const Case& c : kCases) {
    HeronSettings s = fullSettings();
    c.change(s.mutable_postmix());
    Record rec, plain;
    QuillPostmixTrace trace;
    std::memset(&trace, 0x5A, sizeof trace);
    EXPECT_EQ(conv.populate(headphoneRoute(s), *rec, false, {&caller}, c.room_mask, &trace), c.result) << c.name;
    // The trace changes nothing else.
    EXPECT_EQ(conv.populate(headphoneRoute(s), *plain, false, {&caller}, c.room_mask), c.result) << c.name;
    EXPECT_EQ(std::memcmp(plain.bytes(), rec.bytes(), sizeof(*rec)), 0) << c.name;
    EXPECT_EQ(trace.result, c.result) << c.name;
    EXPECT_EQ(trace.dropped, 0) << c.name;
    ASSERT_EQ(trace.count, static_cast<int>(c.steps.size())) << c.name;
    for (int i = 0; i < trace.count; ++i) {
      const QuillTraceEntry& e = trace.entries[i];
      const Step& w = c.steps[i];
      const std::string at = std::string(c.name) + ", entry " + std::to_string(i) + " " + quillTraceStepName(e.step);
      EXPECT_EQ(e.step, w.step) << at;
      EXPECT_EQ(e.item, w.item) << at;
      EXPECT_EQ(e.outcome, w.outcome) << at;
      EXPECT_EQ(e.reason, w.reason) << at << " " << quillTraceReasonName(e.reason);
      EXPECT_EQ(e.source, w.source) << at;
      EXPECT_EQ(e.model, w.model) << at;
      EXPECT_EQ(e.count, w.count) << at;
      EXPECT_EQ(e.result, w.result) << at;
    }
  }
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
