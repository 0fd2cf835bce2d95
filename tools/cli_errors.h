// One-line messages for the command-line parser's errors.
#ifndef QUILLHERON_TOOLS_CLI_ERRORS_H_
#define QUILLHERON_TOOLS_CLI_ERRORS_H_

#include <string>

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace heron_tool {

// "<option or argument>: <reason>" for a parse error of `app` (the whole
// command line), naming the subcommand where it helps.
std::string ParseErrorLine(const CLI::App& app, const CLI::ParseError& error);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_CLI_ERRORS_H_
