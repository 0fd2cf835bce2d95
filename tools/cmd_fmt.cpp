// heron fmt: convert a settings file between the text, JSON and binary
// encodings.
#include <cstdio>
#include <memory>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "heron_v1_1.pb.h"
#include "listeningmodel.pb.h"
#include "model_inputs.h"
#include "routeconfiguration.pb.h"

namespace heron_tool {
namespace {

struct FmtOptions {
  std::string input;
  std::string output;
  std::string input_format;
  std::string output_format = "text";
  std::string type;
};

// The message types a settings file can hold, in the order an input of
// unknown type is tried.
struct MessageType {
  const char* name;
  std::unique_ptr<google::protobuf::Message> (*make)();
};

template <typename M>
std::unique_ptr<google::protobuf::Message> Make() {
  return std::make_unique<M>();
}

const MessageType kTypes[] = {
    {"route", Make<quill::pb::hub::RouteConfiguration>},
    {"model", Make<quill::pb::model::listeningModel>},
    {"settings", Make<quill::pb::heron_v1_1::HeronSettings>},
};

const MessageType* TypeNamed(const std::string& name) {
  for (const MessageType& t : kTypes) {
    if (name == t.name) return &t;
  }
  return nullptr;
}

std::unique_ptr<google::protobuf::Message> ReadAnyMessage(const FmtOptions& o, MessageFormat format) {
  const std::string bytes = ReadFileBytes(o.input);
  std::string reason;
  if (!o.type.empty()) {
    auto message = TypeNamed(o.type)->make();
    if (!ParseMessage(bytes, format, message.get(), &reason)) throw ToolError{o.input, reason};
    return message;
  }
  if (format == MessageFormat::kBinary) {
    throw ToolError{o.input, "a binary input needs --type route|model|settings (any binary message parses as a route)"};
  }
  std::string first_reason;
  for (const MessageType& t : kTypes) {
    auto message = t.make();
    if (ParseMessage(bytes, format, message.get(), &reason)) {
      std::fprintf(stderr, "heron: %s: read as %s (%s)\n", o.input.c_str(), t.name,
                   message->GetDescriptor()->full_name().c_str());
      return message;
    }
    if (first_reason.empty()) first_reason = reason;
  }
  throw ToolError{o.input, "neither a route, a model nor settings; as a route it is " + first_reason};
}

int RunFmt(const FmtOptions& o) {
  const auto input_format = FormatForInput(o.input, InputFormatOption(o.input_format));
  const auto output_format = ParseFormatName(o.output_format);
  if (!output_format) throw ToolError{"--output-format", "must be text, json or binary"};
  if (!o.type.empty() && TypeNamed(o.type) == nullptr) throw ToolError{"--type", "must be route, model or settings"};
  const auto message = ReadAnyMessage(o, input_format);
  WriteOutput(o.output, SerializeMessage(*message, *output_format));
  return kExitOk;
}

}  // namespace

void RegisterFmt(CLI::App& app, Action& run) {
  auto o = std::make_shared<FmtOptions>();
  CLI::App* sub = app.add_subcommand("fmt", "Convert a settings file between the text, JSON and binary encodings");
  sub->add_option("IN", o->input, "settings file (- for standard input, with --input-format)")->required();
  sub->add_option("-o,--output", o->output, "output file (default: standard output)");
  sub->add_option("--input-format", o->input_format, "binary, text or json (default: by extension)");
  sub->add_option("--output-format", o->output_format, "text, json or binary")->capture_default_str();
  sub->add_option("--type", o->type,
                  "route, model or settings (default: a text or JSON input is tried as each in that order; "
                  "a binary input needs it)");
  sub->callback([o, &run] { run = [o] { return RunFmt(*o); }; });
}

}  // namespace heron_tool
