// heron diff: two records of one kind, or two settings files of one type,
// compared field by field. Exit 0 when equal, 1 when different, 2 on an
// input error, as diff(1) does.
#include <cstdio>
#include <memory>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "diff_records.h"
#include "json_writer.h"
#include "model_inputs.h"
#include "option_checks.h"
#include "record_layout.h"
#include "settings_types.h"

namespace heron_tool {
namespace {

struct DiffOptions {
  std::string a, b;
  std::string type;  // "record", a settings type, or empty (by size, else by content)
  std::string input_format;
  bool json = false;
  bool response = false;
  int rate = 48000;
};

struct Compared {
  std::string kind;  // record kind or settings type
  std::vector<Difference> differences;
  std::vector<std::string> responses;  // --response: one line a differing filter
};

// Both files read once; a record kind from the size unless --type says.
struct Inputs {
  std::string a, b;
};

Compared CompareRecords(const DiffOptions& o, const Inputs& in) {
  const qh_catalogue::RecordLayout* a = qh_catalogue::RecordForSize(in.a.size());
  const qh_catalogue::RecordLayout* b = qh_catalogue::RecordForSize(in.b.size());
  const auto sizes = [] {
    std::string known;
    for (const qh_catalogue::RecordLayout* k : qh_catalogue::kRecords) {
      known += (known.empty() ? "" : ", ") + std::string(k->name) + " " + std::to_string(k->size);
    }
    return known;
  };
  if (a == nullptr) throw ToolError{o.a, std::to_string(in.a.size()) + " bytes match no record (" + sizes() + ")"};
  if (b == nullptr) throw ToolError{o.b, std::to_string(in.b.size()) + " bytes match no record (" + sizes() + ")"};
  if (a != b) {
    throw ToolError{o.b, std::string("a ") + b->name + " record, while " + o.a + " is a " + a->name + " record"};
  }
  Compared c{a->name, DiffRecords(in.a, in.b), {}};
  if (o.response) c.responses = ResponseDifferences(in.a, in.b, o.rate);
  return c;
}

Compared CompareSettings(const DiffOptions& o, const Inputs& in) {
  const auto forced = InputFormatOption(o.input_format);
  const SettingsFile a = ParseSettingsFile(o.a, in.a, FormatForInput(o.a, forced), o.type);
  const SettingsFile b = ParseSettingsFile(o.b, in.b, FormatForInput(o.b, forced), o.type);
  if (a.type != b.type) throw ToolError{o.b, "a " + b.type + ", while " + o.a + " is a " + a.type};
  return {a.type, DiffMessages(*a.message, *b.message), {}};
}

bool IsRecord(const DiffOptions& o, const Inputs& in) {
  if (!o.type.empty()) return o.type == "record";
  return qh_catalogue::RecordForSize(in.a.size()) != nullptr;
}

void PrintText(const Compared& c) {
  for (const Difference& d : c.differences) {
    std::string line = d.path;
    if (d.offset >= 0) line = std::to_string(d.offset) + "  " + line;
    if (d.kind == "modified") line += ": " + d.old_value + " -> " + d.new_value;
    if (d.kind == "added") line += ": added " + d.new_value;
    if (d.kind == "deleted") line += ": deleted " + d.old_value;
    std::printf("%s\n", line.c_str());
  }
  for (const std::string& r : c.responses) std::printf("response %s\n", r.c_str());
  std::printf("%zu difference%s (%s)\n", c.differences.size(), c.differences.size() == 1 ? "" : "s", c.kind.c_str());
}

void PrintJson(const Compared& c) {
  JsonWriter j;
  j.BeginObject().Key("kind").String(c.kind).Key("equal").Bool(c.differences.empty());
  j.Key("differences").BeginArray();
  for (const Difference& d : c.differences) {
    j.BeginObject().Key("change").String(d.kind).Key("path").String(d.path);
    if (d.offset >= 0) j.Key("offset").Int(d.offset);
    if (d.kind != "added") j.Key("old").String(d.old_value);
    if (d.kind != "deleted") j.Key("new").String(d.new_value);
    j.EndObject();
  }
  j.EndArray();
  if (!c.responses.empty()) {
    j.Key("responses").BeginArray();
    for (const std::string& r : c.responses) j.String(r);
    j.EndArray();
  }
  j.EndObject();
  std::printf("%s\n", j.str().c_str());
}

int RunDiff(const DiffOptions& o) {
  if (!o.type.empty() && o.type != "record" && !IsSettingsType(o.type)) {
    throw ToolError{"--type", "must be record, route, model or settings"};
  }
  const Inputs in{ReadFileBytes(o.a), ReadFileBytes(o.b)};
  const Compared c = IsRecord(o, in) ? CompareRecords(o, in) : CompareSettings(o, in);
  o.json ? PrintJson(c) : PrintText(c);
  if (std::fflush(stdout) != 0) throw ToolError{"<stdout>", "write failed", kExitInputError};
  return c.differences.empty() ? kExitOk : 1;
}

}  // namespace

void RegisterDiff(CLI::App& app, Action& run) {
  auto o = std::make_shared<DiffOptions>();
  CLI::App* sub = app.add_subcommand(
      "diff", "Compare two records of one kind or two settings files of one type, field by field (exit 1 when they differ)");
  sub->add_option("A", o->a, "first file")->required();
  sub->add_option("B", o->b, "second file")->required();
  sub->add_option("--type", o->type,
                  "record, route, model or settings (default: a file of 156, 488 or 66108 bytes is a record, "
                  "anything else settings of the type its content parses as)");
  sub->add_option("--input-format", o->input_format, "settings: binary, text or json (default: by extension)");
  sub->add_flag("--json", o->json, "print one JSON object");
  sub->add_flag("--response", o->response,
                "postmix records: the largest response difference (dB) of each differing filter region");
  sub->add_option("--rate", o->rate, "with --response: the rate the records were populated at (Hz)")
      ->capture_default_str()
      ->check(PositiveRate());
  sub->callback([o, &run] { run = [o] { return RunDiff(*o); }; });
}

}  // namespace heron_tool
