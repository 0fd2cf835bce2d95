/* A C host of the installed library: the version and one premix populate,
 * from RouteConfiguration { tech { heron_v1_1 { premix { output_device: 3 } } } }
 * written out by hand (output_device is a sint32: 3 encodes as 6). */
#include <stdio.h>
#include <string.h>

/* Both include forms: with the directory, and bare. */
#include <quillheron/quillheron_c.h>
#include <quillheron_version.h>

int main(void) {
  static const unsigned char route[] = {0x1A, 0x06, 0x12, 0x04, 0x12, 0x02, 0x18, 0x06};
  int premix[QUILLHERON_PREMIX_RECORD_BYTES / 4];
  int result;
  memset(premix, 0, sizeof premix);
  result = quillheron_populate_premix(route, sizeof route, premix);
  printf("c_consumer: quillheron %s, premix %d, output_device %d\n", quillheron_version(), result,
         premix[116 / 4]);
  return result == QUILLHERON_OK && premix[116 / 4] == 3 &&
                 strcmp(quillheron_version(), QUILLHERON_VERSION_STRING) == 0
             ? 0
             : 1;
}
