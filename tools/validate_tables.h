// The coefficient-table rules of `heron validate` (see validate_tables.cpp).
#ifndef QUILLHERON_TOOLS_VALIDATE_TABLES_H_
#define QUILLHERON_TOOLS_VALIDATE_TABLES_H_

#include <functional>

#include "filter_layouts.h"
#include "design_requests.h"
#include "validate_findings.h"

namespace heron_tool {

// One coefficient table of the settings as the filter it holds.
struct TableFilter {
  std::string path;  // "postmix.hpf_coef.coeffs"
  const char* step;
  const quill::pb::coef::CoefTable* table;
  int width;            // the list the loader reads: 32 (coeff_32) or 16 (coeff_16)
  FilterLayout layout;
  int sections;         // cascades: from the order
  std::string designed_from;          // what the settings say it is, "" when nothing
  std::function<bool(int width, std::vector<int64_t>* words)> redesign;  // same width, same layout
};

// Every table of the settings (and of the models searched) for the context's rate.
std::vector<TableFilter> TablesAt(const RuleContext& c);

// The words of one width of a table (32, 24 or 16).
std::vector<int64_t> Words(const quill::pb::coef::CoefTable& t, int width);

// A cascade table whose length does not fit its order (or a layout's length).
void TableLengths(const RuleContext& c);
// A quantised table with a section on or outside the unit circle.
void TableStability(const RuleContext& c);
// A table that differs from a redesign of what it is stored beside.
void StaleTables(const RuleContext& c);
// The widths of one table (coeff_32, coeff_24, coeff_16) describing different filters.
void TableWidths(const RuleContext& c);
// A cut-off, crossover or band frequency at or above half the rate.
void HalfRateFrequencies(const RuleContext& c);

// The bass designer's request as the converter builds it from the settings'
// design parameters, at `rate`.
qh_design::ThumpxRequest ThumpxRequestFrom(const quill::pb::tech::ThumpxFilterDesignParameters& d, int rate);

// Why the designer rejects the design parameters of a failing design step
// (bass enhancement or limiter crossovers) at `rate`; "" when it does not.
std::string DesignerObjection(const quill::pb::heron_v1_1::HeronSettings& settings, int step, int rate);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_VALIDATE_TABLES_H_
