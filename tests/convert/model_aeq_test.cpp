// Acoustic EQ: bank selection, the cleared record with absent FIR stages, the
// default IIR order, failures, and the locator walk of LoadAeq.
#include <gtest/gtest.h>

#include <vector>

#include "QuillPb.h"
#include "coef_test_support.h"

namespace {

using namespace coeftest;
using quill::pb::coef::Aeq;
using quill::pb::coef::FilterBank;

constexpr std::size_t kAeq = 58632;
constexpr std::size_t kBank1 = kAeq + 1344;
const char kId[] = "12345678-9abc-def0-1234-56789abcdef0";

// A bank with an IIR table per listed rate; table values tag*100 + i.
FilterBank* addBank(Aeq* aeq, std::vector<int> rates, int tag, int order = -1) {
  FilterBank* b = aeq->add_coefficient_table();
  if (order >= 0) b->set_iirorder(order);
  b->set_firorder(77);
  for (int r : rates) coeftest::setTable(b->add_iircoefs(), r, ramp(3, tag * 100));
  coeftest::setTable(b->add_fircoefs(), 48000, ramp(5, 9000));  // FIR tables are never loaded
  return b;
}

Aeq* addAeq(listeningModel* m, const std::string& uuid) {
  Aeq* a = m->add_aeqs();
  a->set_uuid(uuid);
  return a;
}

// Expected words of one native bank: iir_order, fir_order -1, IIR values, zeros.
void expectBank(const coeftest::Record& rec, std::size_t at, std::int32_t order,
                const std::vector<std::int32_t>& iir, const char* what) {
  EXPECT_EQ(rec.i32(at), order) << what;
  EXPECT_EQ(rec.i32(at + 4), -1) << what;
  for (int i = 0; i < 74; ++i) {
    const std::int32_t want = i < static_cast<int>(iir.size()) ? iir[i] : 0;
    ASSERT_EQ(rec.i32(at + 8 + 4 * i), want) << what << " iir " << i;
  }
  for (int i = 0; i < 260; ++i) ASSERT_EQ(rec.i32(at + 304 + 4 * i), 0) << what << " fir " << i;
}

TEST(ModelAeq, BankSelection) {
  struct Case {
    const char* name;
    std::vector<std::vector<int>> bank_rates;  // IIR table rates per bank (tag = index + 1)
    int result;
    int selected;                               // banks selected (their order is written)
    std::vector<std::int32_t> bank0, bank1;     // expected IIR values
    int order0 = -1, order1 = -1;               // stated IIR orders; -1: absent (24)
  };
  const Case kCases[] = {
      {"two banks", {{44100, 48000}, {48000}}, 0, 2, {100, 101, 102}, {200, 201, 202}},
      {"three, first lacks the rate", {{44100}, {48000}, {48000}}, 0, 2, {200, 201, 202}, {300, 301, 302}},
      {"four, two with the rate", {{48000}, {32000}, {44100}, {48000}}, 0, 2, {100, 101, 102}, {400, 401, 402}},
      {"second bank lacks the rate", {{48000}, {44100}}, -998, 2, {100, 101, 102}, {}},
      {"first bank lacks the rate", {{44100}, {48000}}, -998, 2, {}, {200, 201, 202}},
      // Fewer than two banks: the missing one is a missing table.
      {"one bank", {{48000}}, -998, 1, {100, 101, 102}, {}},
      {"three, one with the rate", {{48000}, {44100}, {44100}}, -998, 1, {100, 101, 102}, {}},
      {"no bank", {}, -998, 0, {}, {}},
      {"stated orders, a present 0 kept", {{48000}, {48000}}, 0, 2, {100, 101, 102}, {200, 201, 202}, 0, 12},
  };
  for (const Case& c : kCases) {
    listeningModel m;
    Aeq* aeq = addAeq(&m, kId);
    for (std::size_t i = 0; i < c.bank_rates.size(); ++i) {
      addBank(aeq, c.bank_rates[i], static_cast<int>(i) + 1, i == 0 ? c.order0 : i == 1 ? c.order1 : -1);
    }
    coeftest::Record rec;
    EXPECT_EQ(QuillPb::loadAeq(quill::pb::hub::AR_OUT_ATTACHED0, kId, {&m}, &(*rec).aeq, 48000), c.result) << c.name;
    expectBank(rec, kAeq, c.selected > 0 ? (c.order0 < 0 ? 24 : c.order0) : 0, c.bank0, c.name);
    expectBank(rec, kBank1, c.selected > 1 ? (c.order1 < 0 ? 24 : c.order1) : 0, c.bank1, c.name);
    EXPECT_TRUE(rec.untouched(kAeq - 16, kAeq)) << c.name;
    EXPECT_TRUE(rec.untouched(kAeq + 2688, kAeq + 2688 + 16)) << c.name;
  }
}

TEST(ModelAeq, LookupFailuresLeaveTheRecord) {
  listeningModel a, b;
  Aeq* wrong_route = addAeq(&a, kId);
  wrong_route->add_audio_route_info()->set_route(quill::pb::hub::AR_OUT_BLUETOOTH);
  addBank(wrong_route, {48000}, 1);
  addBank(wrong_route, {48000}, 2);
  Aeq* right = addAeq(&b, "12345678-9ABC-DEF0-1234-56789ABCDEF0");
  right->add_audio_route_info()->set_route(quill::pb::hub::AR_OUT_USB);
  addBank(right, {48000}, 5);
  addBank(right, {48000}, 6);

  coeftest::Record rec;
  EXPECT_EQ(QuillPb::loadAeq(quill::pb::hub::AR_OUT_DIGITAL, kId, {&a, &b}, &(*rec).aeq, 48000), -998);
  EXPECT_TRUE(rec.untouched(0, coeftest::kRecordBytes));
  EXPECT_EQ(QuillPb::loadAeq(quill::pb::hub::AR_OUT_USB, kId, {}, &(*rec).aeq, 48000), -998);
  EXPECT_TRUE(rec.untouched(0, coeftest::kRecordBytes));
  EXPECT_EQ(QuillPb::loadAeq(quill::pb::hub::AR_OUT_USB, kId, {&a, &b}, &(*rec).aeq, 48000), 0);
  expectBank(rec, kAeq, 24, {500, 501, 502}, "second model");
}

TEST(ModelAeq, LocatorWalk) {
  listeningModel m;
  Aeq* good = addAeq(&m, kId);
  addBank(good, {48000}, 1);
  addBank(good, {48000}, 2);
  Aeq* bad = addAeq(&m, "00000000-0000-0000-0000-0000000000bd");
  addBank(bad, {44100}, 3);
  addBank(bad, {44100}, 4);

  struct Case {
    std::vector<std::string> uuids;
    int result;
    bool written;
  };
  const Case kCases[] = {
      {{}, 1, false},
      {{""}, 1, false},
      {{"", kId}, 0, true},
      {{kId, "00000000-0000-0000-0000-0000000000bd"}, 0, true},      // stops at the first success
      {{"00000000-0000-0000-0000-0000000000bd"}, -998, true},        // found, no table: cleared
      {{"00000000-0000-0000-0000-0000000000bd", kId}, 0, true},
      {{kId, "ffffffff-0000-0000-0000-000000000000"}, 0, true},
      {{"ffffffff-0000-0000-0000-000000000000"}, -998, false},
  };
  QuillHeron_v1_1_Pb conv(48000);
  for (const Case& c : kCases) {
    Postmix pm;
    for (const std::string& u : c.uuids) pm.add_aeqcoef()->set_uuid(u);
    coeftest::Record rec;
    EXPECT_EQ(conv.LoadAeq(quill::pb::hub::AR_OUT_ATTACHED0, pm, {&m}, *rec), c.result) << c.uuids.size();
    EXPECT_EQ(!rec.untouched(kAeq, kAeq + 2688), c.written) << c.uuids.size();
    if (c.result == 0) expectBank(rec, kAeq, 24, {100, 101, 102}, "locator walk");
  }
}

}  // namespace
