/* The C entry point from a program compiled as C. Inputs are wire bytes
 * written out by hand here, so the expected record values follow from the
 * encoding alone. */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "quillHeronCtrlRecords.h"
#include "quillheron_c.h"
#include "quillheron_version.h"

static int failures = 0;

#define CHECK(cond)                                                  \
  do {                                                               \
    if (!(cond)) {                                                   \
      fprintf(stderr, "capi_test:%d: %s\n", __LINE__, #cond);        \
      ++failures;                                                    \
    }                                                                \
  } while (0)

/* HeronSettings { premix { output_device: 3  stream_gain: -2 }
 *                 postmixFader { shadow: 7 } }
 * sint32 values are zigzag encoded: 3 -> 6, -2 -> 3, 7 -> 14. */
static const unsigned char kSettings[] = {0x12, 0x04, 0x18, 0x06, 0x20, 0x03,
                                          0x2A, 0x02, 0x08, 0x0E};

/* Wraps HeronSettings bytes into RouteConfiguration { tech { heron_v1_1 {...} } }
 * (lengths below 128 only). Returns the route's length. */
static size_t WrapRoute(const unsigned char* settings, size_t n, unsigned char* out) {
  out[0] = 0x1A; /* RouteConfiguration.tech, length-delimited */
  out[1] = (unsigned char)(n + 2);
  out[2] = 0x12; /* Technology.heron_v1_1 */
  out[3] = (unsigned char)n;
  memcpy(out + 4, settings, n);
  return n + 4;
}

static int32_t I32(const void* record, size_t offset) {
  const unsigned char* b = (const unsigned char*)record + offset;
  return (int32_t)((uint32_t)b[0] | ((uint32_t)b[1] << 8) | ((uint32_t)b[2] << 16) | ((uint32_t)b[3] << 24));
}

static void CheckConstants(void) {
  CHECK(QUILLHERON_PREMIX_RECORD_BYTES == sizeof(_quillHeronPremixApiCtrl));
  CHECK(QUILLHERON_POSTMIX_CTRL_RECORD_BYTES == sizeof(_quillHeronPostmixApiCtrl));
  CHECK(QUILLHERON_POSTMIX_RECORD_BYTES == 66108);
  CHECK(strcmp(quillheron_version(), QUILLHERON_VERSION_STRING) == 0);
}

static void CheckPremixAndFaders(const unsigned char* route, size_t route_size) {
  int32_t premix[39];
  size_t i;
  quillheron_fader fader;
  /* Populate writes only what the settings hold: the 0x5A bytes stay. */
  memset(premix, 0x5A, sizeof premix);
  CHECK(quillheron_populate_premix(route, route_size, premix) == QUILLHERON_OK);
  CHECK(I32(premix, 116) == 3);
  CHECK(I32(premix, 120) == -2);
  for (i = 0; i < sizeof premix; ++i) {
    if (i >= 116 && i < 124) continue;
    if (((unsigned char*)premix)[i] != 0x5A) break;
  }
  CHECK(i == sizeof premix);

  CHECK(quillheron_populate_fader(route, route_size, 0, &fader) == QUILLHERON_OK);
  CHECK(fader.shadow == 7 && fader.out_length == 1 && fader.hold_length == 0 && fader.in_length == 1 &&
        fader.state == 0);
  memset(&fader, 0, sizeof fader);
  CHECK(quillheron_populate_fader(route, route_size, 1, &fader) == QUILLHERON_OK); /* absent: defaults */
  CHECK(fader.shadow == 1 && fader.out_length == 1 && fader.hold_length == 0 && fader.in_length == 1);
}

static void CheckFailures(const unsigned char* route, size_t route_size) {
  static const unsigned char kGarbage[] = {0xFF, 0xFF, 0xFF};
  int32_t premix[39];
  quillheron_bytes model;
  quillheron_fader fader = {42, 42, 42, 42, 42};
  int32_t* postmix = (int32_t*)calloc(1, QUILLHERON_POSTMIX_RECORD_BYTES);
  memset(premix, 0, sizeof premix);
  CHECK(quillheron_populate_premix(kGarbage, sizeof kGarbage, premix) == QUILLHERON_PARSE_FAILURE);
  CHECK(quillheron_populate_premix(NULL, 0, premix) == QUILLHERON_NO_SETTINGS); /* empty route */
  CHECK(quillheron_populate_fader(NULL, 0, 1, &fader) == QUILLHERON_NO_SETTINGS && fader.shadow == 42);
  model.data = kGarbage;
  model.size = sizeof kGarbage;
  CHECK(quillheron_populate_postmix(route, route_size, &model, 1, 48000, QUILLHERON_ROOM_ALL, postmix) ==
        QUILLHERON_PARSE_FAILURE);
  model.size = 0; /* an empty model parses */
  CHECK(quillheron_populate_postmix(route, route_size, &model, 1, 48000, QUILLHERON_ROOM_ALL, postmix) ==
        QUILLHERON_OK);
  free(postmix);
}

/* Records -> settings -> route -> records gives the same premix record. */
static void CheckConvert(const unsigned char* route, size_t route_size) {
  int32_t premix[39], again[39];
  unsigned char settings[120], round_trip[130];
  size_t size = 0, query = 0;
  const quillheron_fader fader = {7, 1, 0, 1, 0};
  int32_t* postmix = (int32_t*)calloc(1, QUILLHERON_POSTMIX_RECORD_BYTES);
  memset(premix, 0, sizeof premix);
  memset(again, 0, sizeof again);
  CHECK(quillheron_populate_premix(route, route_size, premix) == QUILLHERON_OK);

  CHECK(quillheron_convert(44100, premix, NULL, 0, NULL, &fader, NULL, 0, &query) == QUILLHERON_OK);
  CHECK(query > 0 && query <= sizeof settings);
  CHECK(quillheron_convert(44100, premix, NULL, 0, NULL, &fader, settings, query - 1, &size) ==
        QUILLHERON_BUFFER_TOO_SMALL);
  CHECK(size == query);
  size = 0;
  CHECK(quillheron_convert(44100, premix, NULL, 0, NULL, &fader, settings, sizeof settings, &size) ==
        QUILLHERON_OK);
  CHECK(size == query);
  CHECK(quillheron_populate_premix(round_trip, WrapRoute(settings, size, round_trip), again) == QUILLHERON_OK);
  CHECK(memcmp(premix, again, sizeof premix) == 0);

  /* The postmix convert stamps the rate into the headphone-EQ header. */
  CHECK(quillheron_convert(44100, NULL, postmix, 0, NULL, NULL, NULL, 0, &size) == QUILLHERON_OK);
  CHECK(I32(postmix, 58024) == 44100);
  free(postmix);
}

int main(void) {
  unsigned char route[64];
  const size_t route_size = WrapRoute(kSettings, sizeof kSettings, route);
  CheckConstants();
  CheckPremixAndFaders(route, route_size);
  CheckFailures(route, route_size);
  CheckConvert(route, route_size);
  printf("capi_test: %d failures\n", failures);
  return failures == 0 ? 0 : 1;
}
