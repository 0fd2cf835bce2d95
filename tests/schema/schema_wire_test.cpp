// Exact wire bytes of the schema: zig-zag parameters, the one plain int32,
// packed against one-tag-per-value lists, negative enums, unknown route
// numbers, and the numbering clash between current and legacy Postmix.
// Expected bytes are worked out by hand from the encoding rules.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "coefMbhlDistPrev.pb.h"
#include "coefs.pb.h"
#include "headphonesupplementaldata.pb.h"
#include "heron2.pb.h"
#include "heron_v1_1.pb.h"
#include "listeningmodel.pb.h"
#include "peq2.pb.h"
#include "personalization.pb.h"
#include "routeconfiguration.pb.h"
#include "techEnhance2_2.pb.h"
#include "techGeq10b2.pb.h"
#include "techMbhl.pb.h"
#include "techSteady2.pb.h"
#include "wire_bytes.h"

namespace {

using google::protobuf::FieldDescriptor;
using google::protobuf::Message;
using qh_test::Bytes;
using qh_test::Hex;
namespace v11 = quill::pb::heron_v1_1;
namespace legacy = quill::pb::heron;
namespace tech = quill::pb::tech;
namespace coef = quill::pb::coef;
namespace hub = quill::pb::hub;

struct WireCase {
  const char* name;
  std::string (*encode)();
  std::string expected;
};

template <typename M, typename F>
std::string Encode(F fill) {
  M m;
  fill(m);
  return m.SerializeAsString();
}

std::string Steady(int32_t input_gain) {
  tech::Steady s;
  s.set_input_gain(input_gain);  // field 4: tag 0x20
  return s.SerializeAsString();
}

const WireCase kScalarCases[] = {
    // sint32: zig-zag, shortest varint; a present zero is still written.
    {"sint32 0", [] { return Steady(0); }, Bytes({0x20, 0x00})},
    {"sint32 -1", [] { return Steady(-1); }, Bytes({0x20, 0x01})},
    {"sint32 64", [] { return Steady(64); }, Bytes({0x20, 0x80, 0x01})},
    {"sint32 -1536", [] { return Steady(-1536); }, Bytes({0x20, 0xff, 0x17})},
    {"sint32 min", [] { return Steady(INT32_MIN); }, Bytes({0x20, 0xff, 0xff, 0xff, 0xff, 0x0f})},
    {"Mbhl output_gain set to its default is written",
     [] { return Encode<tech::Mbhl>([](tech::Mbhl& m) { m.set_output_gain(32767); }); },
     Bytes({0x10, 0xfe, 0xff, 0x03})},
    {"Geq10b band9_gain is field 12",
     [] { return Encode<tech::Geq10b>([](tech::Geq10b& g) { g.set_band9_gain(5); }); },
     Bytes({0x60, 0x0a})},
    // route_flags is a plain int32: no zig-zag, negatives take ten bytes.
    {"route_flags 1",
     [] { return Encode<v11::HeronSettings>([](v11::HeronSettings& h) { h.set_route_flags(1); }); },
     Bytes({0x50, 0x01})},
    {"route_flags -1",
     [] { return Encode<v11::HeronSettings>([](v11::HeronSettings& h) { h.set_route_flags(-1); }); },
     Bytes({0x50, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0x01})},
    // Enums are plain varints too: -1 is ten bytes.
    {"BandType NULL",
     [] { return Encode<tech::BandData>([](tech::BandData& b) { b.set_type(tech::PEQ_BAND_TYPE_NULL); }); },
     Bytes({0x28, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0x01})},
    {"extRefType NONE set explicitly",
     [] { return Encode<quill::pb::model::roomModel>([](quill::pb::model::roomModel& r) { r.set_exttype(quill::pb::model::NONE); }); },
     Bytes({0x48, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0x01})},
};

const WireCase kListCases[] = {
    {"Premix bypass_mode packed",
     [] { return Encode<v11::Premix>([](v11::Premix& p) { p.add_bypass_mode(1); p.add_bypass_mode(-1); p.add_bypass_mode(0); }); },
     Bytes({0x2a, 0x03, 0x02, 0x01, 0x00})},
    {"empty packed list is not written",
     [] { return Encode<v11::Premix>([](v11::Premix& p) { p.mutable_bypass_mode()->Clear(); }); },
     Bytes({})},
    {"Enhance2 htest packed",
     [] { return Encode<tech::Enhance2>([](tech::Enhance2& e) { e.add_htest(3); }); },
     Bytes({0x4a, 0x01, 0x06})},
    {"CoefTable coeff_32 packed",
     [] { return Encode<coef::CoefTable>([](coef::CoefTable& t) { t.add_coeff_32(-1); t.add_coeff_32(64); }); },
     Bytes({0x12, 0x03, 0x01, 0x80, 0x01})},
    {"CoefTable coeff_f packed doubles",
     [] { return Encode<coef::CoefTable>([](coef::CoefTable& t) { t.add_coeff_f(1.0); }); },
     Bytes({0x2a, 0x08, 0, 0, 0, 0, 0, 0, 0xf0, 0x3f})},
    {"responseDb packed doubles",
     [] { return Encode<quill::pb::model::headphoneSupplementalData>([](quill::pb::model::headphoneSupplementalData& d) { d.add_responsedb(-0.5); }); },
     Bytes({0x0a, 0x08, 0, 0, 0, 0, 0, 0, 0xe0, 0xbf})},
    {"notch smoothers packed",
     [] { return Encode<coef::distPrevNotchConfig>([](coef::distPrevNotchConfig& n) { n.add_smoothers(2); }); },
     Bytes({0x42, 0x01, 0x04})},
    // The float coefficient lists and the hearing-test lists are not packed.
    {"sense bandCoeffsFloat32 one tag per value",
     [] { return Encode<coef::distPrevSenseConfig>([](coef::distPrevSenseConfig& s) { s.add_bandcoeffsfloat32(1.0f); s.add_bandcoeffsfloat32(-2.0f); }); },
     Bytes({0x25, 0x00, 0x00, 0x80, 0x3f, 0x25, 0x00, 0x00, 0x00, 0xc0})},
    {"notch bandCoeffsFloat32 one tag per value",
     [] { return Encode<coef::distPrevNotchConfig>([](coef::distPrevNotchConfig& n) { n.add_bandcoeffsfloat32(0.5f); }); },
     Bytes({0x55, 0x00, 0x00, 0x00, 0x3f})},
    {"User enh2HearingTest one tag per value",
     [] { return Encode<hub::User>([](hub::User& u) { u.add_enh2hearingtest(1); u.add_enh2hearingtest(-1); }); },
     Bytes({0x10, 0x02, 0x10, 0x01})},
    {"User enh2RefHearingTest one tag per value",
     [] { return Encode<hub::User>([](hub::User& u) { u.add_enh2refhearingtest(-2); }); },
     Bytes({0x18, 0x03})},
};

void ExpectCases(const WireCase* cases, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    SCOPED_TRACE(cases[i].name);
    const std::string got = cases[i].encode();
    EXPECT_EQ(got, cases[i].expected) << "got " << Hex(got) << "want " << Hex(cases[i].expected);
  }
}

