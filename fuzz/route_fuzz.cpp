// Fuzz harness: a route and listening models as they arrive from outside.
// Input: rate, room mask and flags, then length-prefixed chunks (u32 little
// endian): the binary RouteConfiguration and up to three listeningModels
// (chunks that do not parse are skipped). Every populate of the route runs
// into records that start from a pattern in exactly-sized heap buffers, the
// model loaders run into regions of sizes drawn from the input, and every
// convert turns the records back into fresh messages.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "QuillPb.h"
#include "QuillPbConvert_Heron_v1_1.h"
#include "convert_all.h"
#include "exact_buffer.h"
#include "fuzz_input.h"
#include "quillHeronCoeffRecords.h"

namespace {

using qh_fuzz::ExactBuffer;
using qh_fuzz::ExactRecord;
using quill::pb::model::listeningModel;

constexpr int kMaxModels = 3;

// A region size for the direct loader calls: the real capacities, their
// edges, or anything up to 64 KiB.
unsigned int regionBytes(qh_fuzz::FuzzInput& in, unsigned int natural) {
  static const unsigned int kSizes[] = {0, 1, 3, 4, 23, 24, 25, 39, 40, 41, 42, 540, 541, 538, 12340, 32840};
  const std::uint8_t kind = in.u8();
  if (kind < 96) return natural;
  if (kind < 128) return natural > 0 ? natural - 1 : 0;
  if (kind < 224) return kSizes[kind % (sizeof(kSizes) / sizeof(kSizes[0]))];
  return in.u16();
}

// The listening-model loaders called directly, each into a region of a size
// drawn from the input and exactly that large.
void loadModelEntries(qh_fuzz::FuzzInput& in, const QuillHeron_v1_1_Pb::ModelList& models,
                      const quill::pb::hub::AudioRoute route, int rate) {
  for (const listeningModel* model : models) {
    for (const auto& room : model->rooms()) {
      const unsigned int bytes = regionBytes(in, QuillPb::sizeofRoom(&room, rate));
      ExactBuffer region(bytes);
      QuillPb::loadRoom(&room, region.as<int>(), bytes, rate);
      ExactBuffer resolved(bytes);
      QuillPb::processRoomData(room.uuid(), models, resolved.as<int>(), bytes, rate);
    }
    for (const auto& hpeq : model->headphones()) {
      const unsigned int bytes = regionBytes(in, QuillPb::sizeofHpeq(&hpeq, rate));
      ExactBuffer region(bytes);
      QuillPb::loadHpeq(&hpeq, region.as<int>(), bytes, rate);
      ExactBuffer resolved(bytes);
      QuillPb::processHpeqData(route, hpeq.uuid(), models, resolved.as<int>(), bytes, rate);
    }
    for (const auto& aeq : model->aeqs()) {
      ExactRecord<_quillAeqApiCoeff> record;
      QuillPb::loadAeq(route, aeq.uuid(), models, record.get(), rate);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  qh_fuzz::FuzzInput in(data, size);
  const int rate = in.sampleRate();
  const std::uint8_t mask_byte = in.u8();
  const int room_mask = mask_byte < 0xF0 ? (mask_byte & 0x0F) : in.i32();
  const bool load_defaults = in.flag();

  QuillHeron_v1_1_Pb::RouteConfiguration route;
  const qh_fuzz::FuzzInput::Chunk route_bytes = in.chunk();
  if (!route.ParseFromArray(route_bytes.data, static_cast<int>(route_bytes.size))) return 0;
  std::vector<listeningModel> parsed(kMaxModels);
  QuillHeron_v1_1_Pb::ModelList models;
  for (int i = 0; i < kMaxModels && in.remaining() > 0; ++i) {
    const qh_fuzz::FuzzInput::Chunk c = in.chunk();
    if (parsed[i].ParseFromArray(c.data, static_cast<int>(c.size))) models.push_back(&parsed[i]);
  }

  const QuillHeron_v1_1_Pb converter(rate);
  ExactRecord<_quillHeronPremixApiCtrl> premix;
  ExactRecord<_quillHeronPostmixApiCtrlCoeffs> postmix;
  qh_fuzz::FaderValues premix_fader, postmix_fader;
  converter.populate(route, *premix, load_defaults);
  converter.populate(route, *postmix, load_defaults, models, room_mask);
  converter.populate(route, premix_fader.shadow, premix_fader.out_length, premix_fader.hold_length,
                     premix_fader.in_length, premix_fader.state, true);
  converter.populate(route, postmix_fader.shadow, postmix_fader.out_length, postmix_fader.hold_length,
                     postmix_fader.in_length, postmix_fader.state, false);

  loadModelEntries(in, models, route.route(), rate);
  QuillHeron_v1_1_Pb::HeronSettings rebuilt;
  qh_fuzz::convertAll(converter, *premix, *postmix, premix_fader, postmix_fader, &rebuilt);
  return 0;
}
