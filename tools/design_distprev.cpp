// heron design distprev: distortion-prevention sense and notch banks.
#include <cstring>

#include "design_output.h"
#include "message_io.h"
#include "quillHeronDistprev.h"
#include "quillheron_filterdesign.h"

namespace heron_tool {
namespace {

constexpr int kDesignRates[3] = {48000, 44100, 32000};
constexpr int kWordsPerRecord = sizeof(quillMBHLDistprevCoeff) / 4;

std::string Hex(const void* data, size_t size) {
  static const char kDigits[] = "0123456789abcdef";
  const auto* p = static_cast<const unsigned char*>(data);
  std::string s;
  for (size_t i = 0; i < size; ++i) {
    s += kDigits[p[i] >> 4];
    s += kDigits[p[i] & 15];
  }
  return s;
}

// One band slot: six words (iwl and five coefficients), then the two-word
// gain record. Listed as a section with its gain.
Biquad AddBandSlot(DesignOutput* out, const std::string& name, const int32_t* slot) {
  const int64_t words[6] = {slot[0], slot[1], slot[2], slot[3], slot[4], slot[5]};
  const Biquad b = AddFixedSection(out, name, words, 5, 32);
  SectionView& s = out->sections.back();
  s.coef_names.push_back("gain");
  s.words.push_back(slot[7]);
  s.values.push_back(Dequantise(slot[7], 32, slot[6]));
  return b;
}

}  // namespace

void DesignDistprev(const DistprevOptions& o, DesignOutput* out) {
  if (o.count < 0 || o.count > 64) throw ToolError{"", "--count must be 0 to 64", kExitInputError};
  int rate_index = -1;
  for (int r = 0; r < 3; ++r) {
    if (kDesignRates[r] == out->rate) rate_index = r;
  }

  quillDistprevNotchDesignBlock block{};
  block.nf_mode = o.nf_mode;
  block.nf_thld = static_cast<float>(o.nf_thld);
  block.nf_sense = static_cast<float>(o.nf_sense);
  block.nf_attk_thld = static_cast<float>(o.nf_attk_thld);
  block.nf_attk_ms = static_cast<float>(o.nf_attk_ms);
  block.nf_rel_ms = static_cast<float>(o.nf_rel_ms);
  block.nf_band_ct = o.nf_band_ct;
  block.nf_base_freq = static_cast<float>(o.nf_base_freq);
  block.nf_base_q = static_cast<float>(o.nf_base_q);
  block.nf_base_attn_max = static_cast<float>(o.nf_base_attn_max);
  block.nf_spacing = o.nf_spacing;
  block.nf_width = o.nf_width;
  block.nf_slope = static_cast<float>(o.nf_slope);
  std::vector<quillDistprevNotchDesignBlock> blocks(o.count, block);
  std::vector<quillMBHLDistprevCoeff> records(o.count);
  if (o.count > 0) std::memset(records.data(), 0, records.size() * sizeof records[0]);
  quillDistprevDesignHeader header;
  std::memset(&header, 0, sizeof header);

  out->float_output = false;
  out->result = quill_distprev_config_designer(&header, records.data(), blocks.data(), o.count);
  out->header_hex = Hex(&header, sizeof header);
  for (const auto& record : records) {
    int32_t words[kWordsPerRecord];
    std::memcpy(words, &record, sizeof record);
    out->words.insert(out->words.end(), words, words + kWordsPerRecord);
  }
  if (out->result != 0) {
    out->reject_reason = "rejected by the designer";
    return;
  }
  const int bands = o.nf_band_ct < 0 ? 0 : (o.nf_band_ct > 6 ? 6 : o.nf_band_ct);
  for (int k = 0; k < o.count; ++k) {
    const quillMBHLDistprevCoeff& rec = records[k];
    for (int r = 0; r < 3; ++r) {
      const std::string where = "record " + std::to_string(k) + ", " + std::to_string(kDesignRates[r]) + " Hz, ";
      for (int b = 0; b < 6; ++b) {
        AddBandSlot(out, where + "sense band " + std::to_string(b), &rec.sense_band_coeffs[r * 48 + b * 8]);
      }
      for (int b = 0; b < bands; ++b) {
        const Biquad q = AddBandSlot(out, where + "notch band " + std::to_string(b), &rec.notch_band_coeffs[r * 48 + b * 8]);
        if (k == 0 && r == rate_index) {
          const float* f = &rec.notch_band_coeffs_float32[r * 36 + b * 6];
          out->float_sections.push_back({f[0], f[1], f[2], f[3], f[4]});
          out->quantised_sections.push_back(q);
        }
      }
    }
  }
  out->has_quantised = !out->quantised_sections.empty();
  out->response_label = "notch bank of record 0 at " + std::to_string(out->rate) + " Hz";
}

}  // namespace heron_tool
