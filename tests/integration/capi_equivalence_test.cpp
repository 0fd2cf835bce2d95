// The C entry point gives the same records, results and settings bytes as
// the C++ API, on the shipped examples, on the benchmark and postmix test
// scenarios, and on routes generated from them by changing integer fields at
// random, with any of the convert inputs left out; and it does so from
// several threads at once on distinct records.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <google/protobuf/descriptor.h>
#include <google/protobuf/message.h>
#include <google/protobuf/reflection.h>

#include "fixtures.h"
#include "postmix_scenario.h"
#include "quillHeronCoeffRecords.h"
#include "quillheron_c.h"
#include "synthetic_settings.h"

namespace {

using google::protobuf::FieldDescriptor;
using google::protobuf::Message;
using Bytes = std::vector<unsigned char>;

struct Input {
  std::string name;
  std::string route;
  std::vector<std::string> models;
};

// Convert inputs given to a request; the others are left out (null).
enum : int { kPremix = 1, kPostmix = 2, kPremixFader = 4, kPostmixFader = 8, kAll = 15 };

struct Request {
  int rate;
  int room_mask;
  bool with_room_models;
  int convert_inputs;
};

const Request kRequests[] = {{48000, 14, true, kAll},       {44100, 14, false, kAll},
                             {48000, 2, false, kPremix},    {32000, 0, true, kPostmix | kPostmixFader},
                             {48000, 14, true, kPremixFader}};

// Everything one populate-and-convert pass produces.
struct Outcome {
  int premix_result = 0, postmix_result = 0, fader_result[2] = {0, 0};
  Bytes premix, postmix;  // after populate, and the postmix again after convert
  Bytes postmix_converted;
  quillheron_fader faders[2] = {};
  std::string settings;
};

Bytes Zeroed(std::size_t n) { return Bytes(n, 0); }
// Populate starts from a pattern, so a write it should not make shows.
Bytes Patterned(std::size_t n) { return Bytes(n, 0x5A); }

Outcome ViaCxx(const Input& in, const Request& r) {
  quill::pb::hub::RouteConfiguration route;
  EXPECT_TRUE(route.ParseFromString(in.route));
  std::vector<quill::pb::model::listeningModel> models(in.models.size());
  QuillHeron_v1_1_Pb::ModelList list;
  for (std::size_t i = 0; i < models.size(); ++i) {
    EXPECT_TRUE(models[i].ParseFromString(in.models[i]));
    list.push_back(&models[i]);
  }
  Outcome o;
  o.premix = Patterned(sizeof(_quillHeronPremixApiCtrl));
  o.postmix = Patterned(sizeof(_quillHeronPostmixApiCtrlCoeffs));
  auto* premix = reinterpret_cast<_quillHeronPremixApiCtrl*>(o.premix.data());
  auto* postmix = reinterpret_cast<_quillHeronPostmixApiCtrlCoeffs*>(o.postmix.data());
  const QuillHeron_v1_1_Pb converter(r.rate);
  o.premix_result = converter.populate(route, *premix, true);
  o.postmix_result = converter.populate(route, *postmix, true, list, r.room_mask);
  for (int k = 0; k < 2; ++k) {
    quillheron_fader& f = o.faders[k];
    o.fader_result[k] =
        converter.populate(route, f.shadow, f.out_length, f.hold_length, f.in_length, f.state, k == 0);
  }
  o.postmix_converted = o.postmix;
  quill::pb::heron_v1_1::HeronSettings settings;
  if (r.convert_inputs & kPremix) converter.convert(*premix, &settings);
  if (r.convert_inputs & kPostmix) {
    converter.convert(*reinterpret_cast<_quillHeronPostmixApiCtrlCoeffs*>(o.postmix_converted.data()), &settings,
                      r.with_room_models);
  }
  for (int k = 0; k < 2; ++k) {
    const quillheron_fader& f = o.faders[k];
    if (r.convert_inputs & (k == 0 ? kPremixFader : kPostmixFader)) {
      converter.convert(f.shadow, f.out_length, f.hold_length, f.in_length, f.state, k == 0, &settings);
    }
  }
  o.settings = settings.SerializeAsString();
  return o;
}

Outcome ViaC(const Input& in, const Request& r) {
  std::vector<quillheron_bytes> models;
  for (const std::string& m : in.models) models.push_back({m.data(), m.size()});
  Outcome o;
  o.premix = Patterned(QUILLHERON_PREMIX_RECORD_BYTES);
  o.postmix = Patterned(QUILLHERON_POSTMIX_RECORD_BYTES);
  o.premix_result = quillheron_populate_premix(in.route.data(), in.route.size(), o.premix.data());
  o.postmix_result = quillheron_populate_postmix(in.route.data(), in.route.size(), models.data(), models.size(),
                                                 r.rate, r.room_mask, o.postmix.data());
  for (int k = 0; k < 2; ++k) {
    o.fader_result[k] = quillheron_populate_fader(in.route.data(), in.route.size(), k == 0, &o.faders[k]);
  }
  const int given = r.convert_inputs;
  const void* premix = given & kPremix ? o.premix.data() : nullptr;
  const quillheron_fader* faders[2] = {given & kPremixFader ? &o.faders[0] : nullptr,
                                       given & kPostmixFader ? &o.faders[1] : nullptr};
  o.postmix_converted = o.postmix;
  std::size_t size = 0;
  EXPECT_EQ(quillheron_convert(r.rate, premix, given & kPostmix ? o.postmix_converted.data() : nullptr,
                               r.with_room_models, faders[0], faders[1], nullptr, 0, &size),
            QUILLHERON_OK);
  o.postmix_converted = o.postmix;  // the query stamped the rate; start again from the populated record
  o.settings.resize(size);
  std::size_t written = 0;
  EXPECT_EQ(quillheron_convert(r.rate, premix, given & kPostmix ? o.postmix_converted.data() : nullptr,
                               r.with_room_models, faders[0], faders[1], size ? &o.settings[0] : nullptr, size,
                               &written),
            QUILLHERON_OK);
  EXPECT_EQ(written, size);
  return o;
}

void ExpectSame(const Outcome& a, const Outcome& b, const std::string& what) {
  SCOPED_TRACE(what);
  EXPECT_EQ(a.premix_result, b.premix_result);
  EXPECT_EQ(a.postmix_result, b.postmix_result);
  EXPECT_EQ(a.fader_result[0], b.fader_result[0]);
  EXPECT_EQ(a.fader_result[1], b.fader_result[1]);
  EXPECT_TRUE(a.premix == b.premix);
  EXPECT_TRUE(a.postmix == b.postmix);
  EXPECT_TRUE(a.postmix_converted == b.postmix_converted);
  EXPECT_EQ(0, std::memcmp(a.faders, b.faders, sizeof a.faders));
  EXPECT_TRUE(a.settings == b.settings);
}

Input FromScenario(const qhbench::Scenario& s) { return {s.name, s.route_bytes, s.model_bytes}; }

// Changes integer fields of `m` and below at random: values that cross
// 16-bit limits, negatives, rates, the Thumpx speaker size, zero; and clears
// sub-messages now and then. Repeated fields never grow, so every array stays
// within its record capacity.
void Mutate(Message* m, synthetic::Noise& noise, int depth = 0) {
  static const int kValues[] = {0, 1, -1, 12, 70000, -70000, 44100, 48000, 32767, -32768};
  const auto* d = m->GetDescriptor();
  const auto* r = m->GetReflection();
  for (int i = 0; i < d->field_count(); ++i) {
    const FieldDescriptor* f = d->field(i);
    const double roll = (noise.Next() + 1.0) / 2.0;
    const int value = kValues[static_cast<int>((noise.Next() + 1.0) * 5.0) % 10];
    if (f->cpp_type() == FieldDescriptor::CPPTYPE_MESSAGE) {
      if (f->is_repeated()) {
        for (int k = 0; k < r->FieldSize(*m, f); ++k) Mutate(r->MutableRepeatedMessage(m, f, k), noise, depth + 1);
      } else if (r->HasField(*m, f)) {
        if (roll < 0.08 && depth > 0) {
          r->ClearField(m, f);
        } else {
          Mutate(r->MutableMessage(m, f), noise, depth + 1);
        }
      }
    } else if (f->cpp_type() == FieldDescriptor::CPPTYPE_INT32 && roll < 0.1) {
      if (f->is_repeated()) {
        if (r->FieldSize(*m, f) > 0) r->SetRepeatedInt32(m, f, 0, value);
      } else {
        r->SetInt32(m, f, value);
      }
    }
  }
}

std::vector<Input> Inputs() {
  std::vector<Input> inputs;
  for (const qhbench::Scenario& s :
       {qhbench::ExampleScenario(), qhbench::ExampleTablesScenario(), qhbench::LargeScenario()}) {
    inputs.push_back(FromScenario(s));
  }
  const auto route = postmixtest::headphoneRoute(postmixtest::fullSettings());
  const std::string model = postmixtest::callerModel().SerializeAsString();
  inputs.push_back({"postmix_scenario", route.SerializeAsString(), {model}});
  inputs.push_back({"empty route", "", {}});  // no settings: -1000 everywhere
  inputs.push_back({"empty model", route.SerializeAsString(), {model, ""}});  // an empty model parses

  synthetic::Noise noise;
  const qhbench::Scenario example = qhbench::ExampleScenario();
  for (int k = 0; k < 24; ++k) {
    quill::pb::hub::RouteConfiguration generated = k % 2 == 0 ? example.route : route;
    Mutate(&generated, noise);
    const std::vector<std::string> models = k % 2 == 0 ? example.model_bytes : std::vector<std::string>{model};
    inputs.push_back({"generated_" + std::to_string(k), generated.SerializeAsString(), models});
  }
  return inputs;
}

TEST(CapiEquivalence, SameRecordsResultsAndSettingsAsTheCxxApi) {
  int negative = 0;
  for (const Input& in : Inputs()) {
    for (const Request& r : kRequests) {
      const Outcome cxx = ViaCxx(in, r);
      ExpectSame(cxx, ViaC(in, r), in.name + " at " + std::to_string(r.rate) + " Hz, mask " +
                                       std::to_string(r.room_mask));
      negative += cxx.postmix_result < 0;
    }
  }
  // The generated routes reach the failure paths too.
  EXPECT_GT(negative, 0);
}

TEST(CapiEquivalence, SeveralThreadsOnDistinctRecords) {
  const std::vector<Input> inputs = Inputs();
  std::vector<Outcome> expected;
  for (const Input& in : inputs) expected.push_back(ViaCxx(in, kRequests[0]));
  constexpr int kThreads = 4;
  std::vector<std::vector<Outcome>> got(kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (std::size_t i = t; i < inputs.size(); i += 2) got[t].push_back(ViaC(inputs[i], kRequests[0]));
    });
  }
  for (auto& th : threads) th.join();
  for (int t = 0; t < kThreads; ++t) {
    for (std::size_t j = 0; j < got[t].size(); ++j) {
      const std::size_t i = t + 2 * j;
      ExpectSame(expected[i], got[t][j], inputs[i].name + " on thread " + std::to_string(t));
    }
  }
}

