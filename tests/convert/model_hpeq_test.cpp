// Headphone equalisers: the native record, the 128-tap truncation, route
// filtering across models. The rebuild from a record: coef_convert_test.
#include <gtest/gtest.h>

#include <vector>

#include "QuillPb.h"
#include "coef_test_support.h"

namespace {

using namespace coeftest;
using quill::pb::hub::AudioRoute;
using quill::pb::model::headphoneEq;

const char kId[] = "0f0e0d0c-0b0a-0908-0706-050403020100";

headphoneEq* addHpeq(listeningModel* m, const std::string& uuid, std::vector<AudioRoute> routes,
                     std::int32_t tag) {
  headphoneEq* h = m->add_headphones();
  h->set_uuid(uuid);
  h->set_ihpirlength(1);
  for (AudioRoute r : routes) h->add_audio_route_info()->set_route(r);
  coeftest::setTable(h->add_coefftables(), 48000, {}, {tag, 0, 1, 2});
  return h;
}

TEST(ModelHpeq, RecordLayout) {
  headphoneEq h;
  h.set_uuid(kId);
  h.set_ihpirlength(3);
  coeftest::setTable(h.add_coefftables(), 48000, {}, {7, 8, 1, 2, 3, -1, -2, 65536 + 3});
  std::vector<int> rec = patternWords(540);
  ASSERT_EQ(QuillPb::loadHpeq(&h, rec.data(), 540, 48000), 0);
  const std::uint8_t* b = reinterpret_cast<const std::uint8_t*>(rec.data());
  for (int i = 0; i < 16; ++i) EXPECT_EQ(b[i], 15 - i) << i;
  EXPECT_EQ(le32(b, 16), 48000u);
  EXPECT_EQ(le32(b, 20), 3u);
  const std::uint16_t expect[8] = {7, 8, 1, 2, 3, 0xFFFF, 0xFFFE, 3};
  for (int i = 0; i < 8; ++i) EXPECT_EQ(le16(b, 24 + 2 * i), expect[i]) << i;
  EXPECT_EQ(le32(b, 40), kPattern32);
  EXPECT_EQ(QuillPb::sizeofHpeq(&h, 48000), 40u);
  EXPECT_EQ(QuillPb::sizeofHpeq(&h, 44100), 0u);
  // A region too small for the 24-byte header: -997, nothing written.
  for (unsigned int capacity : {0u, 4u, 23u}) {
    std::vector<int> small = patternWords(64);
    EXPECT_EQ(QuillPb::loadHpeq(&h, small.data(), capacity, 48000), -997) << capacity;
    for (int w : small) EXPECT_EQ(static_cast<std::uint32_t>(w), kPattern32) << capacity;
  }
}

// Which source value lands in each record slot. Up to 128 stated taps the
// list is copied as it stands; above, ihpir_length reads 128 and each channel
// keeps its first `kept` taps, channel 2 starting at source index `ch2`.
// Nothing is read past the list or written past the capacity.
TEST(ModelHpeq, TruncationTable) {
  struct Case {
    const char* name;
    std::uint32_t ihpir;
    int values;  // coeff_16 holds 1, 2, 3, ...
    unsigned int capacity;
    std::uint32_t stored_ihpir;
    int kept;  // taps per channel; -1: plain copy
    int ch2;
  };
  const Case kCases[] = {
      {"129 taps each into 540 bytes", 129, 2 + 2 * 129, 540, 128, 128, 131},
      {"129 taps each into 302 bytes", 129, 2 + 2 * 129, 302, 128, 68, 131},  // (151 - 14) / 2, one slot spare
      {"129 stated, 50 taps each", 129, 2 + 2 * 50, 540, 128, 128, 52},      // (102 - 2) / 2 + 2
      {"128 taps each", 128, 2 + 2 * 128, 540, 128, -1, 0},
      {"128 stated, 400 values: stops at the record", 128, 400, 540, 128, -1, 0},
      {"64 stated, 10 values", 64, 10, 540, 64, -1, 0},
      {"region ends inside a tap", 2, 6, 29, 2, -1, 0},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
    headphoneEq h;
    h.set_uuid(kId);
    h.set_ihpirlength(c.ihpir);
    coeftest::setTable(h.add_coefftables(), 44100, {}, coeftest::ramp(c.values, 1));
    const int slots = (static_cast<int>(c.capacity) - 24) / 2;
    std::vector<int> source(slots + 8, -1);  // -1: slot untouched
    for (int k = 0; k < slots; ++k) {
      if (c.kept < 0) source[k] = k;
    }
    if (c.kept >= 0) {
      source[0] = 0;
      source[1] = 1;
      for (int j = 0; j < c.kept; ++j) {
        source[2 + j] = 2 + j;
        source[2 + c.kept + j] = c.ch2 + j;
      }
    }
    std::vector<int> rec = patternWords(c.capacity + 20);
    ASSERT_EQ(QuillPb::loadHpeq(&h, rec.data(), c.capacity, 44100), 0);
    EXPECT_EQ(le32(rec.data(), 20), c.stored_ihpir);
    for (int k = 0; k < slots + 8; ++k) {
      const bool copied = source[k] >= 0 && source[k] < c.values;
      ASSERT_EQ(le16(rec.data(), 24 + 2 * k), copied ? source[k] + 1 : 0xA5A5) << "slot " << k;
    }
  }
}

TEST(ModelHpeq, RouteFilteringAcrossModels) {
  listeningModel a, b, c;
  addHpeq(&a, kId, {quill::pb::hub::AR_OUT_LINEOUT}, 11);
  addHpeq(&a, kId, {}, 12);  // a later entry of the same model is never looked at
  addHpeq(&b, "0F0E0D0C-0B0A-0908-0706-050403020100",
          {quill::pb::hub::AR_OUT_ATTACHED0, quill::pb::hub::AR_OUT_USB}, 21);
  addHpeq(&c, "", {}, 31);
  const QuillPb::ModelList models = {&a, &b, &c};

  struct Case {
    AudioRoute route;
    const char* uuid;
    int result;
    int tag;  // -1: untouched
  };
  const Case kCases[] = {
      {quill::pb::hub::AR_OUT_LINEOUT, kId, 0, 11},
      {quill::pb::hub::AR_OUT_USB, kId, 0, 21},
      {quill::pb::hub::AR_OUT_ATTACHED0, kId, 0, 21},
      {quill::pb::hub::AR_OUT_DIGITAL, kId, 1, -1},
      {quill::pb::hub::AR_OUT_DIGITAL, "", 0, 31},  // an empty identifier matches an empty uuid
      {quill::pb::hub::AR_OUT_USB, "ffffffff-0000-0000-0000-000000000000", 1, -1},
  };
  for (const Case& k : kCases) {
    std::vector<int> rec = patternWords(540);
    EXPECT_EQ(QuillPb::processHpeqData(k.route, k.uuid, models, rec.data(), 540, 48000), k.result) << k.route;
    EXPECT_EQ(le16(rec.data(), 24), k.tag < 0 ? 0xA5A5 : k.tag) << k.route << " " << k.uuid;
  }
  std::vector<int> rec = patternWords(540);
  EXPECT_EQ(QuillPb::processHpeqData(quill::pb::hub::AR_OUT_USB, kId, {}, rec.data(), 540, 48000), 1);
  EXPECT_EQ(QuillPb::processHpeqData(quill::pb::hub::AR_OUT_LINEOUT, kId, models, rec.data(), 540, 32000), -998);
}

}  // namespace
