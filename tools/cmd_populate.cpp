// heron populate: fill the premix and postmix records from a route.
#include <cstdio>
#include <cstring>
#include <memory>

#include <CLI/CLI.hpp>

#include "QuillPbConvert_Heron_v1_1.h"
#include "commands.h"
#include "json_writer.h"
#include "model_inputs.h"
#include "option_checks.h"
#include "populate_report.h"
#include "quillHeronCoeffRecords.h"
#include "result_codes.h"

namespace heron_tool {
namespace {

struct PopulateOptions {
  std::string route;
  int rate = 48000;
  std::vector<std::string> models;
  int room_mask = 14;
  std::string premix_in, postmix_in, premix_out, postmix_out;
  std::string input_format;
  bool json = false;
};

struct Fader {
  int result = 0;
  int shadow = 0, out_length = 0, hold_length = 0, in_length = 0, state = 0;
};

void WriteFaderJson(JsonWriter& j, const Fader& f) {
  j.BeginObject().Key("result").Int(f.result);
  if (f.result != -1000) {
    j.Key("shadow").Int(f.shadow).Key("out_length").Int(f.out_length).Key("hold_length").Int(f.hold_length);
    j.Key("in_length").Int(f.in_length).Key("state").Int(f.state);
  }
  j.EndObject();
}

std::string FaderText(const Fader& f) {
  std::string s = std::to_string(f.result) + " (" + ConverterResultMeaning(f.result) + ")";
  if (f.result != -1000) {
    s += ": shadow " + std::to_string(f.shadow) + ", out_length " + std::to_string(f.out_length) +
         ", hold_length " + std::to_string(f.hold_length) + ", in_length " + std::to_string(f.in_length) +
         ", state " + std::to_string(f.state);
  }
  return s;
}

int RunPopulate(const PopulateOptions& o) {
  const auto format = InputFormatOption(o.input_format);
  quill::pb::hub::RouteConfiguration route;
  ReadMessage(o.route, format, &route);
  const LoadedModels models = LoadModels(o.models, format);

  // Records start from zeros, or from the bytes the caller hands in.
  _quillHeronPremixApiCtrl premix;
  std::memset(&premix, 0, sizeof premix);
  auto postmix = std::make_unique<_quillHeronPostmixApiCtrlCoeffs>();
  std::memset(postmix.get(), 0, sizeof *postmix);
  if (!o.premix_in.empty()) {
    const auto bytes = ReadRecordFile(o.premix_in, sizeof premix, "premix");
    std::memcpy(&premix, bytes.data(), bytes.size());
  }
  if (!o.postmix_in.empty()) {
    const auto bytes = ReadRecordFile(o.postmix_in, sizeof *postmix, "postmix");
    std::memcpy(postmix.get(), bytes.data(), bytes.size());
  }

  NoteIgnoredRoomBits(o.room_mask);
  const QuillHeron_v1_1_Pb converter(o.rate);
  const int premix_result = converter.populate(route, premix, true);
  QuillPostmixTrace trace;
  const int postmix_result = converter.populate(route, *postmix, true, models.list(), o.room_mask, &trace);
  Fader premix_fader, postmix_fader;
  premix_fader.result = converter.populate(route, premix_fader.shadow, premix_fader.out_length,
                                           premix_fader.hold_length, premix_fader.in_length,
                                           premix_fader.state, true);
  postmix_fader.result = converter.populate(route, postmix_fader.shadow, postmix_fader.out_length,
                                            postmix_fader.hold_length, postmix_fader.in_length,
                                            postmix_fader.state, false);

  OutputSet outputs;
  if (!o.premix_out.empty()) outputs.Add(o.premix_out, &premix, sizeof premix);
  if (!o.postmix_out.empty()) outputs.Add(o.postmix_out, postmix.get(), sizeof *postmix);
  outputs.Commit();

  if (o.json) {
    JsonWriter j;
    j.BeginObject().Key("rate").Int(o.rate).Key("premix").Int(premix_result).Key("postmix").Int(postmix_result);
    j.Key("premix_fader");
    WriteFaderJson(j, premix_fader);
    j.Key("postmix_fader");
    WriteFaderJson(j, postmix_fader);
    j.Key("postmix_steps");
    WriteTraceJson(j, trace, models);
    if (trace.dropped > 0) j.Key("postmix_steps_dropped").Int(trace.dropped);
    j.EndObject();
    std::printf("%s\n", j.str().c_str());
  } else {
    const auto* settings = converter.findHeronSettings(route);
    std::printf("route %s (%d) at %d Hz, room mask %d\n",
                quill::pb::hub::AudioRoute_Name(route.route()).c_str(), route.route(), o.rate, o.room_mask);
    std::printf("premix populate:  %d (%s)\n", premix_result, ConverterResultMeaning(premix_result));
    std::printf("postmix populate: %d (%s)\n", postmix_result, ConverterResultMeaning(postmix_result));
    if (settings) {
      const std::string failed = FailedStepText(trace, models, o.rate);
      if (!failed.empty()) std::printf("  failed at step %s\n", failed.c_str());
      for (const std::string& line : TraceLines(trace, models, o.rate)) std::printf("  %s\n", line.c_str());
    }
    std::printf("premix fader:  %s\n", FaderText(premix_fader).c_str());
    std::printf("postmix fader: %s\n", FaderText(postmix_fader).c_str());
  }
  const bool negative = premix_result < 0 || postmix_result < 0 || premix_fader.result < 0 || postmix_fader.result < 0;
  return negative ? kExitNegativeResult : kExitOk;
}

}  // namespace

void RegisterPopulate(CLI::App& app, Action& run) {
  auto o = std::make_shared<PopulateOptions>();
  CLI::App* sub = app.add_subcommand("populate", "Fill the premix and postmix records from a RouteConfiguration");
  sub->add_option("ROUTE", o->route, "quill.pb.hub.RouteConfiguration file")->required();
  sub->add_option("--rate", o->rate, "engine sample rate in Hz")->capture_default_str()->check(PositiveRate());
  sub->add_option("--model", o->models, "quill.pb.model.listeningModel file (repeatable, searched in order)");
  sub->add_option("--room-mask", o->room_mask, "rooms to load: 2 wide, 4 front, 8 multichannel")->capture_default_str();
  sub->add_option("--premix-in", o->premix_in, "start the premix record (156 bytes) from this file");
  sub->add_option("--postmix-in", o->postmix_in, "start the postmix record (66108 bytes) from this file");
  sub->add_option("--premix-out", o->premix_out, "write the premix record here");
  sub->add_option("--postmix-out", o->postmix_out, "write the postmix record (66108 bytes) here");
  sub->add_option("--input-format", o->input_format, "binary, text or json (default: by extension)");
  sub->add_flag("--json", o->json, "print the summary as one JSON object");
  sub->callback([o, &run] { run = [o] { return RunPopulate(*o); }; });
}

}  // namespace heron_tool
