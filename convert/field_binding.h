// Field binding tables: constant rows that tie one scalar message field
// (presence test, getter, setter) to a native field at a byte offset inside
// one native block, plus the two generic walks over such a table.
// Tables are constexpr data with internal linkage; nothing is registered at
// run time. The walks are stateless and safe from any thread.
#ifndef QUILLHERON_CONVERT_FIELD_BINDING_H_
#define QUILLHERON_CONVERT_FIELD_BINDING_H_

#include <cstddef>
#include <cstdint>

#include "native_io.h"

namespace quillheron {

// Native width of every field bound by one table (a property of the table).
enum class NativeWidth { kInt32, kInt16, kFloat32 };

template <NativeWidth W>
struct NativeField;

template <>
struct NativeField<NativeWidth::kInt32> {
  using Value = std::int32_t;
  static constexpr std::size_t kBytes = 4;
  static void store(void* b, std::size_t off, Value v) { native::storeI32(b, off, v); }
  static Value load(const void* b, std::size_t off) { return native::loadI32(b, off); }
};

// Populate keeps only the low 16 bits; convert sign-extends.
template <>
struct NativeField<NativeWidth::kInt16> {
  using Value = std::int32_t;
  static constexpr std::size_t kBytes = 2;
  static void store(void* b, std::size_t off, Value v) { native::storeI16(b, off, v); }
  static Value load(const void* b, std::size_t off) { return native::loadI16(b, off); }
};

// Bit for bit.
template <>
struct NativeField<NativeWidth::kFloat32> {
  using Value = float;
  static constexpr std::size_t kBytes = 4;
  static void store(void* b, std::size_t off, Value v) { native::storeF32(b, off, v); }
  static Value load(const void* b, std::size_t off) { return native::loadF32(b, off); }
};

// One row, in this order: presence test, getter, setter, byte offset of the
// native field from the start of Block.
template <class Msg, class Block, NativeWidth W>
struct FieldBinding {
  using Value = typename NativeField<W>::Value;
  bool (Msg::*has)() const;
  Value (Msg::*get)() const;
  void (Msg::*set)(Value);
  std::size_t offset;
};

// Row for message field `field` of Msg at native byte offset `off`.
#define QH_BIND(Msg, field, off) \
  { &Msg::has_##field, &Msg::field, &Msg::set_##field, off }

// True when every row lies inside Block and is naturally aligned.
template <class Msg, class Block, NativeWidth W, std::size_t N>
constexpr bool rowsFitBlock(const FieldBinding<Msg, Block, W> (&table)[N]) {
  for (std::size_t i = 0; i < N; ++i) {
    const std::size_t bytes = NativeField<W>::kBytes;
    if (table[i].offset + bytes > sizeof(Block) || table[i].offset % bytes != 0) {
      return false;
    }
  }
  return true;
}

// True when the rows' offsets are exactly `expected`, in order.
template <class Msg, class Block, NativeWidth W, std::size_t N>
constexpr bool rowOffsetsAre(const FieldBinding<Msg, Block, W> (&table)[N],
                             const std::size_t (&expected)[N]) {
  for (std::size_t i = 0; i < N; ++i) {
    if (table[i].offset != expected[i]) return false;
  }
  return true;
}

// Message to native, in row order: a present field is stored at its offset
// (int16: low 16 bits); an absent field leaves the native bytes untouched.
template <class Msg, class Block, NativeWidth W, std::size_t N>
void populateTable(const FieldBinding<Msg, Block, W> (&table)[N], const Msg& msg,
                   Block& block) {
  for (const auto& row : table) {
    if ((msg.*row.has)()) {
      NativeField<W>::store(&block, row.offset, (msg.*row.get)());
    }
  }
}

// Native to message, in row order: every bound field is set (int16
// sign-extended), so every one is present afterwards.
template <class Msg, class Block, NativeWidth W, std::size_t N>
void convertTable(const FieldBinding<Msg, Block, W> (&table)[N],
                  const Block& block, Msg* msg) {
  for (const auto& row : table) {
    (msg->*row.set)(NativeField<W>::load(&block, row.offset));
  }
}

}  // namespace quillheron

#endif  // QUILLHERON_CONVERT_FIELD_BINDING_H_
