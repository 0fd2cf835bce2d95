// Byte sink of the designer sweep: collects every designer output as
// little-endian bytes, whatever the byte order of the machine, and keeps one
// index line per case ("<offset> <label>") so that a difference between two
// machines can be traced back to the call that produced it.
// Single-threaded; one sink per run.
#ifndef QUILLHERON_TESTS_IDENTITY_SWEEP_SINK_H_
#define QUILLHERON_TESTS_IDENTITY_SWEEP_SINK_H_

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace qh_identity {

class SweepSink {
 public:
  // Starts a new case; every value appended until the next call belongs to it.
  void Begin(const std::string& label) {
    ReportSlowCase();
    index_ += std::to_string(bytes_.size()) + " " + label + "\n";
    label_ = label;
    ++cases_;
  }

  void U8(uint8_t v) { bytes_.push_back(v); }
  void I16(int16_t v) { Le(static_cast<uint16_t>(v), 2); }
  void I32(int32_t v) { Le(static_cast<uint32_t>(v), 4); }
  // Floats go out as their bit patterns, so -0.0 and the kind of a
  // not-a-number are compared too.
  void F32(float v) {
    uint32_t bits;
    std::memcpy(&bits, &v, sizeof bits);
    Le(bits, 4);
  }

  void I16s(const int16_t* v, int n) { for (int i = 0; i < n; ++i) I16(v[i]); }
  void I32s(const int32_t* v, int n) { for (int i = 0; i < n; ++i) I32(v[i]); }
  void F32s(const float* v, int n) { for (int i = 0; i < n; ++i) F32(v[i]); }
  void Raw(const void* p, size_t n) {
    const auto* b = static_cast<const uint8_t*>(p);
    bytes_.insert(bytes_.end(), b, b + n);
  }

  size_t size() const { return bytes_.size(); }
  int cases() const { return cases_; }

  // Writes the bytes to `path` and the index to `path`.index.
  bool Write(const std::string& path) {
    ReportSlowCase();
    return WriteFile(path, bytes_.data(), bytes_.size()) &&
           WriteFile(path + ".index", index_.data(), index_.size());
  }

 private:
  // With QH_SWEEP_SLOW_MS set, names every case that took longer (stderr).
  void ReportSlowCase() {
    const auto now = std::chrono::steady_clock::now();
    if (slow_ms_ > 0 && !label_.empty()) {
      const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(now - start_).count();
      if (ms >= slow_ms_) std::fprintf(stderr, "slow case (%lld ms): %s\n", static_cast<long long>(ms), label_.c_str());
    }
    start_ = now;
  }

  void Le(uint32_t v, int n) {
    for (int i = 0; i < n; ++i) bytes_.push_back(static_cast<uint8_t>(v >> (8 * i)));
  }
  static bool WriteFile(const std::string& path, const void* data, size_t n) {
    std::FILE* f = std::fopen(path.c_str(), "wb");
    if (f == nullptr) return false;
    const bool ok = std::fwrite(data, 1, n, f) == n;
    return std::fclose(f) == 0 && ok;
  }

  std::vector<uint8_t> bytes_;
  std::string index_;
  int cases_ = 0;
  std::string label_;
  std::chrono::steady_clock::time_point start_;
  long slow_ms_ = std::getenv("QH_SWEEP_SLOW_MS") ? std::atol(std::getenv("QH_SWEEP_SLOW_MS")) : 0;
};

}  // namespace qh_identity

#endif  // QUILLHERON_TESTS_IDENTITY_SWEEP_SINK_H_
