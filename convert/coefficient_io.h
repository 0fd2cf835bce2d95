// Copies between repeated message fields and native coefficient arrays, and
// the sample-rate table selection shared by every coefficient loader.
// Stateless helpers; safe from any thread.
#ifndef QUILLHERON_CONVERT_COEFFICIENT_IO_H_
#define QUILLHERON_CONVERT_COEFFICIENT_IO_H_

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <google/protobuf/repeated_field.h>

#include "coefs.pb.h"
#include "native_io.h"

namespace quillheron {

using CoefTable = quill::pb::coef::CoefTable;
using CoefTableList = google::protobuf::RepeatedPtrField<CoefTable>;
using Int32List = google::protobuf::RepeatedField<std::int32_t>;
using FloatList = google::protobuf::RepeatedField<float>;

// The first table whose sampleRate is present and equal to `rate`, or null.
// No nearest-rate fallback.
const CoefTable* findCoefficients(const CoefTableList& tables, int rate);

// Number of elements to copy: `wanted`, cut at the list's own size and at the
// native capacity, so a copy never reads past the message or writes past the
// array.
inline std::size_t copyCount(std::size_t wanted, int list_size, std::size_t capacity) {
  std::size_t n = wanted;
  const std::size_t have = list_size > 0 ? static_cast<std::size_t>(list_size) : 0;
  if (n > have) n = have;
  if (n > capacity) n = capacity;
  return n;
}

// A little-endian host holds 32-bit values in the records' own byte order, so
// the stores below copy whole arrays there; elsewhere they go value by value.
constexpr bool kHostIsLittleEndian = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;

// Message to native: the first `count` values into consecutive native fields
// starting at byte `offset` of `base`.
// REQUIRES: count <= src.size() and the destination range lies in the record.
inline void storeInt32s(void* base, std::size_t offset, const Int32List& src,
                        std::size_t count) {
  if constexpr (kHostIsLittleEndian) {
    if (count > 0) std::memcpy(static_cast<unsigned char*>(base) + offset, src.data(), 4 * count);
  } else {
    for (std::size_t i = 0; i < count; ++i) {
      native::storeI32(base, offset + 4 * i, src.Get(static_cast<int>(i)));
    }
  }
}

// int16 fields keep the low 16 bits of each value: `count` values from `src`
// (a raw array) into consecutive native fields. On a little-endian host the
// values are narrowed into a small buffer (a loop the compiler turns into
// vector code) that is then copied into the record.
// REQUIRES: src holds count values and the destination range lies in the record.
inline void storeInt16s(void* base, std::size_t offset, const std::int32_t* src,
                        std::size_t count) {
  if constexpr (kHostIsLittleEndian) {
    constexpr std::size_t kChunk = 256;
    std::uint16_t chunk[kChunk];
    unsigned char* to = static_cast<unsigned char*>(base) + offset;
    for (std::size_t done = 0; done < count;) {
      const std::size_t n = count - done < kChunk ? count - done : kChunk;
      for (std::size_t i = 0; i < n; ++i) {
        chunk[i] = static_cast<std::uint16_t>(static_cast<std::uint32_t>(src[done + i]));
      }
      std::memcpy(to + 2 * done, chunk, 2 * n);
      done += n;
    }
  } else {
    for (std::size_t i = 0; i < count; ++i) native::storeI16(base, offset + 2 * i, src[i]);
  }
}

inline void storeInt16s(void* base, std::size_t offset, const Int32List& src,
                        std::size_t count) {
  if (count > 0) storeInt16s(base, offset, src.data(), count);
}

inline void storeFloats(void* base, std::size_t offset, const FloatList& src,
                        std::size_t count) {
  if constexpr (kHostIsLittleEndian) {
    if (count > 0) std::memcpy(static_cast<unsigned char*>(base) + offset, src.data(), 4 * count);
  } else {
    for (std::size_t i = 0; i < count; ++i) {
      native::storeF32(base, offset + 4 * i, src.Get(static_cast<int>(i)));
    }
  }
}

// Native to message: append `count` consecutive native fields. The list
// grows once; on a little-endian host the values are copied in bulk.
inline void appendInt32s(Int32List* dst, const void* base, std::size_t offset,
                         std::size_t count) {
  if (count == 0) return;
  dst->Reserve(dst->size() + static_cast<int>(count));
  std::int32_t* out = dst->AddNAlreadyReserved(static_cast<int>(count));
  if constexpr (kHostIsLittleEndian) {
    std::memcpy(out, static_cast<const unsigned char*>(base) + offset, 4 * count);
  } else {
    for (std::size_t i = 0; i < count; ++i) out[i] = native::loadI32(base, offset + 4 * i);
  }
}

// int16 fields are sign-extended (through a small buffer on a little-endian
// host, so the widening loop becomes vector code).
inline void appendInt16s(Int32List* dst, const void* base, std::size_t offset,
                         std::size_t count) {
  if (count == 0) return;
  dst->Reserve(dst->size() + static_cast<int>(count));
  std::int32_t* out = dst->AddNAlreadyReserved(static_cast<int>(count));
  if constexpr (kHostIsLittleEndian) {
    constexpr std::size_t kChunk = 256;
    std::int16_t chunk[kChunk];
    const unsigned char* from = static_cast<const unsigned char*>(base) + offset;
    for (std::size_t done = 0; done < count;) {
      const std::size_t n = count - done < kChunk ? count - done : kChunk;
      std::memcpy(chunk, from + 2 * done, 2 * n);
      for (std::size_t i = 0; i < n; ++i) out[done + i] = chunk[i];
      done += n;
    }
  } else {
    for (std::size_t i = 0; i < count; ++i) out[i] = native::loadI16(base, offset + 2 * i);
  }
}

inline void appendFloats(FloatList* dst, const void* base, std::size_t offset,
                         std::size_t count) {
  if (count == 0) return;
  dst->Reserve(dst->size() + static_cast<int>(count));
  float* out = dst->AddNAlreadyReserved(static_cast<int>(count));
  if constexpr (kHostIsLittleEndian) {
    std::memcpy(out, static_cast<const unsigned char*>(base) + offset, 4 * count);
  } else {
    for (std::size_t i = 0; i < count; ++i) out[i] = native::loadF32(base, offset + 4 * i);
  }
}

}  // namespace quillheron

#endif  // QUILLHERON_CONVERT_COEFFICIENT_IO_H_
