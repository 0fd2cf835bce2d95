// Builds the benchmark scenarios. Failures here are fatal: a benchmark of the
// wrong input would mislead.
#include "fixtures.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

#include <google/protobuf/text_format.h>

#include "quillHeronCoeffRecords.h"
#include "quillheron_filterdesign.h"
#include "synthetic_settings.h"

#ifndef QH_BENCH_EXAMPLES_DIR
#error "QH_BENCH_EXAMPLES_DIR must name the examples directory"
#endif

namespace qhbench {
namespace {

using quill::pb::coef::CoefTable;
using quill::pb::heron_v1_1::HeronSettings;
using quill::pb::heron_v1_1::Postmix;
using quill::pb::model::listeningModel;
using Coeffs = _quillHeronPostmixApiCtrlCoeffs;

[[noreturn]] void Fail(const std::string& what) {
  std::fprintf(stderr, "qh_bench: %s\n", what.c_str());
  std::exit(2);
}

void ReadText(const std::string& path, google::protobuf::Message* message) {
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  if (!in || !google::protobuf::TextFormat::ParseFromString(text.str(), message)) {
    Fail("cannot read " + path);
  }
}

HeronSettings* Settings(quill::pb::hub::RouteConfiguration& route) {
  for (auto& tech : *route.mutable_tech()) {
    if (tech.has_heron_v1_1()) return tech.mutable_heron_v1_1();
  }
  Fail("route without heron_v1_1 settings");
}

void Finish(Scenario& s) {
  s.model_list.clear();
  s.model_bytes.clear();
  for (const auto& m : s.models) {
    s.model_list.push_back(m.get());
    s.model_bytes.push_back(m->SerializeAsString());
  }
  s.route_bytes = s.route.SerializeAsString();
}

std::unique_ptr<Coeffs> Populated(const Scenario& s, int* result) {
  auto record = std::make_unique<Coeffs>();
  std::memset(record.get(), 0, sizeof *record);
  const QuillHeron_v1_1_Pb converter(kRate);
  *result = converter.populate(s.route, *record, true, s.model_list, 14);
  return record;
}

using synthetic::AddTable;
using synthetic::Noise;

int Int16Of(double v) { return synthetic::ToInt16(v); }

constexpr int kLargeRates[] = {8000, 11025, 16000, 22050, 32000, 44100, 48000, 96000};

void ButterworthTables(google::protobuf::RepeatedPtrField<CoefTable>* tables, float cutoff, int order,
                       int type, bool sixteen) {
  tables->Clear();
  for (int rate : kLargeRates) {
    if (synthetic::ButterworthTable(AddTable(tables, rate), rate, cutoff, order, type, sixteen) != 0) {
      Fail("butterworth design");
    }
  }
}

// A room filling `taps` 16-bit values at every rate.
void LargeRoom(quill::pb::model::roomModel* room, const std::string& uuid, int pairs, unsigned int taps,
               Noise& noise) {
  room->set_uuid(uuid);
  room->set_name("Large room " + uuid.substr(34));
  room->set_channelmask(pairs > 2 ? 63 : 3);
  room->set_numpairs(pairs);
  room->set_brirlength(taps / (2 * pairs));
  room->set_reverbgain(-6);
  room->set_reverbcut(8000);
  room->set_version("1.0.0.0");
  for (int rate : kLargeRates) {
    CoefTable* t = AddTable(room->mutable_coefftables(), rate);
    t->mutable_coeff_16()->Reserve(static_cast<int>(taps));
    for (unsigned int n = 0; n < taps; ++n) {
      t->add_coeff_16(Int16Of(0.3 * std::exp(-static_cast<double>(n % 1025) / 200.0) * noise.Next()));
    }
  }
}

void LargeHeadphoneEq(listeningModel& model, const std::string& uuid, Noise& noise) {
  auto* eq = model.add_headphones();
  eq->set_uuid(uuid);
  eq->set_name("Large headphone EQ");
  eq->set_ihpirlength(128);
  eq->add_audio_route_info()->set_route(quill::pb::hub::AR_OUT_ATTACHED0);
  for (int rate : kLargeRates) {
    CoefTable* t = AddTable(eq->mutable_coefftables(), rate);
    t->add_coeff_16(128);
    t->add_coeff_16(0);
    for (unsigned int n = 2; n < kQuillHpeqTaps; ++n) t->add_coeff_16(Int16Of(0.5 * noise.Next()));
  }
}

// Twelve parametric bands per bank, designed at every rate with the band
// frequencies scaled to the rate.
void LargeAeq(listeningModel& model, const std::string& uuid) {
  static const double kFreqs[12] = {60, 120, 250, 500, 1000, 2000, 3000, 4000, 6000, 8000, 10000, 14000};
  auto* aeq = model.add_aeqs();
  aeq->set_uuid(uuid);
  aeq->set_channel_mask(3);
  aeq->set_version("1.0");
  aeq->set_description("Large acoustic EQ");
  aeq->add_audio_route_info()->set_route(quill::pb::hub::AR_OUT_ATTACHED0);
  std::vector<unsigned char> work(QH_IirDesignWorkspaceBytes(12));
  for (int channel = 0; channel < 2; ++channel) {
    auto* bank = aeq->add_coefficient_table();
    auto* desc = bank->mutable_iirdesc();
    desc->set_channel(channel);
    for (int b = 0; b < 12; ++b) {
      auto* band = desc->add_band_data();
      band->set_enable(1);
      band->set_center_freq(static_cast<int>(kFreqs[b]));
      band->set_gain(b % 3 - 1);
      band->set_q(1.4f);
      band->set_type(quill::pb::tech::PEQ_BAND_TYPE_TRADITIONAL);
    }
    bank->set_iirorder(24);
    bank->set_firorder(0);
    for (int rate : kLargeRates) {
      OVAParametriceqBandSpec bands[12];
      for (int b = 0; b < 12; ++b) {
        bands[b] = {PEQ_BAND_TYPE_TRADITIONAL, static_cast<float>(kFreqs[b] * rate / 48000.0), 1.4f,
                    static_cast<float>(b % 3 - 1), 0};
      }
      // The designer's own request struct: these fixtures also serve programs
      // linked against the shared library alone.
      const OVAParametriceqSpec request{12, bands, rate};
      std::int32_t words[6 * 12 + 2];
      if (OVA_ParametriceqDesignFxp32(&request, words, work.data()) != 0) Fail("aeq design");
      CoefTable* t = AddTable(bank->mutable_iircoefs(), rate);
      for (std::int32_t w : words) t->add_coeff_32(w);
    }
  }
}

}  // namespace

Scenario ExampleScenario() {
  Scenario s;
  s.name = "example";
  ReadText(std::string(QH_BENCH_EXAMPLES_DIR) + "/headphone_route.txtpb", &s.route);
  s.models.push_back(std::make_unique<listeningModel>());
  ReadText(std::string(QH_BENCH_EXAMPLES_DIR) + "/listening_model.txtpb", s.models.back().get());
  Finish(s);
  return s;
}

Scenario ExampleTablesScenario() {
  Scenario s = ExampleScenario();
  s.name = "example_tables";
  int designed_result = 0;
  const std::unique_ptr<Coeffs> designed = Populated(s, &designed_result);
  if (designed_result != 0) Fail("the example does not populate");

  // The reverse converters give the designed regions back as tables; the
  // loaders then take the tables and never reach the designers.
  const QuillHeron_v1_1_Pb converter(kRate);
  HeronSettings* settings = Settings(s.route);
  settings->mutable_postmix()->clear_mbhl_dist_prev();
  converter.convert(designed->thumpx, settings);
  converter.convert(designed->mbhl, settings);
  converter.convert(designed->dist_prev, settings);
  settings->clear_designerparameters();
  settings->mutable_postmix()->mutable_thumpx_coef()->clear_filterdesignparams();
  Finish(s);

  int tables_result = 0;
  const std::unique_ptr<Coeffs> tables = Populated(s, &tables_result);
  if (tables_result != 0 || std::memcmp(designed.get(), tables.get(), sizeof(Coeffs)) != 0) {
    Fail("the table form of the example does not give the designed record");
  }
  return s;
}

Scenario LargeScenario() {
  Scenario s = ExampleTablesScenario();
  s.name = "large";
  HeronSettings* settings = Settings(s.route);
  Postmix* post = settings->mutable_postmix();

  // Largest filters that fit: output high-pass 20 words (order 5), stereo
  // high-pass 20 halfwords (order 5), crossover 14 halfwords (order 4).
  post->mutable_hpf_coef()->set_order(5);
  ButterworthTables(post->mutable_hpf_coef()->mutable_coeffs(), 80, 5, QH_IIR_HIGHPASS, false);
  post->mutable_brio_hpf_coef()->set_order(5);
  ButterworthTables(post->mutable_brio_hpf_coef()->mutable_hpf_coeffs(), 120, 5, QH_IIR_HIGHPASS, true);
  ButterworthTables(post->mutable_brio_xover_coef()->mutable_lpf_coeffs(), 250, 4, QH_IIR_LOWPASS, true);
  ButterworthTables(post->mutable_brio_xover_coef()->mutable_hpf_coeffs(), 250, 4, QH_IIR_HIGHPASS, true);
  // Thumpx keeps its one 48000 Hz table: a table of any other rate fails the
  // bass load by contract. MBHL holds one table per crossover; the
  // distortion-prevention entries already carry full arrays.

  const std::string front = "7a1c2a7e-3b9d-4c21-8e6f-0a1b2c3d4e01";
  const std::string wide = "7a1c2a7e-3b9d-4c21-8e6f-0a1b2c3d4e02";
  const std::string multich = "7a1c2a7e-3b9d-4c21-8e6f-0a1b2c3d4e03";
  const std::string hpeq = "7a0e7d31-6c45-4f8a-b2d9-7e5f3c1a2b04";
  post->clear_frontroom();
  post->clear_wideroom();
  post->clear_multichroom();
  post->clear_hpeqcoef();
  post->clear_aeqcoef();
  post->add_frontroom()->set_uuid(front);
  post->add_wideroom()->set_uuid(wide);
  post->add_multichroom()->set_uuid(multich);
  post->add_hpeqcoef()->set_uuid(hpeq);

  Noise noise;
  auto model = std::make_unique<listeningModel>();
  model->set_uuid("7f9e8d7c-6b5a-4948-8776-655443322106");
  model->set_description("Large listening model (synthetic)");
  LargeRoom(model->add_rooms(), front, 3, kQuillSideRoomTaps, noise);
  LargeRoom(model->add_rooms(), wide, 3, kQuillSideRoomTaps, noise);
  LargeRoom(model->add_rooms(), multich, 8, kQuillMultichRoomTaps, noise);
  LargeHeadphoneEq(*model, hpeq, noise);
  // Six AEQs; the route asks for the last, so the lookup passes five.
  for (int k = 0; k < 6; ++k) {
    char uuid[40];
    std::snprintf(uuid, sizeof uuid, "73d2e1f0-a9b8-4c7d-9e6f-5a4b3c2d1e%02d", k);
    LargeAeq(*model, uuid);
    if (k == 5) post->add_aeqcoef()->set_uuid(uuid);
  }
  s.models.clear();
  s.models.push_back(std::move(model));
  Finish(s);

  int result = 0;
  const std::unique_ptr<Coeffs> record = Populated(s, &result);
  if (result != 0) Fail("the large route does not populate: " + std::to_string(result));
  return s;
}

}  // namespace qhbench
