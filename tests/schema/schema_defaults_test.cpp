// What a reader sees for fields that are absent: the schema defaults that the
// engine's neutral tuning and the envelopes depend on, with nothing present
// and nothing written.
#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>

#include "designerParams.pb.h"
#include "heron2.pb.h"
#include "heron_v1_1.pb.h"
#include "listeningmodel.pb.h"
#include "quillcsPB.pb.h"
#include "routeconfiguration.pb.h"
#include "techMbhl.pb.h"
#include "thumpxFilterDesignData.pb.h"

namespace {

namespace v11 = quill::pb::heron_v1_1;
namespace legacy = quill::pb::heron;
namespace tech = quill::pb::tech;
namespace hub = quill::pb::hub;
namespace model = quill::pb::model;

// An int32 field read through reflection, by name.
int32_t Get(const google::protobuf::Message& m, const char* name) {
  const auto* field = m.GetDescriptor()->FindFieldByName(name);
  EXPECT_NE(field, nullptr) << name;
  return field ? m.GetReflection()->GetInt32(m, field) : -12345;
}

// The current fader defaults are the engine's idle fader; the legacy fader
// has no schema defaults at all.
TEST(SchemaDefaults, FaderCurrentVersusLegacy) {
  const struct { const char* name; int32_t current; } kFader[] = {
      {"shadow", 1}, {"out_length", 1}, {"hold_length", 0}, {"in_length", 1}, {"state", 0}};
  v11::HeronSettings current;
  legacy::HeronSettings old;
  // Faders mutated into existence on an otherwise empty envelope.
  const v11::FaderInfo& pre = *current.mutable_premixfader();
  for (const auto& c : kFader) {
    EXPECT_EQ(Get(pre, c.name), c.current) << c.name;
    EXPECT_EQ(Get(*current.mutable_postmixfader(), c.name), c.current) << c.name;
    EXPECT_EQ(Get(*old.mutable_premixfader(), c.name), 0) << c.name;
  }
  EXPECT_EQ(pre.ByteSizeLong(), 0u);
}

TEST(SchemaDefaults, EnvelopeVersions) {
  EXPECT_EQ(v11::HeronSettings().version(), "1.01.00");
  EXPECT_FALSE(v11::HeronSettings().has_version());
  EXPECT_EQ(legacy::HeronSettings().version(), "1.01.00");
  EXPECT_EQ(hub::Profile().version(), "1.00.00");
}

// The limiter's neutral tuning, with its fixed-point meaning; one row per
// field of the message.
TEST(SchemaDefaults, MbhlNeutralTuningWithNothingPresent) {
  const struct { const char* name; int32_t expected; } kMbhl[] = {
      {"enable", 1},           {"output_gain", 32767},   {"anti_clip_level", 6554},
      {"com_attack", 5},       {"low_decay", 1000},      {"mid_decay", 500},
      {"high_decay", 200},     {"low_ratio", 1 << 28},   {"mid_ratio", 1 << 28},
      {"high_ratio", 1 << 28}, {"mode", 0},              {"boost", 1 << 20},
      {"low_cross", 300},      {"mid_cross", 2000},      {"low_thresh", 1 << 27},
      {"mid_thresh", 1 << 27}, {"high_thresh", 1 << 27}, {"low_makeup", 1 << 23},
      {"mid_makeup", 1 << 23}, {"high_makeup", 1 << 23}, {"dist_prev_enable", 0},
  };
  const tech::Mbhl m;
  ASSERT_EQ(m.GetDescriptor()->field_count(), static_cast<int>(std::size(kMbhl)));
  for (const auto& c : kMbhl) {
    EXPECT_EQ(Get(m, c.name), c.expected) << c.name;
    EXPECT_FALSE(m.GetReflection()->HasField(m, m.GetDescriptor()->FindFieldByName(c.name))) << c.name;
  }
  EXPECT_EQ(m.ByteSizeLong(), 0u);
}

TEST(SchemaDefaults, DesignerInputs) {
  const tech::ThumpxFilterDesignParameters t;
  EXPECT_EQ(t.bass_ctrl(), 0.333499998);  // the written decimal, not 1/3
  EXPECT_EQ(t.hp_ratio(), 0.5);
  EXPECT_EQ(t.ext_bass(), 0.8);
  EXPECT_EQ(t.lp_ratio(), 5.5);
  EXPECT_EQ(t.pre_lp_freq(), 500.0);
  EXPECT_EQ(t.harm_hp_freq(), 44.0);
  EXPECT_EQ(t.clip_level(), 1.5);
  EXPECT_EQ(t.sampling_rate(), 0);

  const tech::MbhlCustomCoeffParams x;
  EXPECT_EQ(x.custom_low_cross(), 300);
  EXPECT_EQ(x.custom_mid_cross(), 5000);  // not the run-time 2000

  const tech::MbhlNotchDesignParams n;
  EXPECT_EQ(n.nf_attk_ms(), 200.0f);
  EXPECT_EQ(n.nf_rel_ms(), 50.0f);
  EXPECT_EQ(n.nf_base_freq(), 100.0f);
  EXPECT_EQ(n.nf_base_q(), 10.0f);
  EXPECT_EQ(n.nf_thld(), 0.0f);
}

TEST(SchemaDefaults, ListeningModelEntries) {
  const model::roomModel room;
  EXPECT_EQ(room.exttype(), model::NONE);
  EXPECT_EQ(static_cast<int>(room.exttype()), -1);
  EXPECT_EQ(room.version(), "0.0.0.0");
  const model::headphoneEq hp;
  EXPECT_EQ(hp.exttype(), model::NONE);
  EXPECT_EQ(hp.version(), "0.0.0.0");
}

TEST(SchemaDefaults, RoutesAndContainers) {
  const hub::RouteConfiguration rc;
  EXPECT_FALSE(rc.has_route());
  EXPECT_EQ(rc.route(), hub::AR_OUT_ATTACHED0);
  EXPECT_EQ(static_cast<int>(rc.route()), 1);
  EXPECT_EQ(hub::AudioRouteInfo().route(), hub::AR_OUT_ATTACHED0);

  const hub::AudioRouteDescriptor d;
  EXPECT_EQ(d.over_ear(), "over-ear");
  EXPECT_EQ(d.in_ear(), "in-ear");
  EXPECT_EQ(d.external_speakers(), "external");
  EXPECT_EQ(d.car(), "car");

  EXPECT_EQ(hub::Workspace().applyto(), hub::AT_DEFAULT);
  EXPECT_EQ(hub::SignonToken().accounttype(), hub::ACCOUNT_GOOGLE);
  EXPECT_EQ(tech::BandData().type(), tech::PEQ_BAND_TYPE_TRADITIONAL);
}

}  // namespace
