// Differences between two native records of one kind, by named field:
// scalars one by one, arrays as runs of differing elements.
#ifndef QUILLHERON_TOOLS_DIFF_RECORDS_H_
#define QUILLHERON_TOOLS_DIFF_RECORDS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "diff_settings.h"

namespace heron_tool {

// REQUIRES: a and b of the same size, the size of a record.
std::vector<Difference> DiffRecords(const std::string& a, const std::string& b);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_DIFF_RECORDS_H_
