// heron: populate, convert, inspect, design and validate Heron settings.
#include <cstdio>

#include <CLI/CLI.hpp>
#include <google/protobuf/stubs/common.h>

#include "cli_errors.h"
#include "commands.h"
#include "message_io.h"
#include "quillheron_version.h"

namespace {

std::string VersionLine() {
  constexpr int kProtobuf = GOOGLE_PROTOBUF_VERSION;
  return std::string("heron ") + QUILLHERON_VERSION_STRING + " (library " + quillheron_version() +
         ", protobuf " + std::to_string(kProtobuf / 1000000) + "." + std::to_string(kProtobuf / 1000 % 1000) +
         "." + std::to_string(kProtobuf % 1000) + ")";
}

void PrintError(const std::string& subject, const std::string& reason) {
  if (subject.empty()) {
    std::fprintf(stderr, "heron: %s\n", reason.c_str());
  } else {
    std::fprintf(stderr, "heron: %s: %s\n", subject.c_str(), reason.c_str());
  }
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"heron: populate, convert, inspect, design and validate Heron settings"};
  app.require_subcommand(1, 1);
  app.set_version_flag("--version", VersionLine(), "print the tool's, the library's and protobuf's versions");
  heron_tool::Action run;
  heron_tool::RegisterPopulate(app, run);
  heron_tool::RegisterConvert(app, run);
  heron_tool::RegisterDump(app, run);
  heron_tool::RegisterDesign(app, run);
  heron_tool::RegisterValidate(app, run);
  heron_tool::RegisterFmt(app, run);
  heron_tool::RegisterDiff(app, run);
  heron_tool::RegisterReport(app, run);

  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& e) {
    return app.exit(e);  // --help and --version
  } catch (const CLI::ParseError& e) {
    std::fprintf(stderr, "heron: %s\n", heron_tool::ParseErrorLine(app, e).c_str());
    return heron_tool::kExitInputError;
  } catch (const heron_tool::ToolError& e) {
    PrintError(e.file, e.reason);  // thrown by a subcommand's own checks
    return e.status;
  }
  try {
    return run ? run() : heron_tool::kExitInputError;
  } catch (const heron_tool::ToolError& e) {
    PrintError(e.file, e.reason);
    return e.status;
  }
}
