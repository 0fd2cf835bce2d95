// What a reader sees for fields that are absent: the schema defaults that the
// engine's neutral tuning and the envelopes depend on, with nothing present
// and nothing written.
#include <gtest/gtest.h>

#include <cstdint>

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

// The current fader defaults are the engine's idle fader; the legacy fader
// has no schema defaults at all.
struct FaderCase {
  const char* name;
  int32_t (*current)(const v11::FaderInfo&);
  int32_t (*old)(const legacy::FaderInfo&);
  int32_t expected_current;
};
const FaderCase kFaderCases[] = {
    {"shadow", [](const v11::FaderInfo& f) { return f.shadow(); },
     [](const legacy::FaderInfo& f) { return f.shadow(); }, 1},
    {"out_length", [](const v11::FaderInfo& f) { return f.out_length(); },
     [](const legacy::FaderInfo& f) { return f.out_length(); }, 1},
    {"hold_length", [](const v11::FaderInfo& f) { return f.hold_length(); },
     [](const legacy::FaderInfo& f) { return f.hold_length(); }, 0},
    {"in_length", [](const v11::FaderInfo& f) { return f.in_length(); },
     [](const legacy::FaderInfo& f) { return f.in_length(); }, 1},
    {"state", [](const v11::FaderInfo& f) { return f.state(); },
     [](const legacy::FaderInfo& f) { return f.state(); }, 0},
};

TEST(SchemaDefaults, FaderCurrentVersusLegacy) {
  v11::HeronSettings current;
  legacy::HeronSettings old;
  // Faders mutated into existence on an otherwise empty envelope.
  const v11::FaderInfo& pre = *current.mutable_premixfader();
  const v11::FaderInfo& post = *current.mutable_postmixfader();
  const legacy::FaderInfo& old_pre = *old.mutable_premixfader();
  for (const FaderCase& c : kFaderCases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(c.current(pre), c.expected_current);
    EXPECT_EQ(c.current(post), c.expected_current);
    EXPECT_EQ(c.old(old_pre), 0);
  }
  EXPECT_EQ(pre.ByteSizeLong(), 0u);
}

TEST(SchemaDefaults, EnvelopeVersions) {
  EXPECT_EQ(v11::HeronSettings().version(), "1.01.00");
  EXPECT_FALSE(v11::HeronSettings().has_version());
  EXPECT_EQ(legacy::HeronSettings().version(), "1.01.00");
  EXPECT_EQ(hub::Profile().version(), "1.00.00");
}

// The limiter's neutral tuning, with its fixed-point meaning.
struct MbhlCase {
  const char* name;
  int32_t (*get)(const tech::Mbhl&);
  int32_t expected;
};
const MbhlCase kMbhlCases[] = {
    {"enable", [](const tech::Mbhl& m) { return m.enable(); }, 1},
    {"output_gain", [](const tech::Mbhl& m) { return m.output_gain(); }, 32767},
    {"anti_clip_level", [](const tech::Mbhl& m) { return m.anti_clip_level(); }, 6554},
    {"com_attack", [](const tech::Mbhl& m) { return m.com_attack(); }, 5},
    {"low_decay", [](const tech::Mbhl& m) { return m.low_decay(); }, 1000},
    {"mid_decay", [](const tech::Mbhl& m) { return m.mid_decay(); }, 500},
    {"high_decay", [](const tech::Mbhl& m) { return m.high_decay(); }, 200},
    {"low_ratio", [](const tech::Mbhl& m) { return m.low_ratio(); }, 1 << 28},
    {"mid_ratio", [](const tech::Mbhl& m) { return m.mid_ratio(); }, 1 << 28},
    {"high_ratio", [](const tech::Mbhl& m) { return m.high_ratio(); }, 1 << 28},
    {"mode", [](const tech::Mbhl& m) { return m.mode(); }, 0},
    {"boost", [](const tech::Mbhl& m) { return m.boost(); }, 1 << 20},
    {"low_cross", [](const tech::Mbhl& m) { return m.low_cross(); }, 300},
    {"mid_cross", [](const tech::Mbhl& m) { return m.mid_cross(); }, 2000},
    {"low_thresh", [](const tech::Mbhl& m) { return m.low_thresh(); }, 1 << 27},
    {"mid_thresh", [](const tech::Mbhl& m) { return m.mid_thresh(); }, 1 << 27},
    {"high_thresh", [](const tech::Mbhl& m) { return m.high_thresh(); }, 1 << 27},
    {"low_makeup", [](const tech::Mbhl& m) { return m.low_makeup(); }, 1 << 23},
    {"mid_makeup", [](const tech::Mbhl& m) { return m.mid_makeup(); }, 1 << 23},
    {"high_makeup", [](const tech::Mbhl& m) { return m.high_makeup(); }, 1 << 23},
    {"dist_prev_enable", [](const tech::Mbhl& m) { return m.dist_prev_enable(); }, 0},
};

TEST(SchemaDefaults, MbhlNeutralTuningWithNothingPresent) {
  const tech::Mbhl m;
  const auto* desc = m.GetDescriptor();
  ASSERT_EQ(desc->field_count(), static_cast<int>(sizeof kMbhlCases / sizeof kMbhlCases[0]));
  for (const MbhlCase& c : kMbhlCases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(c.get(m), c.expected);
    const auto* field = desc->FindFieldByName(c.name);
    ASSERT_NE(field, nullptr);
    EXPECT_FALSE(m.GetReflection()->HasField(m, field));
  }
  EXPECT_EQ(m.ByteSizeLong(), 0u);
  EXPECT_TRUE(m.SerializeAsString().empty());
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
