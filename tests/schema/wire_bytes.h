// Test helpers for exact wire-format checks: build a byte string from a list
// of byte values and print bytes as hex in failure messages.
#pragma once

#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string>

namespace qh_test {

inline std::string Bytes(std::initializer_list<int> values) {
  std::string out;
  for (int v : values) out.push_back(static_cast<char>(static_cast<uint8_t>(v)));
  return out;
}

inline std::string Hex(const std::string& bytes) {
  std::string out;
  char buf[4];
  for (unsigned char c : bytes) {
    std::snprintf(buf, sizeof buf, "%02x ", c);
    out += buf;
  }
  return out;
}

}  // namespace qh_test