TEST(CapiEquivalence, ParseFailureAndShortBufferCodes) {
  const Input in = FromScenario(qhbench::ExampleScenario());
  const std::string broken = in.route.substr(0, in.route.size() / 2);
  const quillheron_bytes garbage_model = {"\xFF\xFF\xFF", 3}, route = {in.route.data(), in.route.size()};
  Bytes postmix = Zeroed(QUILLHERON_POSTMIX_RECORD_BYTES);
  EXPECT_EQ(quillheron_populate_postmix(broken.data(), broken.size(), nullptr, 0, 48000, 14, postmix.data()),
            QUILLHERON_PARSE_FAILURE);
  EXPECT_EQ(quillheron_populate_postmix(route.data, route.size, &garbage_model, 1, 48000, 14, postmix.data()),
            QUILLHERON_PARSE_FAILURE);
  EXPECT_TRUE(postmix == Zeroed(QUILLHERON_POSTMIX_RECORD_BYTES));
  EXPECT_EQ(quillheron_populate_premix(broken.data(), broken.size(), postmix.data()), QUILLHERON_PARSE_FAILURE);
  quillheron_fader fader = {42, 42, 42, 42, 42};
  EXPECT_EQ(quillheron_populate_fader(broken.data(), broken.size(), 1, &fader), QUILLHERON_PARSE_FAILURE);
  EXPECT_TRUE(postmix == Zeroed(QUILLHERON_POSTMIX_RECORD_BYTES));
  EXPECT_EQ(fader.shadow, 42);

  const Outcome o = ViaC(in, kRequests[0]);
  Bytes record = o.postmix;
  std::string out(o.settings.size() - 1, '\0');
  std::size_t size = 0;
  EXPECT_EQ(quillheron_convert(48000, o.premix.data(), record.data(), 1, &o.faders[0], &o.faders[1], &out[0],
                               out.size(), &size),
            QUILLHERON_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, o.settings.size());
  EXPECT_EQ(out, std::string(out.size(), '\0'));  // untouched
}

}  // namespace
