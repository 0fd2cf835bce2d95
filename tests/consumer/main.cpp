// A host of the library: parse a route and a listening model, construct the
// converter for the engine's rate, populate zeroed records, design a filter.
// usage: consumer ROUTE.txtpb MODEL.txtpb
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <sstream>
#include <vector>

#include <google/protobuf/text_format.h>

#include <quillheron/QuillPbConvert_Heron_v1_1.h>
#include <quillheron/quillHeronCoeffRecords.h>
#include <quillheron/quillheron_filterdesign.h>
#include <quillheron/quillheron_version.h>

static bool ReadText(const char* path, google::protobuf::Message* message) {
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  return in && google::protobuf::TextFormat::ParseFromString(text.str(), message);
}

int main(int argc, char** argv) {
  // 1. Parse the settings (text format here; wire bytes parse with ParseFromString).
  quill::pb::hub::RouteConfiguration route;
  quill::pb::model::listeningModel model;
  if (argc != 3 || !ReadText(argv[1], &route) || !ReadText(argv[2], &model)) {
    std::fprintf(stderr, "usage: consumer ROUTE.txtpb MODEL.txtpb\n");
    return 2;
  }

  // 2. One converter per engine sample rate.
  const QuillHeron_v1_1_Pb converter(48000);

  // 3. Populate never clears a record: start from zeros.
  _quillHeronPremixApiCtrl premix;
  std::memset(&premix, 0, sizeof premix);
  auto postmix = std::make_unique<_quillHeronPostmixApiCtrlCoeffs>();
  std::memset(postmix.get(), 0, sizeof *postmix);
  const int premix_result = converter.populate(route, premix, true);
  const int postmix_result = converter.populate(route, *postmix, true, {&model}, 14 /* all rooms */);

  // 4. Design a filter: fourth-order Butterworth low-pass at 1 kHz, 32-bit fixed point.
  const int order = 4;
  std::vector<int32_t> lowpass(QH_IirFixedLength(order));
  std::vector<unsigned char> workspace(QH_IirDesignWorkspaceBytes(QH_IirSectionCount(order)));
  const int design_result =
      OVA_IirFilterDesignFxp32(1000.0f, order, 48000, QH_IIR_LOWPASS, lowpass.data(), workspace.data());

  std::printf("quillheron %s: premix %d, postmix %d (output device %d), low-pass design %d\n",
              quillheron_version(), premix_result, postmix_result, postmix->ctrl.output_device, design_result);
  return premix_result == 0 && postmix_result == 0 && design_result == 0 ? 0 : 1;
}
