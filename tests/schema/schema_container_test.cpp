// The top-level container carries every kind of message: one full round trip
// must come back equal and byte-identical, and empty or unknown content must
// survive as proto2 keeps it.
#include <gtest/gtest.h>
#include <google/protobuf/util/message_differencer.h>

#include <string>

#include "quillcsPB.pb.h"
#include "wire_bytes.h"

namespace {

namespace hub = quill::pb::hub;
using google::protobuf::util::MessageDifferencer;

hub::RouteConfiguration MakeRoute() {
  hub::RouteConfiguration rc;
  rc.set_route(hub::AR_OUT_BLUETOOTH);
  rc.set_customroutedescriptor("car kit");
  auto* tech = rc.add_tech();
  auto* s = tech->mutable_heron_v1_1();
  s->set_route_flags(-7);
  s->mutable_premixfader()->set_shadow(0);
  auto* pre = s->mutable_premix();
  pre->mutable_steady()->set_input_gain(-1536);
  pre->mutable_enhance2()->add_htest(-3);
  pre->add_bypass_mode(1);
  auto* post = s->mutable_postmix();
  post->mutable_brio()->mutable_thumpx()->set_bass_level(9);
  post->mutable_mbhl()->set_low_cross(250);
  auto* table = post->mutable_thumpx_coef()->add_coeffs();
  table->set_samplerate(48000);
  table->add_coeff_32(-2147483647 - 1);
  table->add_coeff_f(-0.25);
  auto* dp = post->add_mbhl_dist_prev();
  dp->mutable_sense_config()->add_bandcoeffsfloat32(0.125f);
  dp->mutable_notch_config()->add_smoothers(77);
  post->add_frontroom()->set_uuid("01234567-89ab-cdef-0123-456789abcdef");
  s->mutable_designerparameters()->add_mbhl_nf_design_params()->set_nf_slope(-6.0f);
  tech->mutable_heron()->mutable_postmix()->mutable_brio()->set_enable(1);
  return rc;
}

hub::Quillcs MakeContainer() {
  hub::Quillcs q;
  auto* p = q.add_profile();
  p->set_profileuuid("p-1");
  p->add_updatedfields("geqPresets");
  p->mutable_signontoken()->set_accounttype(hub::ACCOUNT_FB);
  auto* user = p->mutable_personalization()->mutable_user();
  user->add_enh2hearingtest(-4);
  user->set_geqswitch(true);
  p->mutable_personalization()->mutable_hardware();
  auto* acc = p->add_accessorycollection();
  acc->mutable_certification()->set_level(-2);
  acc->add_barcode()->set_type(hub::EAN);
  acc->add_localizationinfo()->mutable_media()->mutable_brand()->set_smalliconuri("s");
  auto* chain = acc->mutable_spec()->add_classification()->add_supportedoutputchains();
  chain->add_channels("L");
  *chain->mutable_route() = MakeRoute();
  auto* preset = p->mutable_geqpresets()->add_presetlist();
  preset->mutable_geqsettings()->set_band0_gain(-12);
  auto* ws = q.add_workspace();
  ws->set_applyto(hub::AT_CURRENT);
  *ws->add_routeconfiguration() = MakeRoute();
  auto* model = q.add_model();
  model->set_uuid("m-1");
  auto* room = model->add_rooms();
  room->set_reverbgain(-5);
  room->set_channelmask(3);
  auto* hp = model->add_headphones();
  hp->add_audio_route_info()->set_route_modifier(hub::AR_MOD_NOISE_CANCELLING_HP_ACTIVE);
  hp->mutable_supplementaldata()->add_responsedb(-1.5);
  model->add_aeqs()->add_coefficient_table()->mutable_iirdesc()->add_band_data()->set_q(0.7f);
  return q;
}

TEST(SchemaContainer, FullRoundTrip) {
  const hub::Quillcs in = MakeContainer();
  const std::string bytes = in.SerializeAsString();
  hub::Quillcs out;
  ASSERT_TRUE(out.ParseFromString(bytes));
  EXPECT_TRUE(MessageDifferencer::Equals(in, out));
  EXPECT_EQ(out.SerializeAsString(), bytes);

  // A few values deep inside, read back through the generated accessors.
  const auto& s = out.workspace(0).routeconfiguration(0).tech(0).heron_v1_1();
  EXPECT_EQ(s.premix().steady().input_gain(), -1536);
  EXPECT_EQ(s.postmix().thumpx_coef().coeffs(0).coeff_32(0), -2147483647 - 1);
  EXPECT_EQ(s.postmix().mbhl_dist_prev(0).sense_config().bandcoeffsfloat32(0), 0.125f);
  EXPECT_EQ(s.postmix().mbhl().low_cross(), 250);
  EXPECT_EQ(s.postmix().mbhl().mid_cross(), 2000);  // absent: default
  EXPECT_EQ(s.premixfader().shadow(), 0);
  EXPECT_TRUE(s.premixfader().has_shadow());
  EXPECT_EQ(s.designerparameters().mbhl_nf_design_params(0).nf_rel_ms(), 50.0f);
  EXPECT_EQ(out.workspace(0).routeconfiguration(0).tech(0).heron().postmix().brio().enable(), 1);
  EXPECT_EQ(out.profile(0).signontoken().accounttype(), hub::ACCOUNT_FB);
  EXPECT_EQ(out.profile(0).version(), "1.00.00");
  EXPECT_EQ(out.model(0).rooms(0).reverbgain(), -5);
  EXPECT_EQ(out.model(0).headphones(0).supplementaldata().responsedb(0), -1.5);
}

TEST(SchemaContainer, EmptyHardwareAndItsUnknownFields) {
  EXPECT_EQ(hub::Hardware().ByteSizeLong(), 0u);
  const std::string unknown = qh_test::Bytes({0x08, 0x01, 0x12, 0x01, 0x41});
  hub::Hardware hw;
  ASSERT_TRUE(hw.ParseFromString(unknown));
  EXPECT_EQ(hw.SerializeAsString(), unknown);
  // An empty Hardware still marks its presence inside the settings.
  hub::PersonalizationSettings ps;
  ps.mutable_hardware();
  EXPECT_EQ(ps.SerializeAsString(), qh_test::Bytes({0x12, 0x00}));
}

}  // namespace
