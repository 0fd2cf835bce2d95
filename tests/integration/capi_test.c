/* The C entry point from a program compiled as C (-pedantic C99): the record
 * headers and quillheron_c.h compile as C, the sizes agree, and a premix
 * populate of hand-written wire bytes writes only what the settings hold.
 * Everything else the entry point does is compared with the C++ API in
 * capi_equivalence_test. */
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "quillHeronCtrlRecords.h"
#include "quillheron_c.h"
#include "quillheron_version.h"

static int failures = 0;

#define CHECK(cond)                                           \
  do {                                                        \
    if (!(cond)) {                                            \
      fprintf(stderr, "capi_test:%d: %s\n", __LINE__, #cond); \
      ++failures;                                             \
    }                                                         \
  } while (0)

static int32_t I32(const void* record, size_t offset) {
  const unsigned char* b = (const unsigned char*)record + offset;
  return (int32_t)((uint32_t)b[0] | ((uint32_t)b[1] << 8) | ((uint32_t)b[2] << 16) | ((uint32_t)b[3] << 24));
}

int main(void) {
  /* RouteConfiguration { tech { heron_v1_1 { premix { output_device: 3  stream_gain: -2 } } } };
   * sint32 values are zigzag encoded: 3 -> 6, -2 -> 3. */
  static const unsigned char kRoute[] = {0x1A, 0x08, 0x12, 0x06, 0x12, 0x04, 0x18, 0x06, 0x20, 0x03};
  int32_t premix[39];
  size_t i;
  CHECK(QUILLHERON_PREMIX_RECORD_BYTES == sizeof(_quillHeronPremixApiCtrl));
  CHECK(QUILLHERON_POSTMIX_CTRL_RECORD_BYTES == sizeof(_quillHeronPostmixApiCtrl));
  CHECK(strcmp(quillheron_version(), QUILLHERON_VERSION_STRING) == 0);

  memset(premix, 0x5A, sizeof premix);
  CHECK(quillheron_populate_premix(kRoute, sizeof kRoute, premix) == QUILLHERON_OK);
  CHECK(I32(premix, 116) == 3);
  CHECK(I32(premix, 120) == -2);
  for (i = 0; i < sizeof premix; ++i) {
    if (i >= 116 && i < 124) continue;
    if (((unsigned char*)premix)[i] != 0x5A) break;
  }
  CHECK(i == sizeof premix);
  printf("capi_test: %d failures\n", failures);
  return failures == 0 ? 0 : 1;
}
