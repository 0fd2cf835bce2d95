// The result of one `heron design` run, in a form shared by the designers'
// adapters (design_*.cpp) and the printers (cmd_design.cpp).
#ifndef QUILLHERON_TOOLS_DESIGN_OUTPUT_H_
#define QUILLHERON_TOOLS_DESIGN_OUTPUT_H_

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "response.h"

namespace heron_tool {

// Word width of a fixed-point format; 0 for float.
int FormatWidth(const std::string& format);

// One section made readable: real-valued coefficients (fixed-point words
// divided by 2^(W - iwl)), the stored words beside them for fixed point.
struct SectionView {
  std::string name;
  std::optional<int> iwl;              // fixed point only
  std::vector<std::string> coef_names; // "b0", "b1", "b2", "A1", "A2" or "gain"
  std::vector<double> values;
  std::vector<int64_t> words;          // fixed point only
};

struct DesignOutput {
  std::string design;
  std::string format;
  int rate = 0;
  int result = 0;
  std::string reject_reason;      // set when result is -1000

  bool float_output = true;       // which of the two buffers is the output
  std::vector<float> floats;
  std::vector<int64_t> words;
  std::string header_hex;         // distprev only

  std::vector<SectionView> sections;

  // For --response and --plot: the float design, and for fixed point the
  // de-quantised coefficients. Empty when the design has no response.
  std::string response_label;
  std::vector<Biquad> float_sections;
  double float_gain = 1.0;
  std::vector<Biquad> quantised_sections;
  double quantised_gain = 1.0;
  bool has_quantised = false;
  // A second curve (the crossover's high-pass half).
  std::string second_label;
  std::vector<Biquad> second_float_sections;
  std::vector<Biquad> second_quantised_sections;
};

// A fixed-point word as a real value: v / 2^(W - iwl), computed exactly in
// double (no engine conventions applied).
double Dequantise(int64_t word, int width, int iwl);

// Appends a section read from `words` at [iwl, b0, b1, b2, A1, A2] (or fewer
// values for a first-order group of three) and returns it as a biquad.
Biquad AddFixedSection(DesignOutput* out, const std::string& name, const int64_t* group, int values,
                       int width);
// The same for float coefficients [b0, b1, b2, A1, A2] (or b0, b1, A1).
Biquad AddFloatSection(DesignOutput* out, const std::string& name, const float* coefs, int values);

// Runs the fixed-point member for `width` into out->words (`words` long,
// zeroed first): `run16` gets an int16_t buffer, `run32` an int32_t buffer
// and the width (32 or 24), so each family's three members stay one call.
template <typename Run16, typename Run32>
void RunFixedDesign(DesignOutput* out, size_t words, int width, Run16 run16, Run32 run32) {
  out->float_output = false;
  out->words.assign(words, 0);
  if (width == 16) {
    std::vector<int16_t> w(words, 0);
    out->result = run16(w.data());
    std::copy(w.begin(), w.end(), out->words.begin());
  } else {
    std::vector<int32_t> w(words, 0);
    out->result = run32(w.data(), width);
    std::copy(w.begin(), w.end(), out->words.begin());
  }
}

// Designer adapters. Each validates its own options (throwing ToolError with
// status 2 for usage errors), runs the library's designer and fills `out`.
struct ButterworthOptions {
  std::string type = "low";
  double cutoff = 1000;
  int order = 2;
};
struct PeqOptions {
  std::vector<std::string> bands;
};
struct ThumpxOptions {
  int speaker_size = 0;
  double bass_ctrl = 0.333499998, hp_ratio = 0.5, ext_bass = 0.8, lp_ratio = 5.5;
  double pre_lp_freq = 500, harm_hp_freq = 44, clip_level = 1.5;
};
struct CrossoverOptions {
  double freq = 300;
};
struct DistprevOptions {
  int count = 2;
  int nf_mode = 0;
  double nf_thld = 0, nf_sense = 0, nf_attk_thld = 0, nf_attk_ms = 200, nf_rel_ms = 50;
  int nf_band_ct = 0;
  double nf_base_freq = 100, nf_base_q = 10, nf_base_attn_max = 0;
  int nf_spacing = 0, nf_width = 0;
  double nf_slope = 0;
};

void DesignButterworth(const ButterworthOptions& o, DesignOutput* out);
void DesignPeq(const PeqOptions& o, DesignOutput* out);
void DesignThumpx(const ThumpxOptions& o, DesignOutput* out);
void DesignCrossover(const CrossoverOptions& o, DesignOutput* out);
void DesignDistprev(const DistprevOptions& o, DesignOutput* out);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_DESIGN_OUTPUT_H_
