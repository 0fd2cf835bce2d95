/* A C host of the installed library (C99, -pedantic in the strict build): the
 * record headers and quillheron_c.h compile as C and agree on the sizes, and
 * one premix populate from RouteConfiguration { tech { heron_v1_1 { premix {
 * output_device: 3  stream_gain: -2 } } } }, written out by hand (sint32:
 * 3 encodes as 6, -2 as 3), writes those two fields and nothing else. */
#include <stdio.h>
#include <string.h>

/* Both include forms: with the directory, and bare. */
#include <quillheron/quillheron_c.h>
#include <quillHeronCtrlRecords.h>
#include <quillheron_version.h>

int main(void) {
  static const unsigned char route[] = {0x1A, 0x08, 0x12, 0x06, 0x12, 0x04, 0x18, 0x06, 0x20, 0x03};
  int premix[QUILLHERON_PREMIX_RECORD_BYTES / 4];
  int result, i, untouched = 1;
  memset(premix, 0x5A, sizeof premix);
  result = quillheron_populate_premix(route, sizeof route, premix);
  for (i = 0; i < QUILLHERON_PREMIX_RECORD_BYTES / 4; ++i) {
    if (i != 116 / 4 && i != 120 / 4 && premix[i] != 0x5A5A5A5A) untouched = 0;
  }
  printf("c_consumer: quillheron %s, premix %d, output_device %d, stream_gain %d\n", quillheron_version(), result,
         premix[116 / 4], premix[120 / 4]);
  return result == QUILLHERON_OK && premix[116 / 4] == 3 && premix[120 / 4] == -2 && untouched &&
                 QUILLHERON_PREMIX_RECORD_BYTES == sizeof(_quillHeronPremixApiCtrl) &&
                 QUILLHERON_POSTMIX_CTRL_RECORD_BYTES == sizeof(_quillHeronPostmixApiCtrl) &&
                 strcmp(quillheron_version(), QUILLHERON_VERSION_STRING) == 0
             ? 0
             : 1;
}
