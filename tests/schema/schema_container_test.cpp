// The top-level container carries every kind of message: one full round trip
// must come back equal and byte-identical, and empty or unknown content must
// survive as proto2 keeps it.
#include <gtest/gtest.h>
#include <google/protobuf/text_format.h>
#include <google/protobuf/util/message_differencer.h>

#include <string>

#include "quillcsPB.pb.h"
#include "wire_bytes.h"

namespace {

namespace hub = quill::pb::hub;
using google::protobuf::util::MessageDifferencer;

// One route with current and legacy settings, used twice in the container.
const std::string kRoute =
    "route: AR_OUT_BLUETOOTH customRouteDescriptor: 'car kit' tech {"
    "  heron_v1_1 { route_flags: -7 premixFader { shadow: 0 }"
    "    premix { steady { input_gain: -1536 } enhance2 { htest: -3 } bypass_mode: 1 }"
    "    postmix { brio { thumpx { bass_level: 9 } } mbhl { low_cross: 250 }"
    "      thumpx_coef { coeffs { sampleRate: 48000 coeff_32: -2147483648 coeff_f: -0.25 } }"
    "      mbhl_dist_prev { sense_config { bandCoeffsFloat32: 0.125 } notch_config { smoothers: 77 } }"
    "      frontRoom { uuid: '01234567-89ab-cdef-0123-456789abcdef' } }"
    "    DesignerParameters { mbhl_nf_design_params { nf_slope: -6 } } }"
    "  heron { postmix { brio { enable: 1 } } } }";

const std::string kContainer =
    "profile { profileUuid: 'p-1' updatedFields: 'geqPresets' signonToken { accountType: ACCOUNT_FB }"
    "  personalization { user { enh2HearingTest: -4 geqSwitch: true } hardware {} }"
    "  accessoryCollection { certification { level: -2 } barcode { type: EAN }"
    "    localizationInfo { media { brand { smallIconUri: 's' } } }"
    "    spec { classification { supportedOutputChains { channels: 'L' route { " + kRoute + " } } } } }"
    "  geqPresets { presetList { geqSettings { band0_gain: -12 } } } }"
    "workspace { applyTo: AT_CURRENT routeConfiguration { " + kRoute + " } }"
    "model { uuid: 'm-1' rooms { reverbGain: -5 channelMask: 3 }"
    "  headphones { audio_route_info { route_modifier: AR_MOD_NOISE_CANCELLING_HP_ACTIVE }"
    "    supplementalData { responseDb: -1.5 } }"
    "  aeqs { coefficient_table { iirDesc { band_data { q: 0.7 } } } } }";

TEST(SchemaContainer, FullRoundTrip) {
  hub::Quillcs in;
  ASSERT_TRUE(google::protobuf::TextFormat::ParseFromString(kContainer, &in));
  const std::string bytes = in.SerializeAsString();
  hub::Quillcs out;
  ASSERT_TRUE(out.ParseFromString(bytes));
  EXPECT_TRUE(MessageDifferencer::Equals(in, out));
  EXPECT_EQ(out.SerializeAsString(), bytes);
  const auto& s = out.workspace(0).routeconfiguration(0).tech(0).heron_v1_1();
  EXPECT_EQ(s.postmix().thumpx_coef().coeffs(0).coeff_32(0), -2147483647 - 1);
  EXPECT_TRUE(s.premixfader().has_shadow());  // a present 0 is kept
  EXPECT_EQ(out.profile(0).accessorycollection(0).spec().classification(0)
                .supportedoutputchains(0).route().tech(0).heron().postmix().brio().enable(), 1);
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
