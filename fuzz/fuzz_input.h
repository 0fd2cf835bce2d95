// Reads fuzz input bytes as the parameters a harness needs: integers, raw
// float bit patterns, sample rates, length-prefixed chunks. Past the end
// every read yields zero, so any input is a valid parameter set.
// Not thread-safe; one reader per input.
#ifndef QUILLHERON_FUZZ_FUZZ_INPUT_H_
#define QUILLHERON_FUZZ_FUZZ_INPUT_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

namespace qh_fuzz {

class FuzzInput {
 public:
  FuzzInput(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

  std::size_t remaining() const { return size_ - pos_; }
  const std::uint8_t* position() const { return data_ + pos_; }

  std::uint8_t u8() { return pos_ < size_ ? data_[pos_++] : 0; }
  std::uint16_t u16() { return static_cast<std::uint16_t>(u8() | (u8() << 8)); }
  std::uint32_t u32() {
    std::uint32_t v = 0;
    for (int i = 0; i < 4; ++i) v |= static_cast<std::uint32_t>(u8()) << (8 * i);
    return v;
  }
  std::int32_t i32() {
    const std::uint32_t v = u32();
    std::int32_t out;
    std::memcpy(&out, &v, sizeof(out));
    return out;
  }
  bool flag() { return (u8() & 1) != 0; }

  // Any float bit pattern: not-a-number, infinities, denormals included.
  float rawFloat() {
    const std::uint32_t bits = u32();
    float f;
    std::memcpy(&f, &bits, sizeof(f));
    return f;
  }

  // A float that is most often a plausible design value and otherwise an
  // edge value or an arbitrary bit pattern.
  float designFloat(float typical_lo, float typical_hi) {
    const std::uint8_t kind = u8();
    if (kind < 128) return typical_lo + (typical_hi - typical_lo) * (u16() / 65535.0f);
    if (kind < 192) {
      static const float kEdges[] = {
          0.0f, -0.0f, 1.0f, -1.0f, 0.5f, 1e-45f, -1e-45f, 1.17549435e-38f,
          std::numeric_limits<float>::max(), -std::numeric_limits<float>::max(),
          std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
          std::numeric_limits<float>::quiet_NaN(), 1e30f, -1e30f, 2147483648.0f,
          24000.0f, 22050.0f, 96000.0f, 20.0f, 1e-7f, 1.0000001f, 0.99999994f, -1e-30f};
      return kEdges[kind % (sizeof(kEdges) / sizeof(kEdges[0]))];
    }
    return rawFloat();
  }

  // A sample rate: usually one the engine runs at, sometimes an odd, zero,
  // negative or extreme one.
  int sampleRate() {
    static const int kRates[] = {48000, 44100, 32000, 8000,   11025,      16000,
                                 22050, 24000, 88200, 96000,  176400,     192000,
                                 0,     1,     -1,    -48000, 2147483647, -2147483647 - 1};
    const std::uint8_t b = u8();
    if (b < 0xF0) return kRates[b % (sizeof(kRates) / sizeof(kRates[0]))];
    return i32();
  }

  // A count or order: usually small, sometimes negative or huge.
  int count(int typical_max) {
    const std::uint8_t b = u8();
    if (b < 0xE0) return b % (typical_max + 1);
    if (b < 0xF0) return -static_cast<int>(b & 0x0F) - 1;
    return i32();
  }

  // A chunk of up to `u32` bytes (cut at the end of the input).
  struct Chunk {
    const std::uint8_t* data;
    std::size_t size;
  };
  Chunk chunk() {
    std::size_t n = u32();
    if (n > remaining()) n = remaining();
    Chunk c{position(), n};
    pos_ += n;
    return c;
  }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
  std::size_t pos_ = 0;
};

}  // namespace qh_fuzz

#endif  // QUILLHERON_FUZZ_FUZZ_INPUT_H_
