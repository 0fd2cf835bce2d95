// Messages whose coefficient lists are longer than the engine's arrays: every
// array is filled up to its capacity and not one element further, whatever
// the list holds. One row per native coefficient array that a loader fills
// from a list of the message's own length.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <vector>

#include "QuillPb.h"
#include "coef_test_support.h"

namespace {

using namespace coeftest;
using quill::pb::coef::MbhlDistPrevCoeff;
using Int32List = google::protobuf::RepeatedField<std::int32_t>;
using FloatList = google::protobuf::RepeatedField<float>;

constexpr int kRate = 48000;
constexpr int kExtra = 7;          // values beyond each capacity
constexpr std::int32_t kBase = 1000;  // list values: kBase, kBase + 1, ...

// Absolute record offsets, from the record layout.
constexpr std::size_t kXover = 61364, kThumpx = 61424, kMbhl = 61676, kRec0 = 61772, kRec1 = 63940;
constexpr std::size_t kAeq = 58632, kAeqBank1 = kAeq + 1344;

void fillInts(Int32List* list, int n) {
  for (std::int32_t v : ramp(n, kBase)) list->Add(v);
}
void fillFloats(FloatList* list, int n) {
  for (std::int32_t v : ramp(n, kBase)) list->Add(static_cast<float>(v));
}

// Loads an overlong list of n values into `rec`; returns the loader's result.
using Loader = std::function<int(int n, Record& rec)>;

struct Row {
  const char* name;
  std::size_t offset;   // first element of the array
  int capacity;         // elements
  int width;            // 2: int16, 4: int32, 8: float32 (4 bytes)
  int result;
  Loader load;
  // The word right after the array: the pattern (nothing written there), or
  // what the same loader legitimately writes there.
  std::uint32_t after = kPattern32;
};

int loadXover(bool lpf, int n, Record& rec) {
  Postmix pm;
  auto* x = pm.mutable_brio_xover_coef();
  setTable(lpf ? x->add_lpf_coeffs() : x->add_hpf_coeffs(), kRate, {}, ramp(n, kBase));
  return QuillHeron_v1_1_Pb(kRate).LoadBrioCrossover(pm, *rec);
}

int loadThumpx(int n, Record& rec) {
  HeronSettings s;
  setTable(s.mutable_postmix()->mutable_thumpx_coef()->add_coeffs(), kRate, ramp(n, kBase));
  return QuillHeron_v1_1_Pb(kRate).PopulateTHUMPXCoeff(s, *rec);
}

int loadMbhl(bool low, int n, Record& rec) {
  HeronSettings s;
  auto* m = s.mutable_postmix()->mutable_mbhl_coef();
  setTable(m->mutable_low_cross_coeffs(), kRate, low ? ramp(n, kBase) : std::vector<std::int32_t>{});
  setTable(m->mutable_mid_cross_coeffs(), kRate, low ? std::vector<std::int32_t>{} : ramp(n, kBase));
  return QuillHeron_v1_1_Pb(kRate).PopulateMBHLCoeff(s, *rec);
}

int loadAeqBanks(int n, Record& rec) {
  quill::pb::model::listeningModel m;
  auto* aeq = m.add_aeqs();
  aeq->set_uuid("00000000-0000-0000-0000-0000000000ae");
  for (int b = 0; b < 2; ++b) setTable(aeq->add_coefficient_table()->add_iircoefs(), kRate, ramp(n, kBase));
  return QuillPb::loadAeq(quill::pb::hub::AR_OUT_ATTACHED0, aeq->uuid(), {&m}, &(*rec).aeq, kRate);
}

// Two precomputed distortion-prevention entries, both with one overlong
// list; `fill` picks the list. Sense-only rows leave the notch parts out
// (the loader then stops with -998 after the sense parts).
int loadDistprev(const std::function<void(MbhlDistPrevCoeff*, int)>& fill, bool notch, int n, Record& rec) {
  HeronSettings s;
  for (int i = 0; i < 2; ++i) {
    MbhlDistPrevCoeff* e = s.mutable_postmix()->add_mbhl_dist_prev();
    e->mutable_sense_config();
    if (notch) e->mutable_notch_config();
    fill(e, n);
  }
  return QuillHeron_v1_1_Pb(kRate).PopulateMbhlDistPrevCoeff(s, *rec);
}

template <class Fill>
Loader sense(Fill fill) {
  return [fill](int n, Record& rec) {
    return loadDistprev([fill](MbhlDistPrevCoeff* e, int k) { fill(e->mutable_sense_config(), k); }, false, n, rec);
  };
}
template <class Fill>
Loader notch(Fill fill) {
  return [fill](int n, Record& rec) {
    return loadDistprev([fill](MbhlDistPrevCoeff* e, int k) { fill(e->mutable_notch_config(), k); }, true, n, rec);
  };
}

using quill::pb::coef::distPrevNotchConfig;
using quill::pb::coef::distPrevSenseConfig;

std::vector<Row> rows() {
  std::vector<Row> r = {
      {"crossover low-pass", kXover + 4, 14, 2, 0, [](int n, Record& rec) { return loadXover(true, n, rec); }},
      {"crossover high-pass", kXover + 32, 14, 2, 0, [](int n, Record& rec) { return loadXover(false, n, rec); }},
      {"bass enhancement", kThumpx, 63, 4, 0, loadThumpx},
      {"limiter low crossover", kMbhl, 12, 4, 0, [](int n, Record& rec) { return loadMbhl(true, n, rec); }},
      {"limiter mid crossover", kMbhl + 48, 12, 4, 0, [](int n, Record& rec) { return loadMbhl(false, n, rec); }},
      // The AEQ loader clears its record first: FIR coefficients read 0.
      {"acoustic EQ bank 0", kAeq + 8, 74, 4, 0, loadAeqBanks, 0},
      {"acoustic EQ bank 1", kAeqBank1 + 8, 74, 4, 0, loadAeqBanks, 0},
  };
  const struct {
    const char* name;
    std::size_t offset;
    int capacity;
    int width;
    bool is_notch;
    Loader load;
  } kDistprev[] = {
      {"sense sections per band", 4, 6, 4, false,
       sense([](distPrevSenseConfig* c, int n) { fillInts(c->mutable_bandsoscount(), n); })},
      {"sense coefficients", 28, 144, 4, false,
       sense([](distPrevSenseConfig* c, int n) { fillInts(c->mutable_bandcoeffs(), n); })},
      {"sense float coefficients", 604, 108, 8, false,
       sense([](distPrevSenseConfig* c, int n) { fillFloats(c->mutable_bandcoeffsfloat32(), n); })},
      {"notch attenuations", 1052, 6, 4, true,
       notch([](distPrevNotchConfig* c, int n) { fillInts(c->mutable_bandattenuationmax(), n); })},
      {"notch gain scalars", 1076, 6, 4, true,
       notch([](distPrevNotchConfig* c, int n) { fillInts(c->mutable_bandgainscalars(), n); })},
      {"notch sections per band", 1100, 6, 4, true,
       notch([](distPrevNotchConfig* c, int n) { fillInts(c->mutable_bandsoscount(), n); })},
      {"notch smoothers", 1124, 9, 4, true,
       notch([](distPrevNotchConfig* c, int n) { fillInts(c->mutable_smoothers(), n); })},
      {"notch coefficients", 1160, 144, 4, true,
       notch([](distPrevNotchConfig* c, int n) { fillInts(c->mutable_bandcoeffs(), n); })},
      {"notch float coefficients", 1736, 108, 8, true,
       notch([](distPrevNotchConfig* c, int n) { fillFloats(c->mutable_bandcoeffsfloat32(), n); })},
  };
  for (const auto& d : kDistprev) {
    const int result = d.is_notch ? 0 : -998;
    // Record 0's last array is followed by record 1's sense band count (0).
    const bool last = d.offset + 4 * d.capacity == 2168;
    r.push_back({d.name, kRec0 + d.offset, d.capacity, d.width, result, d.load, last ? 0u : kPattern32});
    // Record 1's last array ends the postmix record itself.
    if (!last) r.push_back({d.name, kRec1 + d.offset, d.capacity, d.width, result, d.load});
  }
  return r;
}

TEST(HostileCapacity, EveryCoefficientArrayIsCutAtItsCapacity) {
  for (const Row& row : rows()) {
    SCOPED_TRACE(row.name);
    SCOPED_TRACE(row.offset);
    Record rec;
    ASSERT_EQ(row.load(row.capacity + kExtra, rec), row.result);
    for (int i = 0; i < row.capacity; ++i) {
      switch (row.width) {
        case 2:
          ASSERT_EQ(rec.u16(row.offset + 2 * i), coeftest::low16(kBase + i)) << i;
          break;
        case 4:
          ASSERT_EQ(rec.i32(row.offset + 4 * i), kBase + i) << i;
          break;
        default:
          ASSERT_EQ(rec.f32(row.offset + 4 * i), static_cast<float>(kBase + i)) << i;
      }
    }
    const std::size_t end = row.offset + static_cast<std::size_t>(row.capacity) * (row.width == 2 ? 2 : 4);
    if (end < coeftest::kRecordBytes) {
      EXPECT_EQ(rec.u32(end), row.after);
    }
  }
}

}  // namespace
