// Writes the shipped example settings: a headphone route with every effect
// set and a listening model with rooms, a headphone EQ and an AEQ.
//
// The room responses and the headphone EQ are synthetic (decaying noise and
// a smooth curve from a fixed seed); every filter coefficient table is
// designed here with the library's own designers, for 44100 and 48000 Hz.
//
// Usage: make_examples OUTPUT_DIR
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include <google/protobuf/text_format.h>

#include "listeningmodel.pb.h"
#include "quillheron_filterdesign.h"
#include "routeconfiguration.pb.h"
#include "synthetic_settings.h"

namespace {

using quill::pb::coef::CoefTable;
using quill::pb::heron_v1_1::HeronSettings;
using quill::pb::heron_v1_1::Postmix;
using quill::pb::model::listeningModel;

constexpr int kRates[] = {44100, 48000};

constexpr const char* kFrontRoom = "5f1c2a7e-3b9d-4c21-8e6f-0a1b2c3d4e01";
constexpr const char* kWideRoom = "5f1c2a7e-3b9d-4c21-8e6f-0a1b2c3d4e02";
constexpr const char* kMultichRoom = "5f1c2a7e-3b9d-4c21-8e6f-0a1b2c3d4e03";
constexpr const char* kHeadphoneEq = "9a0e7d31-6c45-4f8a-b2d9-7e5f3c1a2b04";
constexpr const char* kAeq = "c3d2e1f0-a9b8-4c7d-9e6f-5a4b3c2d1e05";
constexpr const char* kModel = "0f9e8d7c-6b5a-4948-8776-655443322106";

using synthetic::AddTable;
using synthetic::ButterworthTable;
using synthetic::Noise;
using synthetic::ToInt16;

// A binaural room response set: `pairs` ear pairs of `length` taps of
// exponentially decaying noise with a direct-path impulse.
void RoomTables(quill::pb::model::roomModel* room, int pairs, int length, double decay_ms, Noise& noise) {
  room->set_brirlength(length);
  room->set_numpairs(pairs);
  for (int rate : kRates) {
    CoefTable* t = AddTable(room->mutable_coefftables(), rate);
    const double tau = decay_ms * rate / 1000.0;
    for (int p = 0; p < 2 * pairs; ++p) {
      for (int n = 0; n < length; ++n) {
        const double direct = n == 4 + p % 2 ? 0.7 : 0.0;
        t->add_coeff_16(ToInt16(direct + 0.25 * std::exp(-n / tau) * noise.Next()));
      }
    }
  }
}

listeningModel MakeModel() {
  Noise noise;
  listeningModel model;
  model.set_description("Example listening model (synthetic rooms and headphone EQ)");
  model.set_uuid(kModel);

  struct Room {
    const char* uuid;
    const char* name;
    uint32_t mask;
    int pairs;
    int length;
    double decay_ms;
  };
  const Room rooms[] = {{kFrontRoom, "Example front room", 3, 2, 256, 6.0},
                        {kWideRoom, "Example wide room", 3, 2, 256, 9.0},
                        {kMultichRoom, "Example multichannel room", 63, 5, 256, 12.0}};
  for (const Room& r : rooms) {
    auto* room = model.add_rooms();
    room->set_uuid(r.uuid);
    room->set_name(r.name);
    room->set_channelmask(r.mask);
    room->set_reverbgain(-6);
    room->set_reverbcut(8000);
    room->set_version("1.0.0.0");
    RoomTables(room, r.pairs, r.length, r.decay_ms, noise);
  }

  // Headphone EQ: two leading values, then two 128-tap channel responses.
  auto* eq = model.add_headphones();
  eq->set_uuid(kHeadphoneEq);
  eq->set_name("Example over-ear headphone EQ");
  eq->set_ihpirlength(128);
  eq->add_audio_route_info()->set_route(quill::pb::hub::AR_OUT_ATTACHED0);
  for (int rate : kRates) {
    CoefTable* t = AddTable(eq->mutable_coefftables(), rate);
    t->add_coeff_16(128);
    t->add_coeff_16(0);
    for (int ch = 0; ch < 2; ++ch) {
      for (int n = 0; n < 128; ++n) {
        const double x = n - 8.0;
        const double sinc = x == 0 ? 1.0 : std::sin(0.9 * M_PI * x) / (0.9 * M_PI * x);
        t->add_coeff_16(ToInt16(0.8 * sinc * std::exp(-n / 40.0) + 0.01 * noise.Next()));
      }
    }
  }
  for (double db : {0.0, -0.5, -1.0, 1.5, 3.0, 2.0, -2.0, -4.0}) eq->mutable_supplementaldata()->add_responsedb(db);

  // AEQ: two filter banks of twelve parametric bands (74 words each).
  auto* aeq = model.add_aeqs();
  aeq->set_uuid(kAeq);
  aeq->set_channel_mask(3);
  aeq->set_version("1.0");
  aeq->set_description("Example acoustic EQ, left and right");
  aeq->add_audio_route_info()->set_route(quill::pb::hub::AR_OUT_ATTACHED0);
  for (int channel = 0; channel < 2; ++channel) {
    auto* bank = aeq->add_coefficient_table();
    auto* desc = bank->mutable_iirdesc();
    desc->set_channel(channel);
    std::vector<OVAParametriceqBandSpec> bands;
    const double freqs[12] = {60, 120, 250, 500, 1000, 2000, 3000, 4000, 6000, 8000, 10000, 14000};
    for (int b = 0; b < 12; ++b) {
      const int gain_db = (b % 3 == 0 ? -3 : (b % 3 == 1 ? 2 : 1)) * (channel == 0 ? 1 : -1);
      auto* band = desc->add_band_data();
      band->set_enable(1);
      band->set_center_freq(static_cast<int>(freqs[b]));
      band->set_gain(gain_db);
      band->set_q(1.4f);
      band->set_type(quill::pb::tech::PEQ_BAND_TYPE_TRADITIONAL);
      bands.push_back({PEQ_BAND_TYPE_TRADITIONAL, static_cast<float>(freqs[b]), 1.4f, static_cast<float>(gain_db), 0});
    }
    bank->set_iirorder(24);
    bank->set_firorder(0);
    for (int rate : kRates) {
      const OVAParametriceqSpec request{12, bands.data(), rate};
      std::vector<int32_t> words(6 * 12 + 2);
      std::vector<unsigned char> workspace(QH_IirDesignWorkspaceBytes(12));
      OVA_ParametriceqDesignFxp32(&request, words.data(), workspace.data());
      CoefTable* t = AddTable(bank->mutable_iircoefs(), rate);
      for (int32_t w : words) t->add_coeff_32(w);
    }
  }
  return model;
}

void FillPremix(quill::pb::heron_v1_1::Premix* pre) {
  auto* steady = pre->mutable_steady();
  steady->set_enable(1);
  steady->set_intensity_level(10);
  steady->set_mode(0);
  steady->set_input_gain(0);
  steady->set_output_gain(0);
  steady->set_lkfs_gain(-2560);
  auto* enh = pre->mutable_enhance2();
  enh->set_mode(1);
  enh->set_mv_downstream(0);
  enh->set_master_volume(-1536);
  enh->set_target_spl(85);
  enh->set_system_spl(100);
  enh->set_system_calib_level(0);
  enh->set_hi_freq_compensation(1);
  enh->set_lo_freq_compensation(1);
  for (int v : {0, 1, 2, 3, 4, 5, 6}) enh->add_htest(v * 256);
  for (int v : {10, 12, 14, 16, 18, 20, 22}) enh->add_ref_htest(v);
  enh->set_content_dr(12);
  enh->set_max_lf_boost(6);
  pre->set_output_device(1);
  pre->set_stream_gain(0);
  for (int v : {0, 0, 1, 0, 0}) pre->add_bypass_mode(v);
  pre->set_stream_gain_downstream(0);
  pre->set_headroom_limit(-768);
  pre->set_headroom_ratio(16384);
}

void FillPostmixControls(Postmix* post) {
  post->set_output_device(1);
  post->set_postmix_gain(0);
  post->set_hpf_enable(1);
  post->set_limiter(1);
  post->set_lyra_stereo_mode(3);
  post->set_lyra_multi_ch(-1);
  for (int v : {16384, 16384, 16384, 16384, 16384, 16384}) post->add_lyra_input_gain(v);
  for (int v : {0, 0, 0, 1, 0, 0}) post->add_bypass_hpeq(v);
  for (int v : {1, 1, 1, 0, 1, 1}) post->add_aeq_enable(v);
  post->set_dc_cut_enable(1);
  for (int v : {0, 0, 0, 0, 0}) post->add_bypass_mode(v);
  post->set_limiter_master_vol(0);
  post->set_bypass_gain(32767);

  auto* brio = post->mutable_brio();
  brio->set_enable(1);
  brio->set_enhance_mode(2);
  brio->set_crossover_enable(1);
  brio->set_hpf_enable(1);
  brio->set_def_enable(1);
  brio->set_focus_enable(0);
  brio->set_input_gain(23170);
  brio->set_output_gain(32767);
  brio->set_bypass_gain(32767);
  brio->set_def_level(8192);
  brio->set_focus_level(0);
  auto* ova3d = brio->mutable_ova3d();
  ova3d->set_enable(1);
  ova3d->set_mode(1);
  ova3d->set_hp_enable(1);
  ova3d->set_hi_bit_rate(1);
  ova3d->set_input_gain(32767);
  ova3d->set_output_gain(32767);
  ova3d->set_bypass_gain(32767);
  ova3d->set_space_level(16384);
  ova3d->set_center_level(-3277);
  auto* vista = brio->mutable_vista();
  vista->set_enable(1);
  vista->set_hs_hpf_enable(0);
  vista->set_input_gain(32767);
  vista->set_bypass_gain(32767);
  vista->set_center_boost_level(8192);
  vista->set_speaker_separation_level(4096);
  auto* thumpx = brio->mutable_thumpx();
  thumpx->set_enable(1);
  thumpx->set_input_gain(-1024);
  thumpx->set_mode(1);
  thumpx->set_bass_level(10);
  thumpx->set_speaker_size(12);  // the size whose coefficients the settings carry
  thumpx->set_dynamics(1);

  auto* geq = post->mutable_geq10b();
  geq->set_enable(1);
  geq->set_input_gain(0);
  const int gains[10] = {3, 2, 1, 0, 0, 0, -1, 0, 1, 2};
  const auto* d = geq->GetDescriptor();
  for (int k = 0; k < 10; ++k) {
    geq->GetReflection()->SetInt32(geq, d->FindFieldByName("band" + std::to_string(k) + "_gain"), gains[k] * 256);
  }
  auto* aeq = post->mutable_aeq();
  aeq->set_enable(1);
  aeq->set_input_gain(32767);
  aeq->set_output_gain(32767);
  aeq->set_bypass_gain(32767);
  auto* enh = post->mutable_enhance2();
  enh->set_mode(0);
  for (int v = 0; v < 7; ++v) enh->add_htest(0);
  for (int v = 0; v < 7; ++v) enh->add_ref_htest(0);
  auto* lyra = post->mutable_lyra();
  lyra->set_downmix(0);
  lyra->set_super_stereo(1);
  lyra->set_input_gain(16384);
  lyra->set_bypass_reverb(0);
  lyra->set_bypass_conv(0);
  lyra->set_bypass_hpeq(0);
  lyra->set_limiter(1);
  for (int v : {26214, -6554, -6554, 26214}) lyra->add_super_stereo_coef(v);
  auto* mbhl = post->mutable_mbhl();
  mbhl->set_enable(1);
  mbhl->set_output_gain(32767);
  mbhl->set_low_cross(300);
  mbhl->set_mid_cross(5000);
  mbhl->set_dist_prev_enable(1);
}

void FillPostmixCoefficients(HeronSettings* s) {
  Postmix* post = s->mutable_postmix();
  auto* hpf = post->mutable_hpf_coef();
  hpf->set_uuid("2b7c9e10-4d3f-4a6b-8c5d-1e2f3a4b5c06");
  hpf->set_cutoff(80);
  hpf->set_order(2);
  for (int rate : kRates) ButterworthTable(AddTable(hpf->mutable_coeffs(), rate), rate, 80, 2, QH_IIR_HIGHPASS, false);

  auto* bhpf = post->mutable_brio_hpf_coef();
  bhpf->set_uuid("2b7c9e10-4d3f-4a6b-8c5d-1e2f3a4b5c07");
  bhpf->set_cutoff(120);
  bhpf->set_order(2);
  for (int rate : kRates) {
    ButterworthTable(AddTable(bhpf->mutable_hpf_coeffs(), rate), rate, 120, 2, QH_IIR_HIGHPASS, true);
  }
  auto* xover = post->mutable_brio_xover_coef();
  xover->set_uuid("2b7c9e10-4d3f-4a6b-8c5d-1e2f3a4b5c08");
  xover->set_cutoff(250);
  xover->set_order(4);
  for (int rate : kRates) {
    ButterworthTable(AddTable(xover->mutable_lpf_coeffs(), rate), rate, 250, 4, QH_IIR_LOWPASS, true);
    ButterworthTable(AddTable(xover->mutable_hpf_coeffs(), rate), rate, 250, 4, QH_IIR_HIGHPASS, true);
  }
  // Bass enhancement: designed by the converter from these parameters, for
  // a 48000 Hz engine (the designer's tables are per rate).
  auto* thumpx = post->mutable_thumpx_coef();
  thumpx->set_uuid("2b7c9e10-4d3f-4a6b-8c5d-1e2f3a4b5c09");
  auto* tp = thumpx->mutable_filterdesignparams();
  tp->set_custom_speaker_size(100);
  tp->set_bass_ctrl(0.333499998);
  tp->set_hp_ratio(0.5);
  tp->set_ext_bass(0.8);
  tp->set_lp_ratio(5.5);
  tp->set_pre_lp_freq(500);
  tp->set_harm_hp_freq(44);
  tp->set_clip_level(1.5);
  tp->set_sampling_rate(48000);

  // Multi-band limiter: crossovers and distortion prevention designed by the
  // converter from the designer parameters.
  auto* dp = s->mutable_designerparameters();
  auto* cross = dp->mutable_mbhl_design_params();
  cross->set_sampling_rate(48000);
  cross->set_custom_low_cross(300);
  cross->set_custom_mid_cross(5000);
  for (int k = 0; k < 2; ++k) {
    auto* nf = dp->add_mbhl_nf_design_params();
    nf->set_nf_mode(1);
    nf->set_nf_thld(-20.0f);
    nf->set_nf_sense(-30.0f);
    nf->set_nf_attk_thld(-6.0f);
    nf->set_nf_attk_ms(200.0f);
    nf->set_nf_rel_ms(50.0f);
    nf->set_nf_band_ct(4);
    nf->set_nf_base_freq(k == 0 ? 150.0f : 220.0f);
    nf->set_nf_base_q(10.0f);
    nf->set_nf_base_attn_max(-12.0f);
    nf->set_nf_spacing(0);
    nf->set_nf_width(1);
    nf->set_nf_slope(-3.0f);
  }

  // Listening-model references (resolved against the example model).
  post->add_frontroom()->set_uuid(kFrontRoom);
  post->add_wideroom()->set_uuid(kWideRoom);
  post->add_multichroom()->set_uuid(kMultichRoom);
  post->add_hpeqcoef()->set_uuid(kHeadphoneEq);
  post->add_aeqcoef()->set_uuid(kAeq);
}

quill::pb::hub::RouteConfiguration MakeRoute() {
  quill::pb::hub::RouteConfiguration route;
  route.set_route(quill::pb::hub::AR_OUT_ATTACHED0);
  route.set_customroutedescriptor("over-ear");
  HeronSettings* s = route.add_tech()->mutable_heron_v1_1();
  FillPremix(s->mutable_premix());
  FillPostmixControls(s->mutable_postmix());
  FillPostmixCoefficients(s);
  auto* pf = s->mutable_premixfader();
  pf->set_shadow(1);
  pf->set_out_length(480);
  pf->set_hold_length(0);
  pf->set_in_length(480);
  auto* qf = s->mutable_postmixfader();
  qf->set_shadow(1);
  qf->set_out_length(960);
  qf->set_hold_length(240);
  qf->set_in_length(960);
  return route;
}

bool WriteText(const google::protobuf::Message& m, const std::string& path, const char* header) {
  google::protobuf::TextFormat::Printer printer;
  printer.SetUseShortRepeatedPrimitives(true);
  std::string text;
  if (!printer.PrintToString(m, &text)) return false;
  std::ofstream out(path);
  out << header << text;
  return static_cast<bool>(out);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_examples OUTPUT_DIR\n");
    return 2;
  }
  const std::string dir = argv[1];
  const char* note =
      "# Generated by examples/make_examples.cpp (make examples); do not edit by hand.\n"
      "# Synthetic data: the rooms and the headphone EQ are made-up responses, and\n"
      "# every coefficient table comes from this project's own designers.\n";
  const std::string route_path = dir + "/headphone_route.txtpb";
  const std::string model_path = dir + "/listening_model.txtpb";
  std::string route_header = std::string("# proto-file: routeconfiguration.proto\n# proto-message: quill.pb.hub.RouteConfiguration\n") + note;
  std::string model_header = std::string("# proto-file: listeningmodel.proto\n# proto-message: quill.pb.model.listeningModel\n") + note;
  if (!WriteText(MakeRoute(), route_path, route_header.c_str()) ||
      !WriteText(MakeModel(), model_path, model_header.c_str())) {
    std::fprintf(stderr, "make_examples: cannot write into %s\n", dir.c_str());
    return 1;
  }
  std::printf("wrote %s and %s\n", route_path.c_str(), model_path.c_str());
  return 0;
}
