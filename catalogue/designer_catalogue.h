// The designer catalogue: every designer family of the library as data (its
// formats, parameters and units, output layout) and its two kinds of argument
// check: what the designer itself rejects with -1000, and designs the library
// accepts but a person almost surely did not mean (a zero Q, a NaN gain).
// Constant data and pure functions; safe on any thread.
#ifndef QUILLHERON_CATALOGUE_DESIGNER_CATALOGUE_H_
#define QUILLHERON_CATALOGUE_DESIGNER_CATALOGUE_H_

#include <cstdint>
#include <string>

#include "design_requests.h"

namespace qh_design {

template <class T>
struct List {
  const T* items = nullptr;
  int count = 0;
  const T* begin() const { return items; }
  const T* end() const { return items + count; }
};

enum class Family { kButterworth, kPeq, kThumpx, kCrossover, kDistprev };

// One request parameter: its field name, unit and meaning.
struct Parameter {
  const char* field;    // the request struct's (or notch block's) field
  const char* unit;     // "Hz", "dB", "ms", "0 to 1", "engine units", ...
  const char* meaning;
};

// A run of coefficients in an output: `values` values (3: b0, b1, A1 of a
// first-order section; 5: b0, b1, b2, A1, A2) starting at float_first in the
// float output and at word_first (the iwl word, values follow) in the
// fixed-point output. -1 where the output has no such group.
struct OutputGroup {
  const char* name;
  int float_first;
  int word_first;
  int values;
};

// How a parameter word of the bass-enhancement output holds its value.
enum class WordEncoding {
  kInteger,    // the integer itself
  kFraction,   // round(x * 2^(W-1)), saturated: Q31, Q23 or Q15
  kQ22,        // round(x * 2^22) (the 16-bit form keeps the low 16 bits)
  kTruncated,  // truncated toward zero
};
struct ParameterWord {
  const char* name;
  int float_index;
  int word_index;
  WordEncoding encoding;
};
// The value a parameter word stands for, for a word of `width` bits.
double ParameterValue(WordEncoding encoding, int64_t word, int width);

struct DesignerEntry {
  Family family;
  const char* name;      // as `heron design` names it
  const char* summary;
  const char* c_entry;   // the exported designer, "Float" member
  List<Format> formats;  // the first is the default
  List<Parameter> parameters;
  const char* float_layout;  // the output in floats (empty: none)
  const char* fixed_layout;  // the output in words
  // Fixed groups of a fixed layout; empty for the cascades, whose groups
  // follow from the section count (CascadeSection, CascadeGain).
  List<OutputGroup> groups;
  List<ParameterWord> parameter_words;
};

List<DesignerEntry> Designers();
const DesignerEntry* FindDesigner(Family family);
const DesignerEntry* FindDesigner(const char* name);
bool HasFormat(const DesignerEntry& entry, Format format);

// Cascade layout (Butterworth and parametric EQ): S sections, 5*S + 1 floats
// or 6*S + 2 words; section s at float 5*s and word 6*s, the gain after them.
OutputGroup CascadeSection(int s);
OutputGroup CascadeGain(int sections);  // values 1: the gain float or word

// Crossover: low-pass then high-pass section, no gain (10 floats, 12 words).
// Bass enhancement: eleven groups (3, 5, 3, 5, 3, 5, 3, 5, 5, 5, 3 values;
// floats 24..26 are not written by the designer) then seven parameter words.
// Both are in the entries' `groups`.
constexpr int kThumpxBoostGroupFirst = 8;  // groups 8..10: the bass-boost path

// Distortion prevention: rate r (48000, 44100, 32000) and band b occupy
// words r*48 + b*8 (iwl and five coefficients, then iwl and gain) and floats
// r*36 + b*6 (five coefficients, then the gain) of each coefficient array.
constexpr int kDistprevRates[3] = {48000, 44100, 32000};
constexpr int kDistprevBandsPerRate = 6;
constexpr int DistprevSlotWord(int rate_index, int band) { return rate_index * 48 + band * 8; }
constexpr int DistprevSlotFloat(int rate_index, int band) { return rate_index * 36 + band * 6; }

// Parametric band types 0..9 with their names.
struct BandType {
  int value;
  const char* name;
  const char* response;
  const char* q_means;  // what the band's Q field is to this type
};
List<BandType> BandTypes();
const char* BandTypeName(int value);  // nullptr outside 0..9

// What a check found. `parameter` names the request field concerned, `band`
// the parametric band (else -1); `reason` is one sentence naming the value
// and the rule. An empty reason means nothing was found.
struct Objection {
  const char* parameter = nullptr;
  int band = -1;
  std::string reason;
  explicit operator bool() const { return !reason.empty(); }
};

// (a) The designer's own validation, exactly: a non-empty objection if and
// only if Run(request, format, ...) returns -1000.
Objection CheckContract(const ButterworthRequest& request, Format format);
Objection CheckContract(const PeqRequest& request, Format format);
Objection CheckContract(const ThumpxRequest& request, Format format);
Objection CheckContract(const CrossoverRequest& request, Format format);

// (b) Designs the library computes but a person did not mean: a frequency,
// Q or shelf slope the design uses that is not finite and positive, a
// non-finite gain, a Butterworth order outside 1 to 16, a notch band count
// outside 0..6, a base Q or attack/release time not finite and positive.
Objection CheckIntent(const ButterworthRequest& request);
Objection CheckIntent(const PeqRequest& request);
Objection CheckIntent(const ThumpxRequest& request);
Objection CheckIntent(const CrossoverRequest& request);
Objection CheckIntent(const quillDistprevNotchDesignBlock& block);
Objection CheckIntent(const DistprevRequest& request);  // "design k: " + the block's reason

}  // namespace qh_design

#endif  // QUILLHERON_CATALOGUE_DESIGNER_CATALOGUE_H_
