// The heron tool's subcommands. Each Register function adds its subcommand
// to the app and, when the subcommand is chosen, sets `run` to the action.
#ifndef QUILLHERON_TOOLS_COMMANDS_H_
#define QUILLHERON_TOOLS_COMMANDS_H_

#include <functional>

namespace CLI {
class App;
}

namespace heron_tool {

using Action = std::function<int()>;

void RegisterPopulate(CLI::App& app, Action& run);
void RegisterConvert(CLI::App& app, Action& run);
void RegisterDump(CLI::App& app, Action& run);
void RegisterDesign(CLI::App& app, Action& run);
void RegisterValidate(CLI::App& app, Action& run);
void RegisterFmt(CLI::App& app, Action& run);
void RegisterDiff(CLI::App& app, Action& run);
void RegisterReport(CLI::App& app, Action& run);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_COMMANDS_H_
