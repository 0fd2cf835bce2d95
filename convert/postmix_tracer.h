// The two tracers the postmix driver is instantiated with: Tracer fills a
// QuillPostmixTrace as the driver runs; NullTracer, for a call without a
// trace, has empty members and hands out NoNote, so that instantiation
// compiles to the driver without any trace code.
#ifndef QUILLHERON_CONVERT_POSTMIX_TRACER_H_
#define QUILLHERON_CONVERT_POSTMIX_TRACER_H_

#include <algorithm>
#include <cstring>
#include <string>

#include "load_note.h"
#include "quillHeronPostmixTrace.h"

namespace quillheron {

struct NullTracer {
  NoNote note(const std::string* = nullptr) { return {}; }
  void ran(QuillTraceStep, int, int = -1) {}
  void nothing(QuillTraceStep, QuillTraceReason) {}
  void skipped(QuillTraceStep, QuillTraceReason) {}
  int finish(int result) { return result; }
};

class Tracer {
 public:
  explicit Tracer(QuillPostmixTrace& trace) : trace_(&trace) {
    trace_->count = 0;
    trace_->dropped = 0;
    trace_->result = 0;
  }

  // A cleared note for the next step (null without a trace).
  LoadNote* note(const std::string* uuid = nullptr) {
    note_ = LoadNote{};
    note_.uuid = uuid;
    return &note_;
  }

  // The step (or item `item` of a list step) ran with `result`; what it
  // loaded is in the last note().
  void ran(QuillTraceStep step, int result, int item = -1) {
    QuillTraceOutcome outcome = QUILL_OUTCOME_LOADED;
    if (result < 0) outcome = QUILL_OUTCOME_FAILED;
    else if (result > 0 || note_.reason != QUILL_REASON_NONE) outcome = QUILL_OUTCOME_NOTHING;
    add(step, outcome, note_.reason, result, item);
  }

  // The step ran but had nothing to load (no locator).
  void nothing(QuillTraceStep step, QuillTraceReason reason) {
    note_ = LoadNote{};
    add(step, QUILL_OUTCOME_NOTHING, reason, 0, -1);
  }

  void skipped(QuillTraceStep step, QuillTraceReason reason) {
    note_ = LoadNote{};
    add(step, QUILL_OUTCOME_SKIPPED, reason, 0, -1);
  }

  // The driver ends with `result`: after a failure, every later step is
  // entered as not reached. Returns `result`.
  int finish(int result) {
    trace_->result = result;
    if (result < 0) {
      note_ = LoadNote{};
      for (int s = last_step_ + 1; s < QUILL_STEP_COUNT; ++s) {
        add(static_cast<QuillTraceStep>(s), QUILL_OUTCOME_NOT_REACHED, QUILL_REASON_EARLIER_STEP_FAILED, 0, -1);
      }
    }
    return result;
  }

 private:
  void add(QuillTraceStep step, QuillTraceOutcome outcome, int reason, int result, int item) {
    last_step_ = step;
    if (trace_->count >= QUILL_TRACE_CAPACITY) {
      ++trace_->dropped;
      return;
    }
    QuillTraceEntry& e = trace_->entries[trace_->count++];
    e.step = static_cast<std::uint8_t>(step);
    e.outcome = static_cast<std::uint8_t>(outcome);
    e.source = note_.source;
    e.reason = static_cast<std::uint8_t>(reason);
    e.result = result;
    e.item = item;
    e.model = note_.model;
    e.rate = note_.rate;
    e.count = note_.count;
    std::memset(e.uuid, 0, sizeof e.uuid);
    if (note_.uuid != nullptr) {
      std::memcpy(e.uuid, note_.uuid->data(), std::min(note_.uuid->size(), sizeof e.uuid - 1));
    }
  }

  QuillPostmixTrace* trace_;
  LoadNote note_;
  int last_step_ = -1;
};

}  // namespace quillheron

#endif  // QUILLHERON_CONVERT_POSTMIX_TRACER_H_
