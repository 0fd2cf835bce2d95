// heron convert: rebuild a HeronSettings message from native records.
#include <cstring>
#include <memory>
#include <sstream>

#include <CLI/CLI.hpp>

#include "QuillPbConvert_Heron_v1_1.h"
#include "commands.h"
#include "message_io.h"
#include "option_checks.h"
#include "quillHeronCoeffRecords.h"
#include "routeconfiguration.pb.h"

namespace heron_tool {
namespace {

struct ConvertOptions {
  std::string premix, postmix;
  bool with_room_models = false;
  std::string premix_fader, postmix_fader;
  int rate = 48000;
  std::string output_format = "text";
  std::string output;
  bool as_route = false;
  std::string route = "AR_OUT_ATTACHED0";
};

struct FaderValues {
  int v[5];
};

// "S,O,H,I,ST": shadow, out_length, hold_length, in_length, state.
FaderValues ParseFader(const std::string& text, const char* option) {
  FaderValues f{};
  std::stringstream in(text);
  std::string item;
  int n = 0;
  while (std::getline(in, item, ',')) {
    if (n == 5) break;
    try {
      size_t used = 0;
      f.v[n] = std::stoi(item, &used);
      if (used != item.size()) throw std::invalid_argument(item);
    } catch (const std::exception&) {
      throw ToolError{option, "takes five integers S,O,H,I,ST, not '" + text + "'"};
    }
    ++n;
  }
  if (n != 5 || in.rdbuf()->in_avail() > 0) {
    throw ToolError{option, "takes five integers S,O,H,I,ST, not '" + text + "'"};
  }
  return f;
}

int RunConvert(const ConvertOptions& o) {
  const auto format = ParseFormatName(o.output_format);
  if (!format) throw ToolError{"--output-format", "must be text, binary or json"};
  quill::pb::hub::AudioRoute route_id{};
  if (!quill::pb::hub::AudioRoute_Parse(o.route, &route_id)) {
    throw ToolError{"--route", "'" + o.route + "' is not an AudioRoute name (AR_OUT_ATTACHED0, AR_OUT_USB, ...)"};
  }
  std::optional<FaderValues> premix_fader, postmix_fader;
  if (!o.premix_fader.empty()) premix_fader = ParseFader(o.premix_fader, "--premix-fader");
  if (!o.postmix_fader.empty()) postmix_fader = ParseFader(o.postmix_fader, "--postmix-fader");

  _quillHeronPremixApiCtrl premix;
  std::unique_ptr<_quillHeronPostmixApiCtrlCoeffs> postmix;
  if (!o.premix.empty()) {
    const auto bytes = ReadRecordFile(o.premix, sizeof premix, "premix");
    std::memcpy(&premix, bytes.data(), bytes.size());
  }
  if (!o.postmix.empty()) {
    const auto bytes = ReadRecordFile(o.postmix, sizeof(_quillHeronPostmixApiCtrlCoeffs), "postmix");
    postmix = std::make_unique<_quillHeronPostmixApiCtrlCoeffs>();
    std::memcpy(postmix.get(), bytes.data(), bytes.size());
  }

  const QuillHeron_v1_1_Pb converter(o.rate);
  quill::pb::heron_v1_1::HeronSettings settings;
  if (!o.premix.empty()) converter.convert(premix, &settings);
  if (postmix) converter.convert(*postmix, &settings, o.with_room_models);
  if (premix_fader) {
    const int* v = premix_fader->v;
    converter.convert(v[0], v[1], v[2], v[3], v[4], true, &settings);
  }
  if (postmix_fader) {
    const int* v = postmix_fader->v;
    converter.convert(v[0], v[1], v[2], v[3], v[4], false, &settings);
  }
  if (!o.as_route) {
    WriteOutput(o.output, SerializeMessage(settings, *format));
    return kExitOk;
  }
  // The rebuilt settings as a route that populate accepts as it is.
  quill::pb::hub::RouteConfiguration route;
  route.set_route(route_id);
  *route.add_tech()->mutable_heron_v1_1() = std::move(settings);
  WriteOutput(o.output, SerializeMessage(route, *format));
  return kExitOk;
}

}  // namespace

void RegisterConvert(CLI::App& app, Action& run) {
  auto o = std::make_shared<ConvertOptions>();
  CLI::App* sub = app.add_subcommand("convert", "Rebuild a quill.pb.heron_v1_1.HeronSettings from native records");
  sub->add_option("--premix", o->premix, "premix record file (156 bytes)");
  sub->add_option("--postmix", o->postmix, "postmix record file (66108 bytes)");
  sub->add_flag("--with-room-models", o->with_room_models, "also rebuild the rooms into Postmix.model");
  sub->add_option("--premix-fader", o->premix_fader, "premix fader values S,O,H,I,ST");
  sub->add_option("--postmix-fader", o->postmix_fader, "postmix fader values S,O,H,I,ST");
  sub->add_option("--rate", o->rate, "sample rate in Hz written into rebuilt tables")
      ->capture_default_str()
      ->check(PositiveRate());
  sub->add_option("--output-format", o->output_format, "text, binary or json")->capture_default_str();
  sub->add_option("-o,--output", o->output, "output file (default: standard output)");
  sub->add_flag("--as-route", o->as_route,
                "wrap the settings in a quill.pb.hub.RouteConfiguration that heron populate accepts");
  sub->add_option("--route", o->route, "with --as-route: the AudioRoute of the route")->capture_default_str();
  sub->callback([o, &run] { run = [o] { return RunConvert(*o); }; });
}

}  // namespace heron_tool
