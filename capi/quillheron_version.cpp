// The version string of the loaded library, for hosts that check at run time
// what they were handed (the header's macros say what they were built with).
#include "quillheron_version.h"

#include "quillheron_export.h"

#define QH_STRINGIFY_(x) #x
#define QH_STRINGIFY(x) QH_STRINGIFY_(x)

namespace {

constexpr bool sameText(const char* a, const char* b) {
  return *a == *b && (*a == '\0' || sameText(a + 1, b + 1));
}

// The string macro and the three numbers must say the same.
static_assert(sameText(QUILLHERON_VERSION_STRING,
                       QH_STRINGIFY(QUILLHERON_VERSION_MAJOR) "." QH_STRINGIFY(QUILLHERON_VERSION_MINOR) "."
                           QH_STRINGIFY(QUILLHERON_VERSION_PATCH)),
              "QUILLHERON_VERSION_STRING disagrees with the version numbers");

}  // namespace

extern "C" QH_EXPORT const char* quillheron_version(void) { return QUILLHERON_VERSION_STRING; }
