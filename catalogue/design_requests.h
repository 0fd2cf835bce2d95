// Design requests: one struct per designer family, and one run function per
// family that calls the library's exported designer for a given output format.
// The run functions allocate nothing and keep no state: callers hand in the
// output buffer and the workspace, sized with the helpers below. Safe on any
// thread as long as calls share no buffer.
#ifndef QUILLHERON_CATALOGUE_DESIGN_REQUESTS_H_
#define QUILLHERON_CATALOGUE_DESIGN_REQUESTS_H_

#include <cstddef>
#include <cstdint>

#include "quillheron_filterdesign.h"

namespace qh_design {

// Output formats, named as `heron design --format` names them. kRecord is the
// distortion-prevention record, which holds a 32-bit and a float bank at once.
enum class Format { kFloat, kFxp32, kFxp32NoScale, kFxp24, kFxp16, kRecord };

// "float", "fxp32", "fxp32-noscale", "fxp24", "fxp16", "record".
const char* FormatName(Format format);
// Inverse of FormatName; false for an unknown name.
bool ParseFormat(const char* name, Format* format);
// Bits per output word: 0 for float, 32, 24 or 16; 32 for the record.
int WordWidth(Format format);

// Butterworth low- or high-pass cascade (OVA_IirFilterDesign*).
struct ButterworthRequest {
  float cutoff_hz = 1000.0f;
  int order = 2;
  int sample_rate = 48000;
  int filter_type = QH_IIR_LOWPASS;  // QH_IIR_LOWPASS or QH_IIR_HIGHPASS
};

// Parametric equaliser: the library's own request record (band_count bands,
// one section each, at sample_rate).
using PeqRequest = OVAParametriceqSpec;

// Bass enhancement (OVA_THUMPX_FilterDesign*). Defaults are the schema's
// ThumpxFilterDesignParameters defaults; custom_speaker_size has none.
struct ThumpxRequest {
  int custom_speaker_size = 0;
  float bass_ctrl = 0.333499998f;
  float hp_ratio = 0.5f;
  float ext_bass = 0.8f;
  int sampling_rate = 48000;
  float lp_ratio = 5.5f;
  float pre_lp_freq = 500.0f;   // Hz
  float harm_hp_freq = 44.0f;   // Hz
  float clip_level = 1.5f;
  int reserved = 0;             // passed through, read by no designer
};

// One crossover point of the multi-band limiter (QUILL_McDyn_FilterDesign*).
struct CrossoverRequest {
  float crossover_freq = 300.0f;  // Hz
  int sample_rate = 48000;
};

// Distortion-prevention designs: count blocks in, count records out, always
// at 48000, 44100 and 32000 Hz.
struct DistprevRequest {
  const quillDistprevNotchDesignBlock* blocks = nullptr;
  int count = 0;
};

// Where a design goes. Exactly one of the three output pointers is used, by
// the format's word width: floats for float, words16 for fxp16, words32 for
// every other fixed-point format. workspace may have any alignment.
struct DesignBuffers {
  float* floats = nullptr;
  int32_t* words32 = nullptr;
  int16_t* words16 = nullptr;
  void* workspace = nullptr;
};

// Output length in elements (floats or words) and workspace size in bytes.
// A format the family does not have gives 0 for both.
int OutputLength(const ButterworthRequest& request, Format format);
int OutputLength(const PeqRequest& request, Format format);
int OutputLength(const ThumpxRequest& request, Format format);
int OutputLength(const CrossoverRequest& request, Format format);
int WorkspaceBytes(const ButterworthRequest& request, Format format);
int WorkspaceBytes(const PeqRequest& request, Format format);
int WorkspaceBytes(const ThumpxRequest& request, Format format);
int WorkspaceBytes(const CrossoverRequest& request, Format format);

// Runs the family's designer for `format` and returns its result as it comes
// (0 or -1000). A format the family does not have returns -1000 and writes
// nothing.
int Run(const ButterworthRequest& request, Format format, const DesignBuffers& out);
int Run(const PeqRequest& request, Format format, const DesignBuffers& out);
int Run(const ThumpxRequest& request, Format format, const DesignBuffers& out);
int Run(const CrossoverRequest& request, Format format, const DesignBuffers& out);
// REQUIRES: records holds request.count records (none when count < 1).
int Run(const DistprevRequest& request, quillDistprevDesignHeader* header, quillMBHLDistprevCoeff* records);

}  // namespace qh_design

#endif  // QUILLHERON_CATALOGUE_DESIGN_REQUESTS_H_
