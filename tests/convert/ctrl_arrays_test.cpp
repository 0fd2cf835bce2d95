// The repeated fields of the premix and postmix control records: each list is
// cut at its native array, element i lands in its slot (the per-mode arrays
// in the engine's slot order), slots past a short list keep their contents,
// and convert reads exactly the array back in message order.
#include <gtest/gtest.h>

#include "QuillPbConvert_Heron_v1_1.h"
#include "ctrl_test_util.h"

namespace {

using quill::pb::heron_v1_1::HeronSettings;
using Int32List = google::protobuf::RepeatedField<int32_t>;

// Native slot of each mode in HeronModeOrder (Multichannel, Front, Wide,
// Stereo, Bypass, Downmix), from the record layout.
constexpr int kModeSlots[6] = {4, 1, 2, 0, 3, 5};

struct ArrayRow {
  const char* name;
  bool premix;  // else the postmix control record
  Int32List* (*list)(HeronSettings&);
  std::size_t offset;  // absolute in the record
  int capacity;
  const int* slot_of;  // native slot of element i; nullptr: slot i
};

const ArrayRow kArrays[] = {
    {"premix bypass_mode", true, [](HeronSettings& s) { return s.mutable_premix()->mutable_bypass_mode(); }, 124, 5,
     nullptr},
    {"premix htest", true, [](HeronSettings& s) { return s.mutable_premix()->mutable_enhance2()->mutable_htest(); },
     20 + 32, 7, nullptr},
    {"premix ref_htest", true,
     [](HeronSettings& s) { return s.mutable_premix()->mutable_enhance2()->mutable_ref_htest(); }, 20 + 60, 7, nullptr},
    {"lyra_input_gain", false, [](HeronSettings& s) { return s.mutable_postmix()->mutable_lyra_input_gain(); }, 24, 6,
     kModeSlots},
    {"bypass_hpeq", false, [](HeronSettings& s) { return s.mutable_postmix()->mutable_bypass_hpeq(); }, 48, 6,
     kModeSlots},
    {"aeq_enable", false, [](HeronSettings& s) { return s.mutable_postmix()->mutable_aeq_enable(); }, 72, 6,
     kModeSlots},
    {"postmix bypass_mode", false, [](HeronSettings& s) { return s.mutable_postmix()->mutable_bypass_mode(); }, 100, 5,
     nullptr},
    {"postmix htest", false,
     [](HeronSettings& s) { return s.mutable_postmix()->mutable_enhance2()->mutable_htest(); }, 272 + 32, 7, nullptr},
    {"postmix ref_htest", false,
     [](HeronSettings& s) { return s.mutable_postmix()->mutable_enhance2()->mutable_ref_htest(); }, 272 + 60, 7,
     nullptr},
};

// Element i of the list. Elements past the array are negative: a negative
// ref_htest that were read would fail the postmix populate.
int32_t value(int i, int capacity) { return i < capacity ? 10 + i : -(10 + i); }

TEST(CtrlArrays, ListsAreCutAtTheArrayAndReadBackInMessageOrder) {
  const uint32_t P = 0xA5A5A5A5u;
  QuillHeron_v1_1_Pb conv(48000);
  for (const ArrayRow& row : kArrays) {
    for (int n : {row.capacity + 2, 2}) {
      SCOPED_TRACE(testing::Message() << row.name << ", " << n << " values");
      HeronSettings s;
      for (int i = 0; i < n; ++i) row.list(s)->Add(value(i, row.capacity));
      _quillHeronPremixApiCtrl pre;
      _quillHeronPostmixApiCtrl post;
      ctrltest::fillPattern(pre);
      ctrltest::fillPattern(post);
      EXPECT_EQ(row.premix ? conv.populate(s, pre, false) : conv.populate(s, post), 0);
      const void* rec = row.premix ? static_cast<const void*>(&pre) : static_cast<const void*>(&post);

      uint32_t want[7] = {P, P, P, P, P, P, P};
      for (int i = 0; i < n && i < row.capacity; ++i) want[row.slot_of ? row.slot_of[i] : i] = uint32_t(10 + i);
      for (int slot = 0; slot < row.capacity; ++slot) {
        EXPECT_EQ(ctrltest::le32(rec, row.offset + 4 * slot), want[slot]) << "slot " << slot;
      }
      EXPECT_EQ(ctrltest::le32(rec, row.offset + 4 * row.capacity), P) << "the word after the array";

      if (n < row.capacity) continue;
      HeronSettings back;
      if (row.premix) {
        conv.convert(pre, &back);
      } else {
        conv.convert(post, &back);
      }
      const Int32List& got = *row.list(back);
      ASSERT_EQ(got.size(), row.capacity);
      for (int i = 0; i < row.capacity; ++i) EXPECT_EQ(got.Get(i), 10 + i) << i;
    }
  }
}

}  // namespace