TEST(SchemaWire, ScalarEncodings) { ExpectCases(kScalarCases, std::size(kScalarCases)); }
TEST(SchemaWire, ListEncodings) { ExpectCases(kListCases, std::size(kListCases)); }

// Parsers accept the other form of a repeated scalar, and a negative enum.
struct AltFormCase {
  const char* name;
  std::string bytes;
  std::vector<double> (*parse)(const std::string&);
  std::vector<double> expected;
};
template <typename M, typename F>
std::vector<double> ParseList(const std::string& bytes, F list) {
  M m;
  if (!m.ParseFromString(bytes)) return {};
  const auto& values = list(m);
  return std::vector<double>(values.begin(), values.end());
}
const AltFormCase kAltFormCases[] = {
    {"packed htest read one tag per value", Bytes({0x48, 0x06, 0x48, 0x01}),
     [](const std::string& s) { return ParseList<tech::Enhance2>(s, [](const tech::Enhance2& e) { return e.htest(); }); },
     {3, -1}},
    {"packed coeff_f read one tag per value", Bytes({0x29, 0, 0, 0, 0, 0, 0, 0xf0, 0x3f}),
     [](const std::string& s) { return ParseList<coef::CoefTable>(s, [](const coef::CoefTable& t) { return t.coeff_f(); }); },
     {1.0}},
    {"unpacked bandCoeffsFloat32 read packed", Bytes({0x22, 0x08, 0x00, 0x00, 0x80, 0x3f, 0x00, 0x00, 0x00, 0xc0}),
     [](const std::string& s) { return ParseList<coef::distPrevSenseConfig>(s, [](const coef::distPrevSenseConfig& c) { return c.bandcoeffsfloat32(); }); },
     {1.0, -2.0}},
    {"BandType -1 reads back as declared", Bytes({0x28, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0x01}),
     [](const std::string& s) {
       tech::BandData b;
       return b.ParseFromString(s) && b.has_type() ? std::vector<double>{double(b.type())} : std::vector<double>{};
     },
     {-1}},
    {"unpacked enh2HearingTest read packed", Bytes({0x12, 0x02, 0x02, 0x01}),
     [](const std::string& s) { return ParseList<hub::User>(s, [](const hub::User& u) { return u.enh2hearingtest(); }); },
     {1, -1}},
};

