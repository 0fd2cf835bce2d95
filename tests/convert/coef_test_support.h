// Shared helpers of the coefficient, listening-model and postmix tests: a
// pattern-filled postmix record on the heap, little-endian reads at absolute
// byte offsets (written here independently of the library's own helpers), and
// message builders.
#ifndef QUILLHERON_TESTS_CONVERT_COEF_TEST_SUPPORT_H_
#define QUILLHERON_TESTS_CONVERT_COEF_TEST_SUPPORT_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "QuillPbConvert_Heron_v1_1.h"
#include "quillHeronCoeffRecords.h"

namespace coeftest {

constexpr std::uint8_t kPattern = 0xA5;
constexpr std::uint32_t kPattern32 = 0xA5A5A5A5u;
constexpr std::uint16_t kPattern16 = 0xA5A5u;
constexpr std::size_t kRecordBytes = 66108;

using quill::pb::coef::CoefTable;
using quill::pb::heron_v1_1::HeronSettings;
using quill::pb::heron_v1_1::Postmix;
using quill::pb::model::listeningModel;

// Little-endian reads at a byte offset of any buffer.
inline std::uint32_t le32(const void* p, std::size_t off) {
  const std::uint8_t* b = static_cast<const std::uint8_t*>(p) + off;
  return b[0] | (b[1] << 8) | (b[2] << 16) | (static_cast<std::uint32_t>(b[3]) << 24);
}
inline std::uint16_t le16(const void* p, std::size_t off) {
  const std::uint8_t* b = static_cast<const std::uint8_t*>(p) + off;
  return static_cast<std::uint16_t>(b[0] | (b[1] << 8));
}

// A postmix record whose every byte starts as kPattern, so writes show.
struct Record {
  std::unique_ptr<_quillHeronPostmixApiCtrlCoeffs> rec{new _quillHeronPostmixApiCtrlCoeffs};
  Record() { std::memset(rec.get(), kPattern, sizeof(*rec)); }
  _quillHeronPostmixApiCtrlCoeffs& operator*() { return *rec; }
  const std::uint8_t* bytes() const { return reinterpret_cast<const std::uint8_t*>(rec.get()); }
  std::uint8_t* bytes() { return reinterpret_cast<std::uint8_t*>(rec.get()); }
  std::uint32_t u32(std::size_t off) const { return le32(bytes(), off); }
  std::int32_t i32(std::size_t off) const { return static_cast<std::int32_t>(u32(off)); }
  std::uint16_t u16(std::size_t off) const { return le16(bytes(), off); }
  float f32(std::size_t off) const {
    const std::uint32_t u = u32(off);
    float f;
    std::memcpy(&f, &u, 4);
    return f;
  }
  void put32(std::size_t off, std::uint32_t v) {
    for (int i = 0; i < 4; ++i) bytes()[off + i] = static_cast<std::uint8_t>(v >> (8 * i));
  }
  void put16(std::size_t off, std::uint16_t v) {
    bytes()[off] = static_cast<std::uint8_t>(v);
    bytes()[off + 1] = static_cast<std::uint8_t>(v >> 8);
  }
  // Index of the first byte in [from, to) that differs from the pattern, or `to`.
  std::size_t firstWritten(std::size_t from, std::size_t to) const {
    for (std::size_t i = from; i < to; ++i) {
      if (bytes()[i] != kPattern) return i;
    }
    return to;
  }
  // True when bytes [from, to) all still hold the pattern.
  bool untouched(std::size_t from, std::size_t to) const { return firstWritten(from, to) == to; }
};


// A word buffer of `bytes` bytes (rounded down to words), pattern-filled.
inline std::vector<int> patternWords(std::size_t bytes) {
  return std::vector<int>(bytes / 4, static_cast<int>(kPattern32));
}

// Values base, base + step, ... (n of them).
inline std::vector<std::int32_t> ramp(int n, std::int32_t base, std::int32_t step = 1) {
  std::vector<std::int32_t> v;
  for (int i = 0; i < n; ++i) v.push_back(base + i * step);
  return v;
}

inline void setTable(CoefTable* t, int rate, const std::vector<std::int32_t>& c32,
                     const std::vector<std::int32_t>& c16 = {}) {
  t->set_samplerate(rate);
  for (std::int32_t v : c32) t->add_coeff_32(v);
  for (std::int32_t v : c16) t->add_coeff_16(v);
}

// Low 16 bits of v, as the engine's int16 fields keep it.
inline std::uint16_t low16(std::int32_t v) { return static_cast<std::uint16_t>(v & 0xFFFF); }

// The int32 words at `at` are `values`, then the pattern up to `capacity`
// words (no pattern check when capacity is below the value count).
inline void expectWords(const Record& rec, std::size_t at, const std::vector<std::int32_t>& values,
                        int capacity, const std::string& what) {
  const int n = std::max(capacity, static_cast<int>(values.size()));
  for (int i = 0; i < n; ++i) {
    const std::uint32_t want = i < static_cast<int>(values.size()) ? static_cast<std::uint32_t>(values[i]) : kPattern32;
    ASSERT_EQ(rec.u32(at + 4 * i), want) << what << " word " << i;
  }
}

// The int16 fields at `at` hold the low halves of `values`, then the pattern.
inline void expectHalves(const Record& rec, std::size_t at, const std::vector<std::int32_t>& values,
                         int capacity, const std::string& what) {
  const int n = std::max(capacity, static_cast<int>(values.size()));
  for (int i = 0; i < n; ++i) {
    const std::uint16_t want = i < static_cast<int>(values.size()) ? low16(values[i]) : kPattern16;
    ASSERT_EQ(rec.u16(at + 2 * i), want) << what << " half " << i;
  }
}

}  // namespace coeftest

#endif  // QUILLHERON_TESTS_CONVERT_COEF_TEST_SUPPORT_H_
