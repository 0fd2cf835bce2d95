// What the schema itself declares, field by field: number, type, packing and
// default (the engine's neutral tuning, the envelope versions, the value an
// absent enum reads as). Encodings, presence and unknown-field handling follow
// from these and are protobuf's own, so they are not tested here.
#include <gtest/gtest.h>
#include <google/protobuf/descriptor.h>

#include <cstdlib>
#include <string>

#include "quillcsPB.pb.h"

namespace {

using F = google::protobuf::FieldDescriptor;
using google::protobuf::DescriptorPool;

enum Packing { kOptional, kPacked, kUnpacked };  // the two repeated forms

struct FieldRow {
  const char* field;  // full name
  int number;
  F::Type type;
  Packing packing;
  const char* value;  // default as written (enum: value name; message: its type); nullptr: none
};

const FieldRow kFields[] = {
    // Scalars: sint32 effect parameters, the one plain int32, strings, enums.
    {"quill.pb.tech.Steady.input_gain", 4, F::TYPE_SINT32, kOptional, "0"},
    {"quill.pb.tech.Geq10b.band9_gain", 12, F::TYPE_SINT32, kOptional, "0"},
    {"quill.pb.heron_v1_1.HeronSettings.route_flags", 10, F::TYPE_INT32, kOptional, "0"},
    {"quill.pb.heron_v1_1.HeronSettings.version", 1, F::TYPE_STRING, kOptional, "1.01.00"},
    {"quill.pb.heron.HeronSettings.version", 1, F::TYPE_STRING, kOptional, "1.01.00"},
    {"quill.pb.hub.Profile.version", 2, F::TYPE_STRING, kOptional, "1.00.00"},
    {"quill.pb.tech.BandData.type", 5, F::TYPE_ENUM, kOptional, "PEQ_BAND_TYPE_TRADITIONAL"},
    {"quill.pb.model.roomModel.extType", 9, F::TYPE_ENUM, kOptional, "NONE"},
    {"quill.pb.model.roomModel.version", 12, F::TYPE_STRING, kOptional, "0.0.0.0"},
    {"quill.pb.model.headphoneEq.extType", 5, F::TYPE_ENUM, kOptional, "NONE"},
    {"quill.pb.model.headphoneEq.version", 8, F::TYPE_STRING, kOptional, "0.0.0.0"},
    {"quill.pb.hub.RouteConfiguration.route", 1, F::TYPE_ENUM, kOptional, "AR_OUT_ATTACHED0"},
    {"quill.pb.hub.AudioRouteInfo.route", 1, F::TYPE_ENUM, kOptional, "AR_OUT_ATTACHED0"},
    {"quill.pb.hub.AudioRouteDescriptor.over_ear", 1, F::TYPE_STRING, kOptional, "over-ear"},
    {"quill.pb.hub.AudioRouteDescriptor.in_ear", 2, F::TYPE_STRING, kOptional, "in-ear"},
    {"quill.pb.hub.AudioRouteDescriptor.external_speakers", 3, F::TYPE_STRING, kOptional, "external"},
    {"quill.pb.hub.AudioRouteDescriptor.car", 4, F::TYPE_STRING, kOptional, "car"},
    {"quill.pb.hub.Workspace.applyTo", 1, F::TYPE_ENUM, kOptional, "AT_DEFAULT"},
    {"quill.pb.hub.SignonToken.accountType", 1, F::TYPE_ENUM, kOptional, "ACCOUNT_GOOGLE"},
    // Lists: packed, except the float coefficients and the hearing tests.
    {"quill.pb.heron_v1_1.Premix.bypass_mode", 5, F::TYPE_SINT32, kPacked, nullptr},
    {"quill.pb.tech.Enhance2.htest", 9, F::TYPE_SINT32, kPacked, nullptr},
    {"quill.pb.coef.CoefTable.coeff_32", 2, F::TYPE_SINT32, kPacked, nullptr},
    {"quill.pb.coef.CoefTable.coeff_f", 5, F::TYPE_DOUBLE, kPacked, nullptr},
    {"quill.pb.model.headphoneSupplementalData.responseDb", 1, F::TYPE_DOUBLE, kPacked, nullptr},
    {"quill.pb.coef.distPrevNotchConfig.smoothers", 8, F::TYPE_SINT32, kPacked, nullptr},
    {"quill.pb.coef.distPrevSenseConfig.bandCoeffsFloat32", 4, F::TYPE_FLOAT, kUnpacked, nullptr},
    {"quill.pb.coef.distPrevNotchConfig.bandCoeffsFloat32", 10, F::TYPE_FLOAT, kUnpacked, nullptr},
    {"quill.pb.hub.User.enh2HearingTest", 2, F::TYPE_SINT32, kUnpacked, nullptr},
    {"quill.pb.hub.User.enh2RefHearingTest", 3, F::TYPE_SINT32, kUnpacked, nullptr},
    // Containers.
    {"quill.pb.hub.Quillcs.profile", 1, F::TYPE_MESSAGE, kUnpacked, "quill.pb.hub.Profile"},
    {"quill.pb.hub.Quillcs.workspace", 2, F::TYPE_MESSAGE, kUnpacked, "quill.pb.hub.Workspace"},
    {"quill.pb.hub.Quillcs.model", 3, F::TYPE_MESSAGE, kUnpacked, "quill.pb.model.listeningModel"},
    {"quill.pb.hub.PersonalizationSettings.hardware", 2, F::TYPE_MESSAGE, kOptional, "quill.pb.hub.Hardware"},
    // The current fader idles at 1, 1, 0, 1, 0; the legacy one has no defaults.
    {"quill.pb.heron_v1_1.FaderInfo.shadow", 1, F::TYPE_SINT32, kOptional, "1"},
    {"quill.pb.heron_v1_1.FaderInfo.out_length", 2, F::TYPE_SINT32, kOptional, "1"},
    {"quill.pb.heron_v1_1.FaderInfo.hold_length", 3, F::TYPE_SINT32, kOptional, "0"},
    {"quill.pb.heron_v1_1.FaderInfo.in_length", 4, F::TYPE_SINT32, kOptional, "1"},
    {"quill.pb.heron_v1_1.FaderInfo.state", 5, F::TYPE_SINT32, kOptional, "0"},
    {"quill.pb.heron.FaderInfo.shadow", 1, F::TYPE_SINT32, kOptional, "0"},
    {"quill.pb.heron.FaderInfo.out_length", 2, F::TYPE_SINT32, kOptional, "0"},
    {"quill.pb.heron.FaderInfo.hold_length", 3, F::TYPE_SINT32, kOptional, "0"},
    {"quill.pb.heron.FaderInfo.in_length", 4, F::TYPE_SINT32, kOptional, "0"},
    {"quill.pb.heron.FaderInfo.state", 5, F::TYPE_SINT32, kOptional, "0"},
    // The limiter's neutral tuning: Q15 unity, ratios 2^28, thresholds 2^27,
    // make-up gains 2^23, boost 2^20.
    {"quill.pb.tech.Mbhl.enable", 1, F::TYPE_SINT32, kOptional, "1"},
    {"quill.pb.tech.Mbhl.output_gain", 2, F::TYPE_SINT32, kOptional, "32767"},
    {"quill.pb.tech.Mbhl.anti_clip_level", 3, F::TYPE_SINT32, kOptional, "6554"},
    {"quill.pb.tech.Mbhl.com_attack", 4, F::TYPE_SINT32, kOptional, "5"},
    {"quill.pb.tech.Mbhl.low_decay", 5, F::TYPE_SINT32, kOptional, "1000"},
    {"quill.pb.tech.Mbhl.mid_decay", 6, F::TYPE_SINT32, kOptional, "500"},
    {"quill.pb.tech.Mbhl.high_decay", 7, F::TYPE_SINT32, kOptional, "200"},
    {"quill.pb.tech.Mbhl.low_ratio", 8, F::TYPE_SINT32, kOptional, "268435456"},
    {"quill.pb.tech.Mbhl.mid_ratio", 9, F::TYPE_SINT32, kOptional, "268435456"},
    {"quill.pb.tech.Mbhl.high_ratio", 10, F::TYPE_SINT32, kOptional, "268435456"},
    {"quill.pb.tech.Mbhl.mode", 11, F::TYPE_SINT32, kOptional, "0"},
    {"quill.pb.tech.Mbhl.boost", 12, F::TYPE_SINT32, kOptional, "1048576"},
    {"quill.pb.tech.Mbhl.low_cross", 13, F::TYPE_SINT32, kOptional, "300"},
    {"quill.pb.tech.Mbhl.mid_cross", 14, F::TYPE_SINT32, kOptional, "2000"},
    {"quill.pb.tech.Mbhl.low_thresh", 15, F::TYPE_SINT32, kOptional, "134217728"},
    {"quill.pb.tech.Mbhl.mid_thresh", 16, F::TYPE_SINT32, kOptional, "134217728"},
    {"quill.pb.tech.Mbhl.high_thresh", 17, F::TYPE_SINT32, kOptional, "134217728"},
    {"quill.pb.tech.Mbhl.low_makeup", 18, F::TYPE_SINT32, kOptional, "8388608"},
    {"quill.pb.tech.Mbhl.mid_makeup", 19, F::TYPE_SINT32, kOptional, "8388608"},
    {"quill.pb.tech.Mbhl.high_makeup", 20, F::TYPE_SINT32, kOptional, "8388608"},
    {"quill.pb.tech.Mbhl.dist_prev_enable", 21, F::TYPE_SINT32, kOptional, "0"},
    // Designer inputs; bass_ctrl is the decimal as written, not one third.
    {"quill.pb.tech.ThumpxFilterDesignParameters.bass_ctrl", 2, F::TYPE_DOUBLE, kOptional, "0.333499998"},
    {"quill.pb.tech.ThumpxFilterDesignParameters.hp_ratio", 3, F::TYPE_DOUBLE, kOptional, "0.5"},
    {"quill.pb.tech.ThumpxFilterDesignParameters.ext_bass", 4, F::TYPE_DOUBLE, kOptional, "0.8"},
    {"quill.pb.tech.ThumpxFilterDesignParameters.lp_ratio", 5, F::TYPE_DOUBLE, kOptional, "5.5"},
    {"quill.pb.tech.ThumpxFilterDesignParameters.pre_lp_freq", 6, F::TYPE_DOUBLE, kOptional, "500"},
    {"quill.pb.tech.ThumpxFilterDesignParameters.harm_hp_freq", 7, F::TYPE_DOUBLE, kOptional, "44"},
    {"quill.pb.tech.ThumpxFilterDesignParameters.clip_level", 8, F::TYPE_DOUBLE, kOptional, "1.5"},
    {"quill.pb.tech.ThumpxFilterDesignParameters.sampling_rate", 15, F::TYPE_SINT32, kOptional, "0"},
    {"quill.pb.tech.MbhlCustomCoeffParams.custom_low_cross", 2, F::TYPE_SINT32, kOptional, "300"},
    {"quill.pb.tech.MbhlCustomCoeffParams.custom_mid_cross", 3, F::TYPE_SINT32, kOptional, "5000"},
    {"quill.pb.tech.MbhlNotchDesignParams.nf_thld", 2, F::TYPE_FLOAT, kOptional, "0"},
    {"quill.pb.tech.MbhlNotchDesignParams.nf_attk_ms", 6, F::TYPE_FLOAT, kOptional, "200"},
    {"quill.pb.tech.MbhlNotchDesignParams.nf_rel_ms", 7, F::TYPE_FLOAT, kOptional, "50"},
    {"quill.pb.tech.MbhlNotchDesignParams.nf_base_freq", 9, F::TYPE_FLOAT, kOptional, "100"},
    {"quill.pb.tech.MbhlNotchDesignParams.nf_base_q", 10, F::TYPE_FLOAT, kOptional, "10"},
};

// True when the field's default, as the schema states it, reads as `text`.
bool DefaultIs(const F* f, const std::string& text) {
  switch (f->cpp_type()) {
    case F::CPPTYPE_INT32: return std::to_string(f->default_value_int32()) == text;
    case F::CPPTYPE_DOUBLE: return f->default_value_double() == std::strtod(text.c_str(), nullptr);
    case F::CPPTYPE_FLOAT: return f->default_value_float() == std::strtof(text.c_str(), nullptr);
    case F::CPPTYPE_STRING: return f->default_value_string() == text;
    case F::CPPTYPE_ENUM: return f->default_value_enum()->name() == text;
    case F::CPPTYPE_MESSAGE: return f->message_type()->full_name() == text;
    default: return false;
  }
}

TEST(SchemaFields, NumberTypePackingAndDefault) {
  (void)quill::pb::hub::Quillcs::descriptor();  // registers every file it imports
  for (const FieldRow& row : kFields) {
    SCOPED_TRACE(row.field);
    const F* f = DescriptorPool::generated_pool()->FindFieldByName(row.field);
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(f->number(), row.number);
    EXPECT_EQ(f->type(), row.type);
    EXPECT_EQ(f->is_repeated(), row.packing != kOptional);
    EXPECT_EQ(f->is_packed(), row.packing == kPacked);
    if (row.value != nullptr) {
      EXPECT_TRUE(DefaultIs(f, row.value)) << row.value;
    }
  }
}

// Enum numbers that matter on the wire: the negative "none" values, and the
// route numbers that are deliberately left undeclared.
TEST(SchemaFields, EnumNumbers) {
  (void)quill::pb::hub::Quillcs::descriptor();
  const struct { const char* enum_name; int number; const char* value; } kValues[] = {
      {"quill.pb.tech.BandType", -1, "PEQ_BAND_TYPE_NULL"},
      {"quill.pb.model.extRefType", -1, "NONE"},
      {"quill.pb.model.extRefType", 0, "URI"},
      {"quill.pb.hub.AudioRoute", 1, "AR_OUT_ATTACHED0"},
      {"quill.pb.hub.AudioRoute", 14, "AR_OUT_USB"},
      {"quill.pb.hub.AudioRoute", 0, nullptr},
      {"quill.pb.hub.AudioRoute", 5, nullptr},
      {"quill.pb.hub.AudioRoute", 6, nullptr},
      {"quill.pb.hub.AudioRoute", 15, nullptr},
  };
  for (const auto& v : kValues) {
    SCOPED_TRACE(std::string(v.enum_name) + " " + std::to_string(v.number));
    const auto* e = DescriptorPool::generated_pool()->FindEnumTypeByName(v.enum_name);
    ASSERT_NE(e, nullptr);
    const auto* value = e->FindValueByNumber(v.number);
    if (v.value == nullptr) {
      EXPECT_EQ(value, nullptr);
    } else {
      ASSERT_NE(value, nullptr);
      EXPECT_EQ(value->name(), v.value);
    }
  }
  EXPECT_EQ(quill::pb::hub::Hardware::descriptor()->field_count(), 0);
}

// Current and legacy Postmix share field numbers 1 to 10 and the locator and
// Brio high-pass numbers, but not their meaning: each current member's
// number names this legacy field, or none.
TEST(SchemaFields, CurrentAndLegacyPostmixNumbering) {
  const struct { const char* current; const char* legacy; } kPostmix[] = {
      {"postmix_gain", "postmix_gain"},   {"aeq_enable", "aeq_enable"},
      {"dc_cut_enable", "dc_cut_enable"}, {"brio", "enhance2"},
      {"geq10b", "lyra"},                 {"aeq", "thump_coef"},
      {"enhance2", "brio_xover_coef"},    {"lyra", "hpf_coef"},
      {"thump_coef", nullptr},            {"brio_xover_coef", "model"},
      {"hpf_coef", nullptr},              {"model", nullptr},
      {"multichRoom", "multichRoom"},     {"aeqCoef", "aeqCoef"},
      {"brio_hpf_coef", "brio_hpf_coef"}, {"thumpx_coef", nullptr},
      {"mbhl", nullptr},                  {"mbhl_coef", nullptr},
      {"mbhl_dist_prev", nullptr},
  };
  const auto* current = quill::pb::heron_v1_1::Postmix::descriptor();
  const auto* legacy = quill::pb::heron::Postmix::descriptor();
  for (const auto& c : kPostmix) {
    SCOPED_TRACE(c.current);
    const F* f = current->FindFieldByName(c.current);
    ASSERT_NE(f, nullptr);
    const F* g = legacy->FindFieldByNumber(f->number());
    if (c.legacy == nullptr) {
      EXPECT_EQ(g, nullptr);
      continue;
    }
    ASSERT_NE(g, nullptr);
    EXPECT_EQ(g->name(), c.legacy);
    EXPECT_EQ(g->type(), f->type());  // so the bytes land there, not among the unknown
  }
}

}  // namespace
