// Shared pieces of the bass-enhancement designer tests: the catalogue's
// request, and the schema defaults with a mid-size speaker.
#ifndef QUILLHERON_TESTS_FILTERDESIGN_THUMPX_TEST_UTIL_H_
#define QUILLHERON_TESTS_FILTERDESIGN_THUMPX_TEST_UTIL_H_

#include "design_requests.h"

namespace thumpx_test {

// The request's fields in the designer's argument order.
using Params = qh_design::ThumpxRequest;

constexpr Params kDefaults = {150, 0.3335f, 0.5f, 0.8f, 48000, 5.5f, 500.0f, 44.0f, 1.5f, 0};

inline int DesignFloat(const Params& p, float* out) {
  qh_design::DesignBuffers b;
  b.floats = out;
  return qh_design::Run(p, qh_design::Format::kFloat, b);
}

}  // namespace thumpx_test

#endif  // QUILLHERON_TESTS_FILTERDESIGN_THUMPX_TEST_UTIL_H_
