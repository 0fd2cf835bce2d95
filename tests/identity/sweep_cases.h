// The designer sweep's case groups, one per designer family. Each appends its
// cases to the sink in a fixed order; the grids are constant tables.
#ifndef QUILLHERON_TESTS_IDENTITY_SWEEP_CASES_H_
#define QUILLHERON_TESTS_IDENTITY_SWEEP_CASES_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "design_requests.h"
#include "sweep_sink.h"

namespace qh_identity {

void SweepIirCore(SweepSink& sink);       // MinimalIwl, MaxAbs, quantisers, inverses
void SweepButterworth(SweepSink& sink);   // Butterworth designers, all widths
void SweepParametricEq(SweepSink& sink);  // parametric EQ, every band type
void SweepThumpx(SweepSink& sink);        // bass enhancement
void SweepCrossover(SweepSink& sink);     // multi-band crossovers
void SweepDistprev(SweepSink& sink);      // distortion prevention

// Scratch shared by the groups: output buffers pre-filled with a pattern and a
// zeroed workspace that starts 4 bytes past an 8-byte boundary (the designers
// align it themselves).
constexpr uint8_t kFillByte = 0xA5;
constexpr size_t kScratchBytes = 1 << 16;

struct Scratch {
  alignas(8) uint8_t out[kScratchBytes];
  alignas(8) uint8_t work[kScratchBytes + 8];

  float* FloatOut() { std::memset(out, kFillByte, sizeof out); return reinterpret_cast<float*>(out); }
  int32_t* I32Out() { std::memset(out, kFillByte, sizeof out); return reinterpret_cast<int32_t*>(out); }
  int16_t* I16Out() { std::memset(out, kFillByte, sizeof out); return reinterpret_cast<int16_t*>(out); }
  void* Work() { std::memset(work, 0, sizeof work); return work + 4; }
};

// Scratch is large; the groups share one static instance.
Scratch& SharedScratch();

// Runs `request` in `format` through the designer catalogue, into the
// pattern-filled scratch output and a zeroed workspace, and appends the result
// code and the whole output to the sink. Returns the result and the buffers.
struct SweepRun {
  int result;
  qh_design::DesignBuffers out;
};
template <class Request>
SweepRun SweepDesign(SweepSink& sink, const Request& request, qh_design::Format format) {
  Scratch& s = SharedScratch();
  const int width = qh_design::WordWidth(format);
  const int n = qh_design::OutputLength(request, format);
  qh_design::DesignBuffers b;
  if (width == 0) {
    b.floats = s.FloatOut();
  } else {
    if (width == 16) b.words16 = s.I16Out();
    else b.words32 = s.I32Out();
    b.workspace = s.Work();
  }
  const int result = qh_design::Run(request, format, b);
  sink.I32(result);
  if (width == 0) sink.F32s(b.floats, n);
  else if (width == 16) sink.I16s(b.words16, n);
  else sink.I32s(b.words32, n);
  return {result, b};
}

inline std::string Fmt(const char* format, double a = 0, double b = 0, double c = 0,
                       double d = 0, double e = 0, double f = 0) {
  char text[256];
  std::snprintf(text, sizeof text, format, a, b, c, d, e, f);
  return text;
}

}  // namespace qh_identity

#endif  // QUILLHERON_TESTS_IDENTITY_SWEEP_CASES_H_
