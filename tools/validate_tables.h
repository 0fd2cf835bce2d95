// The coefficient-table rules of `heron validate` (see validate_tables.cpp).
#ifndef QUILLHERON_TOOLS_VALIDATE_TABLES_H_
#define QUILLHERON_TOOLS_VALIDATE_TABLES_H_

#include "validate_findings.h"

namespace heron_tool {

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

// Why the designer rejects the design parameters of a failing design step
// (bass enhancement or limiter crossovers) at `rate`; "" when it does not.
std::string DesignerObjection(const quill::pb::heron_v1_1::HeronSettings& settings, int step, int rate);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_VALIDATE_TABLES_H_
