// Heap buffers of exactly the size a call may use, so that AddressSanitizer
// reports the first byte read or written past them. Records start from a
// byte pattern rather than zero, as a caller's recycled memory would.
// Not thread-safe; one buffer per owner.
#ifndef QUILLHERON_FUZZ_EXACT_BUFFER_H_
#define QUILLHERON_FUZZ_EXACT_BUFFER_H_

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace qh_fuzz {

constexpr std::uint8_t kPattern = 0xA5;

// `bytes` bytes starting `offset` bytes into a fresh allocation of exactly
// offset + bytes: the start may be misaligned on purpose, the end is the end.
class ExactBuffer {
 public:
  explicit ExactBuffer(std::size_t bytes, std::size_t offset = 0, std::uint8_t fill = kPattern)
      : bytes_(bytes), base_(static_cast<std::uint8_t*>(std::malloc(offset + bytes))) {
    // An empty buffer may still be a valid pointer that no access may touch.
    if (base_ == nullptr && offset + bytes > 0) std::abort();
    if (base_ != nullptr) std::memset(base_, fill, offset + bytes);
    data_ = base_ + offset;
  }
  ~ExactBuffer() { std::free(base_); }
  ExactBuffer(const ExactBuffer&) = delete;
  ExactBuffer& operator=(const ExactBuffer&) = delete;

  void* data() { return data_; }
  std::size_t size() const { return bytes_; }
  template <class T>
  T* as() {
    return static_cast<T*>(static_cast<void*>(data_));
  }

 private:
  std::size_t bytes_;
  std::uint8_t* base_;
  std::uint8_t* data_ = nullptr;
};

// One native record of type T in a buffer of exactly sizeof(T) bytes.
template <class T>
class ExactRecord {
 public:
  explicit ExactRecord(std::uint8_t fill = kPattern) : buffer_(sizeof(T), 0, fill) {}
  T& operator*() { return *buffer_.as<T>(); }
  T* operator->() { return buffer_.as<T>(); }
  T* get() { return buffer_.as<T>(); }
  std::uint8_t* bytes() { return static_cast<std::uint8_t*>(buffer_.data()); }

 private:
  ExactBuffer buffer_;
};

}  // namespace qh_fuzz

#endif  // QUILLHERON_FUZZ_EXACT_BUFFER_H_
