#include "result_codes.h"

namespace heron_tool {

const char* ConverterResultMeaning(int code) {
  switch (code) {
    case 0: return "ok";
    case 1: return "nothing to do";
    case -997: return "a negative Enhance2 ref_htest value, or a room too large for its region";
    case -998: return "a coefficient table, model entry or design is missing or failed";
    case -999: return "a room identifier matches no room of the listening models";
    case -1000: return "the route holds no heron_v1_1 settings";
    default: return code < 0 ? "failure" : "ok";
  }
}

}  // namespace heron_tool
