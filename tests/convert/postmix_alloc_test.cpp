// The postmix driver makes no heap allocation of its own: the caller's model
// list and the embedded model are searched in place, and entries are read
// where they stand. Counted through the global allocation functions.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "coef_test_support.h"

// The replacements below pair malloc with free; the compiler cannot see that
// every operator new of this program is the one defined here.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif

namespace {
std::atomic<long> g_allocations{0};
}  // namespace

void* operator new(std::size_t n) {
  g_allocations.fetch_add(1, std::memory_order_relaxed);
  if (void* p = std::malloc(n ? n : 1)) return p;
  throw std::bad_alloc();
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }

namespace {

using coeftest::setTable;
using quill::pb::heron_v1_1::HeronSettings;
using quill::pb::model::listeningModel;

TEST(PostmixAlloc, PopulateAllocatesNothing) {
  const char kRoom[] = "11111111-0000-0000-0000-000000000001";
  const char kHpeq[] = "22222222-0000-0000-0000-000000000002";
  const char kAeq[] = "33333333-0000-0000-0000-000000000003";
  listeningModel caller;
  auto* room = caller.add_rooms();
  room->set_uuid(kRoom);
  setTable(room->add_coefftables(), 48000, {}, {1, 2, 3});

  HeronSettings s;
  auto* pm = s.mutable_postmix();
  pm->add_wideroom()->set_uuid(kRoom);
  auto* h = pm->mutable_model()->add_headphones();
  h->set_uuid(kHpeq);
  setTable(h->add_coefftables(), 48000, {}, {1, 2, 3, 4});
  pm->add_hpeqcoef()->set_uuid(kHpeq);
  auto* aeq = pm->mutable_model()->add_aeqs();
  aeq->set_uuid(kAeq);
  for (int b = 0; b < 2; ++b) setTable(aeq->add_coefficient_table()->add_iircoefs(), 48000, {b});
  pm->add_aeqcoef()->set_uuid(kAeq);
  pm->mutable_brio_hpf_coef()->set_order(1);
  setTable(pm->mutable_brio_hpf_coef()->add_hpf_coeffs(), 48000, {}, {5});
  pm->mutable_mbhl()->set_dist_prev_enable(1);
  setTable(pm->mutable_mbhl_coef()->mutable_low_cross_coeffs(), 48000, {1});
  setTable(pm->mutable_mbhl_coef()->mutable_mid_cross_coeffs(), 48000, {2});
  for (int i = 0; i < 2; ++i) {
    auto* d = pm->add_mbhl_dist_prev();
    d->mutable_sense_config()->add_bandcoeffs(i);
    d->mutable_notch_config()->add_smoothers(i);
  }
  const QuillHeron_v1_1_Pb::ModelList models = {&caller};
  coeftest::Record rec;
  QuillHeron_v1_1_Pb conv(48000);

  const long before = g_allocations.load();
  const int result = conv.populate(quill::pb::hub::AR_OUT_ATTACHED0, s, *rec, true, models, 14);
  const long during = g_allocations.load() - before;
  EXPECT_EQ(result, 0);
  EXPECT_EQ(during, 0);
  EXPECT_EQ(rec.u16(45668 + 40), 1);  // the wide room did load
}

}  // namespace
