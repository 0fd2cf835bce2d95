/* quillheron C entry point: fills the Heron engine's premix and postmix
 * records from serialized settings, and rebuilds serialized settings from
 * records, with no protobuf type in the interface. For hosts written in C or
 * reaching the library through JNI, ctypes or another C foreign-function
 * interface; the same records, byte for byte, as the C++ class
 * QuillHeron_v1_1_Pb (QuillPbConvert_Heron_v1_1.h).
 *
 * Threading: no global state. Calls may run on several threads at once as
 * long as they share no record, fader struct or output buffer.
 * Memory: the caller owns every buffer; the library keeps no pointer after a
 * call returns and hands back nothing to free. (Parsing allocates temporary
 * messages internally; they are gone when the call returns.)
 *
 * Inputs and the output are protocol-buffer wire bytes (proto2):
 *   route     quill.pb.hub.RouteConfiguration
 *   models    quill.pb.model.listeningModel, searched in the order given
 *   settings  quill.pb.heron_v1_1.HeronSettings (output of quillheron_convert)
 * An empty input (size 0) is a valid, empty message.
 *
 * Records are the engine's native little-endian records, laid out in
 * quillHeronCtrlRecords.h (premix, postmix control) and
 * quillHeronCoeffRecords.h (postmix coefficient record). Pass them as plain
 * buffers of the sizes below. REQUIRES: every record pointer is 4-byte
 * aligned (malloc, or an int32_t array, gives that).
 *
 * !! POPULATE NEVER CLEARS A RECORD !!  Only what the settings hold is
 * written; every other byte keeps what the caller put there, so a record
 * reused for another route keeps regions the new route does not set. Start
 * each populate from a zeroed (or deliberately pre-filled) record:
 *     memset(premix, 0, QUILLHERON_PREMIX_RECORD_BYTES);
 * When a postmix step fails, the later steps are skipped and what earlier
 * steps wrote stays written.
 */
#ifndef QUILLHERON_C_H_
#define QUILLHERON_C_H_

#include <stddef.h>
#include <stdint.h>

#include "quillheron_export.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Record sizes in bytes. The postmix record begins with the postmix control
 * record (its first 488 bytes). */
enum {
  QUILLHERON_PREMIX_RECORD_BYTES = 156,        /* _quillHeronPremixApiCtrl */
  QUILLHERON_POSTMIX_CTRL_RECORD_BYTES = 488,  /* _quillHeronPostmixApiCtrl */
  QUILLHERON_POSTMIX_RECORD_BYTES = 66108      /* _quillHeronPostmixApiCtrlCoeffs */
};

/* Result codes: the converter's own, plus two of this entry point. */
enum {
  QUILLHERON_OK = 0,
  QUILLHERON_NO_SETTINGS = -1000,       /* no tech entry of the route holds heron_v1_1
                                           settings; nothing was written */
  QUILLHERON_ROOM_NOT_FOUND = -999,     /* a room identifier is in no model */
  QUILLHERON_COEFFICIENT_FAILURE = -998,/* no table for the rate, a missing entry, or
                                           a designer refused its parameters */
  QUILLHERON_NEGATIVE_REF_HTEST = -997, /* a negative Enhance2.ref_htest (postmix
                                           only), or a room or headphone EQ larger
                                           than its region */
  QUILLHERON_PARSE_FAILURE = -1001,     /* the route or a model does not parse;
                                           nothing was written */
  QUILLHERON_BUFFER_TOO_SMALL = -1002   /* the output buffer is too small; the
                                           needed size is in *settings_size */
};

/* room_mask bits of quillheron_populate_postmix: the room lists to load. */
enum {
  QUILLHERON_ROOM_WIDE = 2,
  QUILLHERON_ROOM_FRONT = 4,
  QUILLHERON_ROOM_MULTICHANNEL = 8,
  QUILLHERON_ROOM_ALL = 14
};

/* One serialized message. */
typedef struct quillheron_bytes {
  const void* data;
  size_t size;
} quillheron_bytes;

/* A fader's five values (HeronSettings.premixFader / postmixFader), all
 * passed to the engine as they are: shadow, then out_length, hold_length and
 * in_length (lengths of the fade-out, hold and fade-in phases), then state.
 * An absent fader reads as 1, 1, 0, 1, 0. */
typedef struct quillheron_fader {
  int32_t shadow;
  int32_t out_length;
  int32_t hold_length;
  int32_t in_length;
  int32_t state;
} quillheron_fader;

/* Premix record (QUILLHERON_PREMIX_RECORD_BYTES) from the route's first
 * heron_v1_1 settings: the present Premix fields, bypass_mode, Enhance2 and
 * Steady. A negative Enhance2.ref_htest is stored but does not fail the
 * premix. 0, -1000, -1001. */
QH_EXPORT int quillheron_populate_premix(const void* route, size_t route_size,
                                         void* premix_record);

/* Postmix record (QUILLHERON_POSTMIX_RECORD_BYTES) for sample_rate (Hz):
 * control part, then the rooms selected by room_mask, headphone EQ, output
 * high-pass, acoustic EQ, Brio, Thumpx, MBHL and distortion-prevention
 * coefficients, every table chosen by exact rate. Identifiers are looked up
 * in `models` first (model_count entries; models may be NULL when
 * model_count is 0), then in the model embedded in the settings.
 * 0, or the first failing step's code: -1000, -999, -998, -997, -1001. */
QH_EXPORT int quillheron_populate_postmix(const void* route, size_t route_size,
                                          const quillheron_bytes* models, size_t model_count,
                                          int sample_rate, int room_mask,
                                          void* postmix_record);

/* The premix fader (premix != 0) or the postmix fader (premix == 0) of the
 * route's settings into *fader. 0, -1000 (fader untouched), -1001. */
QH_EXPORT int quillheron_populate_fader(const void* route, size_t route_size, int premix,
                                        quillheron_fader* fader);

/* Rebuilds a HeronSettings from records and writes it serialized into
 * `settings` (capacity bytes). Any of the four inputs may be NULL to leave
 * its part out; they are converted in the order premix record, postmix
 * record, premix fader, postmix fader. with_room_models != 0 also rebuilds
 * the three rooms into Postmix.model. sample_rate is the rate written into
 * every rebuilt coefficient table.
 *
 * !! postmix_record IS WRITTEN: the conversion stamps sample_rate into the
 * record's headphone-EQ header (offset 58024) and, with room models, into
 * the three room headers (offsets 516, 33356, 45696) before reading them.
 *
 * Size query: with settings == NULL, *settings_size receives the size the
 * serialized settings need and 0 is returned. Otherwise 0 with the bytes in
 * `settings` and their count in *settings_size, or -1002 when capacity is
 * smaller than that count (then *settings_size holds the count and
 * `settings` is untouched). The same records give the same bytes every time.
 * REQUIRES: settings_size != NULL. */
QH_EXPORT int quillheron_convert(int sample_rate, const void* premix_record,
                                 void* postmix_record, int with_room_models,
                                 const quillheron_fader* premix_fader,
                                 const quillheron_fader* postmix_fader, void* settings,
                                 size_t capacity, size_t* settings_size);

#ifdef __cplusplus
}  /* extern "C" */
#endif

#endif /* QUILLHERON_C_H_ */
