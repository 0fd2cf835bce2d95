// The designer catalogue's did-not-mean check must object to exactly the band
// fields each band type uses. (Its contract check is held to the designers in
// filterdesign/rejection_test.)
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "designer_catalogue.h"

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

// Which band fields each type uses: all but gain use the frequency; the
// traditional, shelf (slope), band-pass, all-pass, notch and peaking types
// use Q; every type uses the gain (the low- and high-pass as resonance).
TEST(DesignerIntent, BandFieldsByType) {
  struct Row {
    int type;
    bool uses_freq, uses_q;
  } const kRows[] = {{0, true, true},  {1, true, true},  {2, true, true}, {3, true, false}, {4, true, false},
                     {5, true, true},  {6, true, true},  {7, true, true}, {8, true, true},  {9, false, false}};
  for (const Row& row : kRows) {
    for (float bad : {0.0f, -1.0f, kNaN, kInf}) {
      SCOPED_TRACE(testing::Message() << "type " << row.type << ", value " << bad);
      const OVAParametriceqBandSpec good = {row.type, 1000.0f, 1.0f, 3.0f, 0};
      OVAParametriceqBandSpec band[3] = {good, good, good};
      band[0].center_freq = bad;
      band[1].q = bad;
      band[2].gain = bad;
      const bool objects[3] = {row.uses_freq, row.uses_q, !std::isfinite(bad)};
      for (int field = 0; field < 3; ++field) {
        const OVAParametriceqBandSpec pair[2] = {good, band[field]};
        const qh_design::Objection o = qh_design::CheckIntent(qh_design::PeqRequest{2, pair, 48000});
        EXPECT_EQ(static_cast<bool>(o), objects[field]) << "field " << field << ": " << o.reason;
        if (o) {
          EXPECT_EQ(o.band, 1);
          EXPECT_EQ(o.reason.rfind("band 1 (", 0), 0u) << o.reason;
        }
      }
    }
  }
}

}  // namespace
