// Room models: the native room record byte for byte, the capacity edge,
// resolution order and identifier matching. The rebuild from records:
// coef_convert_test.
#include <gtest/gtest.h>

#include <vector>

#include "QuillPb.h"
#include "coef_test_support.h"

namespace {

using namespace coeftest;
using quill::pb::model::roomModel;

const char kRoomId[] = "00112233-4455-6677-8899-aabbccddeeff";

roomModel* addRoom(listeningModel* m, const std::string& uuid, int rate, const std::vector<std::int32_t>& c16) {
  roomModel* r = m->add_rooms();
  r->set_uuid(uuid);
  coeftest::setTable(r->add_coefftables(), rate, {}, c16);
  return r;
}

TEST(ModelRooms, RecordLayout) {
  roomModel room;
  room.set_uuid(kRoomId);
  room.set_channelmask(0x3F);
  room.set_numpairs(7);
  room.set_brirlength(4096);
  room.set_reverbgain(-5);
  room.set_reverbcut(12000);
  coeftest::setTable(room.add_coefftables(), 44100, {}, {9, 9, 9, 9, 9, 9});
  coeftest::setTable(room.add_coefftables(), 48000, {}, {1, -1, 70000, -32769});

  std::vector<int> rec = patternWords(12340);
  ASSERT_EQ(QuillPb::loadRoom(&room, rec.data(), 12340, 48000), 0);
  const std::uint8_t* b = reinterpret_cast<const std::uint8_t*>(rec.data());
  const std::uint8_t uuid[16] = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77,
                                 0x88, 0x99, 0xaa, 0xbb, 0xcc, 0xdd, 0xee, 0xff};
  EXPECT_EQ(0, std::memcmp(b, uuid, 16));
  EXPECT_EQ(le32(b, 16), 0x3Fu);
  EXPECT_EQ(le32(b, 20), 7u);
  EXPECT_EQ(le32(b, 24), 4096u);
  EXPECT_EQ(le32(b, 28), 48000u);
  EXPECT_EQ(le32(b, 32), 0xFFFFFFFBu);
  EXPECT_EQ(le32(b, 36), 12000u);
  EXPECT_EQ(le16(b, 40), 0x0001);
  EXPECT_EQ(le16(b, 42), 0xFFFF);
  EXPECT_EQ(le16(b, 44), 4464);    // 70000 keeps its low 16 bits
  EXPECT_EQ(le16(b, 46), 0x7FFF);  // -32769 likewise
  EXPECT_EQ(le32(b, 48), kPattern32);   // nothing past the coefficients
  EXPECT_EQ(QuillPb::sizeofRoom(&room, 48000), 48u);
  EXPECT_EQ(QuillPb::sizeofRoom(&room, 44100), 52u);
  EXPECT_EQ(QuillPb::sizeofRoom(&room, 32000), 0u);
}

TEST(ModelRooms, CapacityAndTableFailures) {
  struct Case {
    int taps;           // coeff_16 count; -1: no table for the rate
    bool rateless;      // the table has no sampleRate
    unsigned int capacity;
    int result;
  };
  const Case kCases[] = {
      {6150, false, 12340, 0},  {6151, false, 12340, -997}, {16400, false, 32840, 0},
      {16401, false, 32840, -997}, {0, false, 12340, -998}, {-1, false, 12340, -998},
      {4, true, 12340, -998},
      // Regions too small for the 40-byte header.
      {4, false, 0, -997},  {4, false, 4, -997}, {4, false, 23, -997},
  };
  for (const Case& c : kCases) {
    roomModel room;
    room.set_uuid(kRoomId);
    CoefTable* t = room.add_coefftables();
    if (!c.rateless) t->set_samplerate(c.taps < 0 ? 44100 : 48000);
    for (int i = 0; i < c.taps; ++i) t->add_coeff_16(i + 1);
    std::vector<int> rec = patternWords(c.capacity + 8);  // guard words after the capacity
    const int rate = c.rateless ? 0 : 48000;
    EXPECT_EQ(QuillPb::loadRoom(&room, rec.data(), c.capacity, rate), c.result) << c.taps;
    const std::uint8_t* b = reinterpret_cast<const std::uint8_t*>(rec.data());
    if (c.result == 0) {
      EXPECT_EQ(le16(b, 40 + 2 * (c.taps - 1)), static_cast<std::uint16_t>(c.taps)) << c.taps;
    } else {
      for (std::size_t i = 0; i < rec.size(); ++i) ASSERT_EQ(static_cast<std::uint32_t>(rec[i]), kPattern32) << c.taps;
    }
    EXPECT_EQ(le32(b, c.capacity), kPattern32) << "guard after " << c.taps;
  }
}

// Case-insensitive match, first model wins, braces never match; a found room
// without a table for the rate reports -998.
TEST(ModelRooms, ResolutionOrder) {
  listeningModel first, second;
  addRoom(&first, "aaaaaaaa-0000-0000-0000-00000000000a", 48000, {111});
  addRoom(&second, "aaaaaaaa-0000-0000-0000-00000000000A", 48000, {222});
  addRoom(&second, "bbbbbbbb-0000-0000-0000-00000000000b", 48000, {333});
  addRoom(&second, "bbbbbbbb-0000-0000-0000-00000000000b", 48000, {444});  // later duplicate
  addRoom(&second, kRoomId, 44100, {555});  // found, but no table for the rate
  const QuillPb::ModelList models = {nullptr, &first, &second};

  struct Case {
    const char* uuid;
    int result;
    int first_coeff;  // -1: record untouched
  };
  const Case kCases[] = {
      {"AAAAAAAA-0000-0000-0000-00000000000A", 0, 111},
      {"bbbbbbbb-0000-0000-0000-00000000000B", 0, 333},
      {"{aaaaaaaa-0000-0000-0000-00000000000a}", -999, -1},
      {"cccccccc-0000-0000-0000-00000000000c", -999, -1},
      {"", 1, -1},
      {kRoomId, -998, -1},  // not "not found"
  };
  for (const Case& c : kCases) {
    std::vector<int> rec = patternWords(12340);
    EXPECT_EQ(QuillPb::processRoomData(c.uuid, models, rec.data(), 12340, 48000), c.result) << c.uuid;
    const std::uint16_t expect = c.first_coeff < 0 ? 0xA5A5 : static_cast<std::uint16_t>(c.first_coeff);
    EXPECT_EQ(le16(rec.data(), 40), expect) << c.uuid;
  }
  std::vector<int> rec = patternWords(12340);
  EXPECT_EQ(QuillPb::processRoomData(kRoomId, {}, rec.data(), 12340, 48000), -999);
}

}  // namespace
