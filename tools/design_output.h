// The result of one `heron design` run, in a form shared by the designers'
// adapters (design_*.cpp), which fill it from the catalogue's run functions,
// and the renderers (design_render.cpp), which only print it.
#ifndef QUILLHERON_TOOLS_DESIGN_OUTPUT_H_
#define QUILLHERON_TOOLS_DESIGN_OUTPUT_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "design_requests.h"
#include "design_response.h"

namespace heron_tool {

// One section made readable: real-valued coefficients (fixed-point words
// divided by 2^(W - iwl)), the stored words beside them for fixed point.
struct SectionView {
  std::string name;
  std::optional<int> iwl;              // fixed point only
  std::vector<std::string> coef_names; // "b0", "b1", "b2", "A1", "A2" or "gain"
  std::vector<double> values;
  std::vector<int64_t> words;          // fixed point only
};

// One response curve: a cascade in the library's float convention. Curves
// come in pairs: the float design, then (fixed point) its de-quantised form.
// A curve with `sum_of` is the sum of those curves' complex responses (a
// crossover's two halves); a `faint` curve (one band of an EQ) is drawn
// lightly and only in the plot.
struct Curve {
  std::string name;   // "Butterworth low-pass, order 2"
  std::string key;    // JSON key suffix: "" for the main pair, "highpass"
  bool quantised = false;
  int pair = 0;       // 0 the main pair, 1 the second
  std::vector<Biquad> sections;
  double gain = 1.0;
  std::vector<int> sum_of;
  bool faint = false;
};

// A fixed-point cascade of the output and the float design it stands for,
// for the quantisation analysis.
struct Analysed {
  std::string name;  // "", or the group or slot ("harmonics high-pass")
  quillheron::analysis::Cascade reference, quantised;
  std::vector<int64_t> coefficient_words;  // stored coefficient and gain words, no iwl
  std::vector<int64_t> numerator_words;    // stored b0 b1 b2 words
  int width = 32;
  int rate = 0;
};

struct DesignOutput {
  std::string design;
  qh_design::Format format = qh_design::Format::kFloat;
  int rate = 0;
  bool rate_applies = true;       // false for distprev (always three rates)
  int result = 0;
  std::string reject_reason;      // set when result is -1000

  bool float_output = true;       // which of the two buffers is the output
  std::vector<float> floats;
  std::vector<int64_t> words;
  std::string header_hex;         // distprev only

  std::vector<SectionView> sections;
  std::vector<Curve> curves;      // empty when the design has no response
  std::vector<Analysed> analysed; // fixed point only
  std::string detail;             // what was asked, for titles: "cut-off 1000 Hz"
};

// Appends a section read from `group` at [iwl, b0, b1, b2, A1, A2] (or fewer
// values for a first-order group of three) and returns it as a biquad.
Biquad AddFixedSection(DesignOutput* out, const std::string& name, const int64_t* group, int values, int width);
// The same for float coefficients [b0, b1, b2, A1, A2] (or b0, b1, A1).
Biquad AddFloatSection(DesignOutput* out, const std::string& name, const float* coefs, int values);
// A group of 3 (b0, b1, A1) or 5 float values as a biquad.
Biquad FloatBiquad(const float* coefs, int values);
// Adds a fixed-point group (iwl, then 3 or 5 values) to an analysed cascade:
// its section, and its words.
void AddAnalysedGroup(Analysed* a, const Biquad& design, const int64_t* group, int values, int width);

// Runs `request` in out->format into out->floats or out->words (zeroed
// first) and a zeroed workspace; sets out->result.
template <typename Request>
void RunDesigner(const Request& request, DesignOutput* out) {
  const int length = qh_design::OutputLength(request, out->format);
  std::vector<unsigned char> workspace(qh_design::WorkspaceBytes(request, out->format), 0);
  qh_design::DesignBuffers buffers;
  buffers.workspace = workspace.data();
  const int width = qh_design::WordWidth(out->format);
  out->float_output = width == 0;
  if (width == 0) {
    out->floats.assign(length, 0.0f);
    buffers.floats = out->floats.data();
    out->result = qh_design::Run(request, out->format, buffers);
    return;
  }
  std::vector<int32_t> w32(width == 16 ? 0 : length, 0);
  std::vector<int16_t> w16(width == 16 ? length : 0, 0);
  buffers.words32 = w32.data();
  buffers.words16 = w16.data();
  out->result = qh_design::Run(request, out->format, buffers);
  if (width == 16) {
    out->words.assign(w16.begin(), w16.end());
  } else {
    out->words.assign(w32.begin(), w32.end());
  }
}

// Designer adapters: each runs the catalogue's request for its family and
// fills `out`, with the reject reason from the catalogue's contract check.
void DesignButterworth(const qh_design::ButterworthRequest& request, DesignOutput* out);
void DesignPeq(const qh_design::PeqRequest& request, DesignOutput* out);
void DesignThumpx(const qh_design::ThumpxRequest& request, DesignOutput* out);
void DesignCrossover(const qh_design::CrossoverRequest& request, DesignOutput* out);
void DesignDistprev(const qh_design::DistprevRequest& request, DesignOutput* out);

// What the renderers show besides the sections.
struct RenderOptions {
  bool phase = false;
  bool group_delay = false;
};
using Response = std::vector<ResponsePoint>;

// One response per curve of `d`, on the design's grid.
std::vector<Response> CurveResponses(const DesignOutput& d);

// The renderers, one per output kind. `responses` holds one response per
// curve of `d` (empty when none was asked for).
void PrintDesignText(const DesignOutput& d, const std::vector<Response>& responses, const RenderOptions& o,
                     const struct DesignAnalysis& analysis);
void PrintDesignJson(const DesignOutput& d, const std::vector<Response>& responses, const RenderOptions& o,
                     const struct DesignAnalysis& analysis);
std::string RenderDesignSvg(const DesignOutput& d, const std::vector<Response>& responses, const RenderOptions& o);
std::string RenderDesignCsv(const DesignOutput& d, const std::vector<Response>& responses, const RenderOptions& o);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_DESIGN_OUTPUT_H_
