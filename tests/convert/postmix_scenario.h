// The postmix scenario shared by the driver, convert and allocation tests: a
// headphone route at 48000 Hz with rooms from the caller's model and from the
// embedded one, a headphone EQ, an acoustic EQ and every coefficient table.
#ifndef QUILLHERON_TESTS_CONVERT_POSTMIX_SCENARIO_H_
#define QUILLHERON_TESTS_CONVERT_POSTMIX_SCENARIO_H_

#include <cstdint>
#include <vector>

#include "coef_test_support.h"
#include "routeconfiguration.pb.h"

namespace postmixtest {

using namespace coeftest;
using quill::pb::hub::RouteConfiguration;

// Identifiers of the scenario.
inline const char kWide[] = "11111111-2222-3333-4444-555555555555";
inline const char kFront[] = "aaaaaaaa-0000-0000-0000-0000000000f1";
inline const char kFront2[] = "aaaaaaaa-0000-0000-0000-0000000000f2";
inline const char kMulti[] = "cccccccc-0000-0000-0000-000000000001";
inline const char kHpeq[] = "dddddddd-0000-0000-0000-000000000001";
inline const char kAeq[] = "eeeeeeee-0000-0000-0000-000000000001";

inline void addRoom(listeningModel* m, const char* uuid, std::uint32_t mask, const std::vector<std::int32_t>& c16,
             int rate = 48000) {
  auto* r = m->add_rooms();
  r->set_uuid(uuid);
  r->set_channelmask(mask);
  r->set_numpairs(2);
  r->set_brirlength(static_cast<std::uint32_t>(c16.size()));
  r->set_reverbgain(-3);
  r->set_reverbcut(9000);
  setTable(r->add_coefftables(), 44100, {}, {1, 1, 1});
  setTable(r->add_coefftables(), rate, {}, c16);
}

// The caller's model: the wide and multichannel rooms, and a front room that
// the embedded model also carries (the caller's copy must win).
inline listeningModel callerModel() {
  listeningModel m;
  addRoom(&m, kWide, 0x3, ramp(6, -3));
  addRoom(&m, "AAAAAAAA-0000-0000-0000-0000000000F1", 0x7, ramp(8, 100));
  addRoom(&m, kMulti, 0x3F, ramp(4, 7000));
  return m;
}

// Everything the driver loads, for a headphone route at 48000 Hz.
inline HeronSettings fullSettings() {
  HeronSettings s;
  Postmix* pm = s.mutable_postmix();
  for (int v : {10, 11, 12, 13, 14, 15}) pm->add_lyra_input_gain(v);
  pm->mutable_brio()->set_enable(1);
  pm->mutable_brio()->mutable_thumpx()->set_enable(1);
  pm->mutable_brio()->mutable_thumpx()->set_speaker_size(12);
  pm->mutable_mbhl()->set_enable(1);
  pm->mutable_mbhl()->set_dist_prev_enable(1);

  listeningModel* embedded = pm->mutable_model();
  addRoom(embedded, kFront, 0x1, ramp(8, 900));  // shadowed by the caller's copy
  addRoom(embedded, kFront2, 0x1, {-1, -2});     // loaded after it, over its start
  auto* h = embedded->add_headphones();
  h->set_uuid(kHpeq);
  h->set_ihpirlength(2);
  h->add_audio_route_info()->set_route(quill::pb::hub::AR_OUT_ATTACHED0);
  setTable(h->add_coefftables(), 48000, {}, {5, 6, 1, 2, -1, -2});
  auto* aeq = embedded->add_aeqs();
  aeq->set_uuid(kAeq);
  for (int b = 0; b < 2; ++b) {
    auto* bank = aeq->add_coefficient_table();
    if (b == 1) bank->set_iirorder(16);
    setTable(bank->add_iircoefs(), 48000, ramp(3, 1000 * (b + 1)));
  }

  pm->add_wideroom()->set_uuid(kWide);
  pm->add_multichroom()->set_uuid(kMulti);  // frontRoom left empty: the embedded rooms serve it
  pm->add_hpeqcoef()->set_uuid("ffffffff-0000-0000-0000-000000000000");  // no such EQ: counts as none
  pm->add_hpeqcoef()->set_uuid(kHpeq);
  pm->add_aeqcoef()->set_uuid(kAeq);

  pm->mutable_hpf_coef()->set_order(2);
  setTable(pm->mutable_hpf_coef()->add_coeffs(), 48000, ramp(5, -2));
  pm->mutable_brio_hpf_coef()->set_order(1);
  setTable(pm->mutable_brio_hpf_coef()->add_hpf_coeffs(), 48000, {}, {-7, 7});
  pm->mutable_brio_xover_coef()->set_order(2);
  setTable(pm->mutable_brio_xover_coef()->add_lpf_coeffs(), 48000, {}, {1, 2});
  setTable(pm->mutable_brio_xover_coef()->add_hpf_coeffs(), 48000, {}, {3, 4});
  setTable(pm->mutable_thumpx_coef()->add_coeffs(), 48000, ramp(63, 500));
  setTable(pm->mutable_mbhl_coef()->mutable_low_cross_coeffs(), 48000, ramp(12, 20));
  setTable(pm->mutable_mbhl_coef()->mutable_mid_cross_coeffs(), 48000, ramp(12, 40));
  for (int i = 0; i < 2; ++i) {
    auto* d = pm->add_mbhl_dist_prev();
    d->mutable_sense_config()->set_bandcount(6 + i);
    d->mutable_notch_config()->set_mode(3 + i);
  }
  return s;
}

inline RouteConfiguration headphoneRoute(const HeronSettings& s) {
  RouteConfiguration route;
  route.set_route(quill::pb::hub::AR_OUT_ATTACHED0);
  route.add_tech()->mutable_heron();  // legacy settings only: passed over
  *route.add_tech()->mutable_heron_v1_1() = s;
  return route;
}

}  // namespace postmixtest

#endif  // QUILLHERON_TESTS_CONVERT_POSTMIX_SCENARIO_H_
