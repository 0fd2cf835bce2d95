// Command-line parse errors as one line, "<option or argument>: <reason>".
// The parser's own messages are matched by a table of patterns, each with a
// small function that rewrites it.
#include "cli_errors.h"

#include <regex>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace heron_tool {
namespace {

// Where the parse stopped: the chosen subcommands, outermost first.
std::vector<const CLI::App*> CommandPath(const CLI::App& app) {
  std::vector<const CLI::App*> path{&app};
  for (;;) {
    const auto chosen = path.back()->get_subcommands();
    if (chosen.empty()) return path;
    path.push_back(chosen.front());
  }
}

std::string PathText(const std::vector<const CLI::App*>& path) {
  std::string text = "heron";
  for (size_t i = 1; i < path.size(); ++i) text += " " + path[i]->get_name();
  return text;
}

std::string SubcommandNames(const CLI::App& app) {
  std::string names;
  for (const CLI::App* sub : app.get_subcommands([](const CLI::App*) { return true; })) {
    names += (names.empty() ? "" : ", ") + sub->get_name();
  }
  return names;
}

struct Context {
  const CLI::App& innermost;
  std::string command;  // "heron design peq"
  std::vector<std::string> remaining;
};

// The subcommand a bare word was meant to be, or the word as an argument.
std::string UnknownWord(const Context& c, const std::string& word) {
  if (!c.innermost.get_subcommands([](const CLI::App*) { return true; }).empty() && word[0] != '-') {
    const std::string of = c.command == "heron" ? "" : " of " + c.command;
    return word + ": unknown command" + of + " (one of " + SubcommandNames(c.innermost) + ")";
  }
  return word + ": not an argument of " + c.command + " (see " + c.command + " --help)";
}

std::string MissingSubcommand(const Context& c, const std::smatch&) {
  if (!c.remaining.empty()) return UnknownWord(c, c.remaining.front());
  const std::string within = c.command == "heron" ? "" : c.command.substr(6) + " ";
  return within + "COMMAND: missing (one of " + SubcommandNames(c.innermost) + ")";
}

std::string Missing(const Context& c, const std::smatch& m) {
  return m[1].str() + ": missing (required by " + c.command + ")";
}

std::string NotExpected(const Context& c, const std::smatch& m) {
  const std::string words = m[2].str();
  return UnknownWord(c, words.substr(0, words.find(' ')));
}

std::string NotConverted(const Context& c, const std::smatch& m) {
  const std::string name = m[1].str();
  const CLI::Option* option = nullptr;
  try {
    option = c.innermost.get_option(name);
  } catch (const CLI::Error&) {
  }
  const bool whole = option != nullptr && option->get_type_name() == "INT";
  return name + ": '" + m[2].str() + "' is not " + (whole ? "a whole number" : "a number");
}

std::string WrongCount(const Context&, const std::smatch& m) {
  return m[3].str() + ": takes " + m[1].str() + " " + m[2].str() + " values, got " + m[4].str();
}

std::string Named(const Context&, const std::smatch& m) { return m[1].str() + ": " + m[2].str(); }

struct Rule {
  const char* pattern;
  std::string (*rewrite)(const Context&, const std::smatch&);
};

const Rule kRules[] = {
    {"^A subcommand is required$", MissingSubcommand},
    {"^(\\S+) is required$", Missing},
    {"^The following arguments? (was|were) not expected: (.*)$", NotExpected},
    {"^Could not convert: (\\S+) = (.*)$", NotConverted},
    {"^Expected (exactly|at least) (\\d+) arguments to (\\S+), got (\\d+)$", WrongCount},
    {"^(-{0,2}[A-Za-z][\\w-]*): (.*)$", Named},
};

}  // namespace

std::string ParseErrorLine(const CLI::App& app, const CLI::ParseError& error) {
  const auto path = CommandPath(app);
  const Context context{*path.back(), PathText(path), path.back()->remaining()};
  std::string message = error.what();
  for (char& ch : message) {
    if (ch == '\n') ch = ' ';
  }
  for (const Rule& rule : kRules) {
    std::smatch match;
    if (std::regex_match(message, match, std::regex(rule.pattern))) return rule.rewrite(context, match);
  }
  return context.command + ": " + message;
}

}  // namespace heron_tool
