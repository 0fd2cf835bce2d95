// Little-endian reads and writes of native record fields at byte offsets.
// Native records are the engine's wire format: every access goes through
// these helpers (byte-wise, so alignment and host byte order never matter).
// Stateless; safe from any thread.
#ifndef QUILLHERON_CONVERT_NATIVE_IO_H_
#define QUILLHERON_CONVERT_NATIVE_IO_H_

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quillheron {
namespace native {

// REQUIRES: base + offset .. base + offset + 3 lies inside the record.
inline void storeU32(void* base, std::size_t offset, std::uint32_t v) {
  unsigned char b[4] = {static_cast<unsigned char>(v),
                        static_cast<unsigned char>(v >> 8),
                        static_cast<unsigned char>(v >> 16),
                        static_cast<unsigned char>(v >> 24)};
  std::memcpy(static_cast<unsigned char*>(base) + offset, b, 4);
}

inline std::uint32_t loadU32(const void* base, std::size_t offset) {
  unsigned char b[4];
  std::memcpy(b, static_cast<const unsigned char*>(base) + offset, 4);
  return static_cast<std::uint32_t>(b[0]) |
         (static_cast<std::uint32_t>(b[1]) << 8) |
         (static_cast<std::uint32_t>(b[2]) << 16) |
         (static_cast<std::uint32_t>(b[3]) << 24);
}

// REQUIRES: base + offset .. base + offset + 1 lies inside the record.
inline void storeU16(void* base, std::size_t offset, std::uint16_t v) {
  unsigned char b[2] = {static_cast<unsigned char>(v),
                        static_cast<unsigned char>(v >> 8)};
  std::memcpy(static_cast<unsigned char*>(base) + offset, b, 2);
}

inline std::uint16_t loadU16(const void* base, std::size_t offset) {
  unsigned char b[2];
  std::memcpy(b, static_cast<const unsigned char*>(base) + offset, 2);
  return static_cast<std::uint16_t>(b[0] | (b[1] << 8));
}

// int32: stored whole.
inline void storeI32(void* base, std::size_t offset, std::int32_t v) {
  storeU32(base, offset, static_cast<std::uint32_t>(v));
}

inline std::int32_t loadI32(const void* base, std::size_t offset) {
  std::int32_t v;
  const std::uint32_t u = loadU32(base, offset);
  std::memcpy(&v, &u, 4);  // two's complement reinterpretation
  return v;
}

// int16: only the low 16 bits of v are stored (plain truncation).
inline void storeI16(void* base, std::size_t offset, std::int32_t v) {
  storeU16(base, offset,
           static_cast<std::uint16_t>(static_cast<std::uint32_t>(v) & 0xFFFFu));
}

// int16 read back sign-extended to 32 bits.
inline std::int32_t loadI16(const void* base, std::size_t offset) {
  std::int16_t v;
  const std::uint16_t u = loadU16(base, offset);
  std::memcpy(&v, &u, 2);
  return v;
}

// float32: stored and read bit for bit.
inline void storeF32(void* base, std::size_t offset, float v) {
  static_assert(sizeof(float) == 4, "float must be 32-bit");
  std::uint32_t u;
  std::memcpy(&u, &v, 4);
  storeU32(base, offset, u);
}

inline float loadF32(const void* base, std::size_t offset) {
  const std::uint32_t u = loadU32(base, offset);
  float v;
  std::memcpy(&v, &u, 4);
  return v;
}

}  // namespace native
}  // namespace quillheron

#endif  // QUILLHERON_CONVERT_NATIVE_IO_H_
