// What the postmix driver did, step by step, for callers that ask: each step's
// name, what it loaded from where (model entry, coefficient table or design),
// or why it was skipped, and its result code. Plain data with a fixed
// capacity: filling it allocates nothing. One trace per driver call; a trace
// must not be shared between concurrent calls.
#ifndef QUILLHERON_POSTMIX_TRACE_H_
#define QUILLHERON_POSTMIX_TRACE_H_

#include <stdint.h>

// The driver's steps in the order it runs them. The names returned by
// quillTraceStepName() are stable identifiers for scripts and reports.
enum QuillTraceStep {
  QUILL_STEP_CONTROL = 0,         // postmix control record (first 488 bytes)
  QUILL_STEP_WIDE_ROOM,           // room_mask bit 2
  QUILL_STEP_FRONT_ROOM,          // room_mask bit 4
  QUILL_STEP_MULTICHANNEL_ROOM,   // room_mask bit 8
  QUILL_STEP_HEADPHONE_EQ,
  QUILL_STEP_OUTPUT_HPF,
  QUILL_STEP_AEQ,
  QUILL_STEP_BRIO_CROSSOVER,
  QUILL_STEP_BRIO_HPF,
  QUILL_STEP_THUMPX,
  QUILL_STEP_MBHL_CROSSOVER,
  QUILL_STEP_DISTORTION_PREVENTION,
  QUILL_STEP_COUNT
};

// How a step ended.
enum QuillTraceOutcome {
  QUILL_OUTCOME_LOADED = 0,     // ran and wrote its region (result >= 0)
  QUILL_OUTCOME_NOTHING,        // ran but had nothing to write (see reason)
  QUILL_OUTCOME_FAILED,         // ran and returned a negative result
  QUILL_OUTCOME_SKIPPED,        // not run: room mask or gate (see reason)
  QUILL_OUTCOME_NOT_REACHED     // not run: an earlier step ended the driver
};

// Where the written values came from.
enum QuillTraceSource {
  QUILL_SOURCE_NONE = 0,
  QUILL_SOURCE_MODEL,    // a listening-model entry (model, uuid)
  QUILL_SOURCE_TABLE,    // coefficient tables of the settings (rate, count)
  QUILL_SOURCE_DESIGN,   // designed from design parameters (rate = their rate)
  QUILL_SOURCE_RECORDS   // the settings' precomputed records, copied as they are
};

// Why a step was skipped, had nothing to do or failed.
enum QuillTraceReason {
  QUILL_REASON_NONE = 0,
  QUILL_REASON_ROOM_MASK,             // its room_mask bit is clear
  QUILL_REASON_NONE_LISTED,           // no locator (and no embedded room) to load
  QUILL_REASON_EMPTY_IDENTIFIER,      // a locator without uuid
  QUILL_REASON_ABSENT,                // the coefficient message is absent
  QUILL_REASON_ORDER_ZERO,            // Brio high-pass order 0 disables loading
  QUILL_REASON_BRIO_OFF,              // gate: Brio absent or enable 0
  QUILL_REASON_THUMPX_OFF,            // gate: Brio.thumpx absent or enable 0
  QUILL_REASON_NO_THUMPX_COEF,        // gate: Postmix.thumpx_coef absent
  QUILL_REASON_SPEAKER_SIZE,          // gate: Thumpx.speaker_size is not 12
  QUILL_REASON_MBHL_OFF,              // gate: Mbhl absent or enable 0
  QUILL_REASON_DIST_PREV_OFF,         // gate: Mbhl.dist_prev_enable is 0
  QUILL_REASON_NOT_FOUND,             // identifier matches no entry
  QUILL_REASON_NOT_FOR_ROUTE,         // no entry for the identifier serves the route
  QUILL_REASON_NO_TABLE_FOR_RATE,     // no (usable) table for the converter's rate
  QUILL_REASON_TABLE_OF_OTHER_RATE,   // Thumpx: a table of another rate fails the load
  QUILL_REASON_TOO_LONG,              // the rate's table exceeds the native array
  QUILL_REASON_DOES_NOT_FIT,          // room larger than its region
  QUILL_REASON_INCOMPLETE,            // a required table or record part is missing
  QUILL_REASON_NO_DESIGN_PARAMETERS,  // neither tables nor (complete) design parameters
  QUILL_REASON_DESIGN_RATE,           // design parameters are for another rate
  QUILL_REASON_DESIGNER_REJECTED,     // the designer returned an error
  QUILL_REASON_NEGATIVE_REF_HTEST,    // postmix Enhance2.ref_htest holds a negative value
  QUILL_REASON_EARLIER_STEP_FAILED,   // with QUILL_OUTCOME_NOT_REACHED
  QUILL_REASON_COUNT
};

