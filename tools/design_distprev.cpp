// heron design distprev: distortion-prevention sense and notch banks.
#include <algorithm>
#include <cstring>
#include <iterator>

#include "design_output.h"
#include "designer_catalogue.h"

namespace heron_tool {
namespace {

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

// One band slot is a one-section fixed-point cascade: the section's iwl and
// five words, then the gain's iwl and word. Listed as a section with its gain.
Biquad AddBandSlot(DesignOutput* out, const std::string& name, const int32_t* slot) {
  const qh_design::OutputGroup section = qh_design::CascadeSection(0), gain = qh_design::CascadeGain(1);
  int64_t words[6];
  std::copy(slot + section.word_first, slot + section.word_first + 1 + section.values, words);
  const Biquad b = AddFixedSection(out, name, words, section.values, 32);
  SectionView& s = out->sections.back();
  s.coef_names.push_back("gain");
  s.words.push_back(slot[gain.word_first + 1]);
  s.values.push_back(quillheron::analysis::WordValue(slot[gain.word_first + 1], 32, slot[gain.word_first]));
  return b;
}

// A slot as a one-section cascade with its gain, against the record's own
// float form of it (b0 b1 b2 A1 A2 gain).
void AnalyseSlot(DesignOutput* out, const std::string& name, int rate_index, const int32_t* slot,
                 const float* design) {
  const qh_design::OutputGroup section = qh_design::CascadeSection(0), gain = qh_design::CascadeGain(1);
  int64_t words[6];
  std::copy(slot + section.word_first, slot + section.word_first + 1 + section.values, words);
  Analysed a;
  a.name = name;
  a.rate = qh_design::kDistprevRates[rate_index];
  AddAnalysedGroup(&a, FloatBiquad(design, section.values), words, section.values, 32);
  a.reference.gain = design[section.values];
  a.quantised.gain = quillheron::analysis::WordValue(slot[gain.word_first + 1], 32, slot[gain.word_first]);
  a.coefficient_words.push_back(slot[gain.word_first + 1]);
  out->analysed.push_back(a);
}

}  // namespace

void DesignDistprev(const qh_design::DistprevRequest& request, DesignOutput* out) {
  // The response shown is the first design rate's notch bank.
  constexpr int kShownRate = 0;
  out->rate = qh_design::kDistprevRates[kShownRate];
  out->rate_applies = false;
  const int count = request.count > 0 ? request.count : 0;
  std::vector<quillMBHLDistprevCoeff> records(count);
  if (count > 0) std::memset(records.data(), 0, records.size() * sizeof records[0]);
  quillDistprevDesignHeader header;
  std::memset(&header, 0, sizeof header);

  out->float_output = false;
  out->result = qh_design::Run(request, &header, records.data());
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
  Curve design, quantised;
  design.name = quantised.name = "notch bank of record 0 at " + std::to_string(out->rate) + " Hz";
  quantised.quantised = true;
  for (int k = 0; k < count; ++k) {
    const quillMBHLDistprevCoeff& rec = records[k];
    // The designer cuts the band count at 0 and 6, as shown here.
    int bands = request.blocks[k].nf_band_ct;
    bands = bands < 0 ? 0 : (bands > qh_design::kDistprevBandsPerRate ? qh_design::kDistprevBandsPerRate : bands);
    for (int r = 0; r < static_cast<int>(std::size(qh_design::kDistprevRates)); ++r) {
      const std::string where =
          "record " + std::to_string(k) + ", " + std::to_string(qh_design::kDistprevRates[r]) + " Hz, ";
      for (int b = 0; b < qh_design::kDistprevBandsPerRate; ++b) {
        const std::string name = where + "sense band " + std::to_string(b);
        AddBandSlot(out, name, &rec.sense_band_coeffs[qh_design::DistprevSlotWord(r, b)]);
        AnalyseSlot(out, name, r, &rec.sense_band_coeffs[qh_design::DistprevSlotWord(r, b)],
                    &rec.sense_band_coeffs_float32[qh_design::DistprevSlotFloat(r, b)]);
      }
      // Notch slots past the band count stay zero: not analysed.
      for (int b = 0; b < bands; ++b) {
        const std::string name = where + "notch band " + std::to_string(b);
        const Biquad q = AddBandSlot(out, name, &rec.notch_band_coeffs[qh_design::DistprevSlotWord(r, b)]);
        AnalyseSlot(out, name, r, &rec.notch_band_coeffs[qh_design::DistprevSlotWord(r, b)],
                    &rec.notch_band_coeffs_float32[qh_design::DistprevSlotFloat(r, b)]);
        if (k == 0 && r == kShownRate) {
          design.sections.push_back(FloatBiquad(&rec.notch_band_coeffs_float32[qh_design::DistprevSlotFloat(r, b)], 5));
          quantised.sections.push_back(q);
        }
      }
    }
  }
  if (!design.sections.empty()) out->curves = {design, quantised};
  out->detail = std::to_string(count) + " design" + (count == 1 ? "" : "s");
}

}  // namespace heron_tool
