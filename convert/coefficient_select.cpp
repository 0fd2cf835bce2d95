// Sample-rate selection of a coefficient table: exact match, first wins.
#include "coefficient_io.h"

namespace quillheron {

const CoefTable* findCoefficients(const CoefTableList& tables, int rate) {
  for (const CoefTable& table : tables) {
    if (table.has_samplerate() && table.samplerate() == rate) return &table;
  }
  return nullptr;
}

}  // namespace quillheron