// The one Thumpx speaker_size whose bass coefficients the driver loads
// (QUILL_REASON_SPEAKER_SIZE otherwise).
enum { QUILL_THUMPX_COEFF_SPEAKER_SIZE = 12 };

// Model index values besides 0..n-1 (the caller's list).
enum { QUILL_TRACE_MODEL_EMBEDDED = -1, QUILL_TRACE_MODEL_NONE = -2 };

// One step, or one item of a step that loads a list (rooms, headphone EQs).
typedef struct QuillTraceEntry {
  uint8_t step;     // QuillTraceStep
  uint8_t outcome;  // QuillTraceOutcome
  uint8_t source;   // QuillTraceSource
  uint8_t reason;   // QuillTraceReason
  int32_t result;   // the step's (or item's) result code; 0 when not run
  int32_t item;     // index of the locator in its list, -1 when not a list
  int32_t model;    // caller's model index, or QUILL_TRACE_MODEL_*
  int32_t rate;     // rate of the table used or of the design parameters, 0 none
  int32_t count;    // values of the table used (coefficient tables: at most
                    // the native array's length), values designed, designs
                    // or records (distortion prevention), AEQ banks loaded
  char uuid[40];    // identifier looked up, NUL-terminated, cut at 39 characters
} QuillTraceEntry;

enum { QUILL_TRACE_CAPACITY = 40 };

// Entries in driver order. A step that ran over a list has one entry per item;
// every other step has one entry. `dropped` counts entries beyond the capacity.
typedef struct QuillPostmixTrace {
  QuillTraceEntry entries[QUILL_TRACE_CAPACITY];
  int32_t count;    // entries filled, at most QUILL_TRACE_CAPACITY
  int32_t dropped;  // entries that did not fit
  int32_t result;   // the driver's result
} QuillPostmixTrace;

#ifdef __cplusplus
inline const char* quillTraceStepName(int step) {
  static const char* const kNames[QUILL_STEP_COUNT] = {
      "control",        "wide_room",   "front_room",     "multichannel_room",
      "headphone_eq",   "output_hpf",  "aeq",            "brio_crossover",
      "brio_hpf",       "thumpx",      "mbhl_crossover", "distortion_prevention"};
  return step >= 0 && step < QUILL_STEP_COUNT ? kNames[step] : "?";
}

inline const char* quillTraceOutcomeName(int outcome) {
  static const char* const kNames[] = {"loaded", "nothing", "failed", "skipped", "not_reached"};
  return outcome >= 0 && outcome <= QUILL_OUTCOME_NOT_REACHED ? kNames[outcome] : "?";
}

inline const char* quillTraceSourceName(int source) {
  static const char* const kNames[] = {"none", "model", "table", "design", "records"};
  return source >= 0 && source <= QUILL_SOURCE_RECORDS ? kNames[source] : "?";
}

inline const char* quillTraceReasonName(int reason) {
  static const char* const kNames[QUILL_REASON_COUNT] = {
      "none",           "room_mask",          "none_listed",         "empty_identifier",
      "absent",         "order_zero",         "brio_off",            "thumpx_off",
      "no_thumpx_coef", "speaker_size",       "mbhl_off",            "dist_prev_off",
      "not_found",      "not_for_route",      "no_table_for_rate",   "table_of_other_rate",
      "too_long",       "does_not_fit",       "incomplete",          "no_design_parameters",
      "design_rate",    "designer_rejected",  "negative_ref_htest",  "earlier_step_failed"};
  return reason >= 0 && reason < QUILL_REASON_COUNT ? kNames[reason] : "?";
}
#endif

#endif  // QUILLHERON_POSTMIX_TRACE_H_
