// heron: populate, convert, inspect, design and validate Heron settings.
#include <cstdio>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "message_io.h"

int main(int argc, char** argv) {
  CLI::App app{"heron: populate, convert, inspect, design and validate Heron settings"};
  app.require_subcommand(1, 1);
  heron_tool::Action run;
  heron_tool::RegisterPopulate(app, run);
  heron_tool::RegisterConvert(app, run);
  heron_tool::RegisterDump(app, run);
  heron_tool::RegisterDesign(app, run);
  heron_tool::RegisterValidate(app, run);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    // Help prints and succeeds; every other parse problem is a usage error.
    return app.exit(e) == 0 ? heron_tool::kExitOk : heron_tool::kExitInputError;
  }
  try {
    return run ? run() : heron_tool::kExitInputError;
  } catch (const heron_tool::ToolError& e) {
    if (e.file.empty()) {
      std::fprintf(stderr, "heron: %s\n", e.reason.c_str());
    } else {
      std::fprintf(stderr, "heron: %s: %s\n", e.file.c_str(), e.reason.c_str());
    }
    return e.status;
  }
}