TEST(SchemaWire, ParsersAcceptEitherListFormAndNegativeEnums) {
  for (const AltFormCase& c : kAltFormCases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(c.parse(c.bytes), c.expected);
  }
}

// A route number the enum does not declare stays in the unknown fields and
// is written back unchanged; the field reads as unset.
TEST(SchemaWire, UnknownAudioRouteIsKept) {
  const struct { int value; bool known; } kRoutes[] = {{0, false}, {5, false}, {6, false}, {15, false}, {14, true}};
  for (const auto& r : kRoutes) {
    SCOPED_TRACE(r.value);
    const std::string in = Bytes({0x08, r.value});
    hub::RouteConfiguration rc;
    ASSERT_TRUE(rc.ParseFromString(in));
    EXPECT_EQ(rc.has_route(), r.known);
    EXPECT_EQ(static_cast<int>(rc.route()), r.known ? r.value : hub::AR_OUT_ATTACHED0);
    const auto& unknown = rc.GetReflection()->GetUnknownFields(rc);
    ASSERT_EQ(unknown.field_count(), r.known ? 0 : 1);
    if (!r.known) {
      EXPECT_EQ(unknown.field(0).number(), 1);
      EXPECT_EQ(unknown.field(0).varint(), static_cast<uint64_t>(r.value));
    }
    EXPECT_EQ(rc.SerializeAsString(), in);
  }
}

// Current Postmix bytes read with the legacy schema: fields 1 to 10 and the
// locator and Brio high-pass numbers agree, every other member lands in a
// different legacy field or among the unknown fields.
struct PostmixCase {
  const char* current;
  const char* legacy;  // nullptr: no legacy field of that number
};
const PostmixCase kPostmixCases[] = {
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

void SetSomething(Message& m, const FieldDescriptor* f) {
  const auto* r = m.GetReflection();
  if (f->cpp_type() == FieldDescriptor::CPPTYPE_MESSAGE) {
    if (f->is_repeated()) r->AddMessage(&m, f); else r->MutableMessage(&m, f);
  } else if (f->is_repeated()) {
    r->AddInt32(&m, f, -3);
  } else {
    r->SetInt32(&m, f, -3);
  }
}

TEST(SchemaWire, CurrentAndLegacyPostmixAreNotInterchangeable) {
  for (const PostmixCase& c : kPostmixCases) {
    SCOPED_TRACE(c.current);
    v11::Postmix current;
    const auto* f = current.GetDescriptor()->FindFieldByName(c.current);
    ASSERT_NE(f, nullptr);
    SetSomething(current, f);
    legacy::Postmix old;
    ASSERT_TRUE(old.ParseFromString(current.SerializeAsString()));
    const auto* r = old.GetReflection();
    if (c.legacy == nullptr) {
      EXPECT_EQ(r->GetUnknownFields(old).field_count(), 1);
      continue;
    }
    const auto* g = old.GetDescriptor()->FindFieldByName(c.legacy);
    ASSERT_NE(g, nullptr);
    EXPECT_TRUE(g->is_repeated() ? r->FieldSize(old, g) == 1 : r->HasField(old, g));
    EXPECT_EQ(r->GetUnknownFields(old).field_count(), 0);
    if (g->cpp_type() == FieldDescriptor::CPPTYPE_INT32) {
      EXPECT_EQ(g->is_repeated() ? r->GetRepeatedInt32(old, g, 0) : r->GetInt32(old, g), -3);
    }
  }
}

}  // namespace
