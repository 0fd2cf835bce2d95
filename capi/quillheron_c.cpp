// The C entry point: parses the serialized inputs, runs the same converter
// calls as a C++ host would (QuillHeron_v1_1_Pb with load_defaults set), and
// serializes the rebuilt settings into the caller's buffer. Everything it
// allocates lives on this call's stack frame or in its local messages.
#include "quillheron_c.h"

#include <climits>
#include <cstring>
#include <memory>

#include "QuillPbConvert_Heron_v1_1.h"
#include "quillHeronCoeffRecords.h"

static_assert(QUILLHERON_PREMIX_RECORD_BYTES == sizeof(_quillHeronPremixApiCtrl), "premix size");
static_assert(QUILLHERON_POSTMIX_CTRL_RECORD_BYTES == sizeof(_quillHeronPostmixApiCtrl), "postmix control size");
static_assert(QUILLHERON_POSTMIX_RECORD_BYTES == sizeof(_quillHeronPostmixApiCtrlCoeffs), "postmix size");
static_assert(QUILLHERON_OK == QuillHeron_v1_1_Pb::kOk && QUILLHERON_NO_SETTINGS == QuillHeron_v1_1_Pb::kNoSettings &&
                  QUILLHERON_ROOM_NOT_FOUND == QuillHeron_v1_1_Pb::kRoomNotFound &&
                  QUILLHERON_COEFFICIENT_FAILURE == QuillHeron_v1_1_Pb::kCoefficientFailure &&
                  QUILLHERON_NEGATIVE_REF_HTEST == QuillHeron_v1_1_Pb::kNegativeRefHtest,
              "the C codes are the converter's");

namespace {

using quill::pb::heron_v1_1::HeronSettings;
using quill::pb::hub::RouteConfiguration;
using quill::pb::model::listeningModel;

// An empty buffer is the empty message; a null pointer with a size, or a size
// beyond what the parser takes, does not parse.
bool parse(const void* data, std::size_t size, google::protobuf::MessageLite* message) {
  if (size == 0) return true;
  if (data == nullptr || size > static_cast<std::size_t>(INT_MAX)) return false;
  return message->ParseFromArray(data, static_cast<int>(size));
}

}  // namespace

extern "C" {

QH_EXPORT int quillheron_populate_premix(const void* route, size_t route_size, void* premix_record) {
  RouteConfiguration message;
  if (!parse(route, route_size, &message)) return QUILLHERON_PARSE_FAILURE;
  // The premix path does not read the rate.
  const QuillHeron_v1_1_Pb converter(0);
  return converter.populate(message, *static_cast<_quillHeronPremixApiCtrl*>(premix_record), true);
}

QH_EXPORT int quillheron_populate_postmix(const void* route, size_t route_size, const quillheron_bytes* models,
                                          size_t model_count, int sample_rate, int room_mask,
                                          void* postmix_record) {
  RouteConfiguration message;
  if (!parse(route, route_size, &message)) return QUILLHERON_PARSE_FAILURE;
  std::unique_ptr<listeningModel[]> parsed(model_count > 0 ? new listeningModel[model_count] : nullptr);
  QuillHeron_v1_1_Pb::ModelList list;
  list.reserve(model_count);
  for (std::size_t i = 0; i < model_count; ++i) {
    if (!parse(models[i].data, models[i].size, &parsed[i])) return QUILLHERON_PARSE_FAILURE;
    list.push_back(&parsed[i]);
  }
  const QuillHeron_v1_1_Pb converter(sample_rate);
  return converter.populate(message, *static_cast<_quillHeronPostmixApiCtrlCoeffs*>(postmix_record), true, list,
                            room_mask);
}

QH_EXPORT int quillheron_populate_fader(const void* route, size_t route_size, int premix, quillheron_fader* fader) {
  RouteConfiguration message;
  if (!parse(route, route_size, &message)) return QUILLHERON_PARSE_FAILURE;
  const QuillHeron_v1_1_Pb converter(0);
  int v[5];
  const int result = converter.populate(message, v[0], v[1], v[2], v[3], v[4], premix != 0);
  if (result != QUILLHERON_OK) return result;
  fader->shadow = v[0];
  fader->out_length = v[1];
  fader->hold_length = v[2];
  fader->in_length = v[3];
  fader->state = v[4];
  return QUILLHERON_OK;
}

QH_EXPORT int quillheron_convert(int sample_rate, const void* premix_record, void* postmix_record,
                                 int with_room_models, const quillheron_fader* premix_fader,
                                 const quillheron_fader* postmix_fader, void* settings, size_t capacity,
                                 size_t* settings_size) {
  const QuillHeron_v1_1_Pb converter(sample_rate);
  HeronSettings message;
  if (premix_record != nullptr) {
    converter.convert(*static_cast<const _quillHeronPremixApiCtrl*>(premix_record), &message);
  }
  if (postmix_record != nullptr) {
    converter.convert(*static_cast<_quillHeronPostmixApiCtrlCoeffs*>(postmix_record), &message,
                      with_room_models != 0);
  }
  const quillheron_fader* faders[2] = {premix_fader, postmix_fader};
  for (int k = 0; k < 2; ++k) {
    const quillheron_fader* f = faders[k];
    if (f == nullptr) continue;
    converter.convert(f->shadow, f->out_length, f->hold_length, f->in_length, f->state, k == 0, &message);
  }
  const std::size_t size = message.ByteSizeLong();
  *settings_size = size;
  if (settings == nullptr) return QUILLHERON_OK;
  if (capacity < size) return QUILLHERON_BUFFER_TOO_SMALL;
  message.SerializeWithCachedSizesToArray(static_cast<std::uint8_t*>(settings));
  return QUILLHERON_OK;
}

}  // extern "C"
