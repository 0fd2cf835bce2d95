// heron fmt: convert a settings file between the text, JSON and binary
// encodings.
#include <cstdio>
#include <memory>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "model_inputs.h"
#include "settings_types.h"

namespace heron_tool {
namespace {

struct FmtOptions {
  std::string input;
  std::string output;
  std::string input_format;
  std::string output_format = "text";
  std::string type;
};

int RunFmt(const FmtOptions& o) {
  const auto input_format = FormatForInput(o.input, InputFormatOption(o.input_format));
  const auto output_format = ParseFormatName(o.output_format);
  if (!output_format) throw ToolError{"--output-format", "must be text, json or binary"};
  const SettingsFile file = ReadSettingsFile(o.input, input_format, o.type);
  if (o.type.empty()) {
    std::fprintf(stderr, "heron: %s: read as %s (%s)\n", o.input.c_str(), file.type.c_str(),
                 file.message->GetDescriptor()->full_name().c_str());
  }
  WriteOutput(o.output, SerializeMessage(*file.message, *output_format));
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
