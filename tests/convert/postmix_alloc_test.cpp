// The postmix driver makes no heap allocation of its own: the caller's model
// list and the embedded model are searched in place, and entries are read
// where they stand. Counted through the global allocation functions.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "postmix_scenario.h"

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

using quill::pb::heron_v1_1::HeronSettings;
using quill::pb::model::listeningModel;

TEST(PostmixAlloc, PopulateAllocatesNothing) {
  const HeronSettings s = postmixtest::fullSettings();
  const listeningModel caller = postmixtest::callerModel();
  const QuillHeron_v1_1_Pb::ModelList models = {&caller};
  coeftest::Record rec;
  QuillHeron_v1_1_Pb conv(48000);

  const long before = g_allocations.load();
  const int result = conv.populate(quill::pb::hub::AR_OUT_ATTACHED0, s, *rec, true, models, 14);
  const long during = g_allocations.load() - before;
  EXPECT_EQ(result, 0);
  EXPECT_EQ(during, 0);
  EXPECT_EQ(rec.u16(45668 + 40), static_cast<std::uint16_t>(-3));  // the wide room did load
}

}  // namespace
