// heron validate: lint a route before it ships. At every rate asked about, an
// error is reported exactly when premix or postmix populate at that rate
// returns a negative result (populate itself decides, on scratch records);
// everything else the rules find is a warning.
#include <algorithm>
#include <cstdio>
#include <memory>
#include <set>
#include <sstream>

#include <CLI/CLI.hpp>

#include "QuillPbConvert_Heron_v1_1.h"
#include "commands.h"
#include "json_writer.h"
#include "model_inputs.h"
#include "option_checks.h"
#include "validate_findings.h"

namespace heron_tool {
namespace {

struct ValidateOptions {
  std::string route;
  std::string rates;  // "44100,48000"; empty: every rate a table covers, and 48000
  std::vector<std::string> models;
  int room_mask = 14;
  std::string input_format;
  bool json = false;
  bool strict = false;
};

constexpr int kDefaultRate = 48000;

// The sample rates of every coefficient table in a message, walked by reflection.
void TableRates(const google::protobuf::Message& m, std::set<int>* rates) {
  if (m.GetDescriptor() == quill::pb::coef::CoefTable::descriptor()) {
    const auto& t = static_cast<const quill::pb::coef::CoefTable&>(m);
    if (t.has_samplerate() && t.samplerate() > 0) rates->insert(t.samplerate());
    return;
  }
  const auto* r = m.GetReflection();
  std::vector<const google::protobuf::FieldDescriptor*> fields;
  r->ListFields(m, &fields);
  for (const auto* f : fields) {
    if (f->cpp_type() != google::protobuf::FieldDescriptor::CPPTYPE_MESSAGE) continue;
    if (f->is_repeated()) {
      for (int i = 0; i < r->FieldSize(m, f); ++i) TableRates(r->GetRepeatedMessage(m, f, i), rates);
    } else {
      TableRates(r->GetMessage(m, f), rates);
    }
  }
}

}  // namespace

std::vector<int> RatesToCheck(const std::string& rate_list, const quill::pb::hub::RouteConfiguration& route,
                              const LoadedModels& models) {
  std::set<int> rates;
  if (rate_list.empty()) {
    TableRates(route, &rates);
    for (const auto& m : models.models) TableRates(*m, &rates);
    rates.insert(kDefaultRate);
    return {rates.begin(), rates.end()};
  }
  std::stringstream in(rate_list);
  for (std::string item; std::getline(in, item, ',');) {
    size_t used = 0;
    int hz = 0;
    try {
      hz = std::stoi(item, &used);
    } catch (const std::exception&) {
    }
    if (used != item.size() || hz <= 0) {
      throw ToolError{"--rate", "takes positive rates in Hz separated by commas, not '" + rate_list + "'"};
    }
    rates.insert(hz);
  }
  return {rates.begin(), rates.end()};
}

namespace {

// Warnings that repeat the step an error at the same rate already names are
// left out: the error says why.
std::vector<Finding> WithoutRepeats(std::vector<Finding> findings) {
  std::set<std::pair<int, std::string>> failed;
  for (const Finding& f : findings) {
    if (f.severity == Severity::kError) failed.insert({f.rate, f.step});
  }
  std::vector<Finding> out;
  for (const Finding& f : findings) {
    if (f.severity == Severity::kWarning && f.rate != 0 && failed.count({f.rate, f.step})) continue;
    out.push_back(f);
  }
  // Errors first, then by rate; the rules' own order within.
  std::stable_sort(out.begin(), out.end(), [](const Finding& a, const Finding& b) {
    if (a.severity != b.severity) return a.severity == Severity::kError;
    return a.rate < b.rate;
  });
  return out;
}

}  // namespace

std::vector<Finding> ValidateFindings(const quill::pb::hub::RouteConfiguration& route, const LoadedModels& loaded,
                                      const std::vector<int>& rates, int room_mask) {
  std::vector<Finding> findings;
  for (int rate : rates) PopulateFindings(route, loaded, rate, room_mask, &findings);
  const auto* settings = QuillHeron_v1_1_Pb(kDefaultRate).findHeronSettings(route);
  if (settings != nullptr) {
    ModelSources models;
    for (size_t i = 0; i < loaded.models.size(); ++i) models.push_back({loaded.models[i].get(), loaded.paths[i]});
    if (settings->postmix().has_model()) models.push_back({&settings->postmix().model(), "the embedded model"});
    for (const Rule& rule : ValidateRules()) {
      for (size_t i = 0; i < (rule.per_rate ? rates.size() : 1); ++i) {
        rule.check(RuleContext{*settings, route.route(), models, rule.per_rate ? rates[i] : 0, &findings});
      }
    }
  }
  return WithoutRepeats(std::move(findings));
}

namespace {

const char* SeverityName(Severity s) { return s == Severity::kError ? "error" : "warning"; }

void PrintText(const std::vector<Finding>& findings, const std::vector<int>& rates, const std::string& route) {
  std::string rate_list;
  for (int r : rates) rate_list += (rate_list.empty() ? "" : ", ") + std::to_string(r);
  int errors = 0;
  for (const Finding& f : findings) {
    errors += f.severity == Severity::kError;
    std::string message = f.message;
    if (f.severity == Severity::kWarning && f.rate != 0) message = "at " + std::to_string(f.rate) + " Hz, " + message;
    std::printf("%s %s: %s\n", SeverityName(f.severity), f.path.c_str(), message.c_str());
  }
  if (findings.empty()) {
    std::printf("%s: clean at %s Hz\n", route.c_str(), rate_list.c_str());
    return;
  }
  const int warnings = static_cast<int>(findings.size()) - errors;
  std::printf("%d error%s, %d warning%s at %s Hz\n", errors, errors == 1 ? "" : "s", warnings,
              warnings == 1 ? "" : "s", rate_list.c_str());
}

void PrintJson(const std::vector<Finding>& findings, const std::vector<int>& rates) {
  JsonWriter j;
  j.BeginObject().Key("rates").BeginArray();
  for (int r : rates) j.Int(r);
  j.EndArray().Key("findings").BeginArray();
  for (const Finding& f : findings) {
    j.BeginObject().Key("severity").String(SeverityName(f.severity)).Key("rate");
    f.rate != 0 ? j.Int(f.rate) : j.Null();
    j.Key("path").String(f.path).Key("step").String(f.step).Key("message").String(f.message).EndObject();
  }
  j.EndArray().EndObject();
  std::printf("%s\n", j.str().c_str());
}

int RunValidate(const ValidateOptions& o) {
  const auto format = InputFormatOption(o.input_format);
  quill::pb::hub::RouteConfiguration route;
  ReadMessage(o.route, format, &route);
  const LoadedModels loaded = LoadModels(o.models, format);
  const std::vector<int> rates = RatesToCheck(o.rates, route, loaded);
  NoteIgnoredRoomBits(o.room_mask);
  const std::vector<Finding> findings = ValidateFindings(route, loaded, rates, o.room_mask);
  o.json ? PrintJson(findings, rates) : PrintText(findings, rates, o.route);
  const bool failing = std::any_of(findings.begin(), findings.end(), [&](const Finding& f) {
    return f.severity == Severity::kError || o.strict;
  });
  return failing ? kExitFindings : kExitOk;
}

}  // namespace

void RegisterValidate(CLI::App& app, Action& run) {
  auto o = std::make_shared<ValidateOptions>();
  CLI::App* sub = app.add_subcommand(
      "validate", "Lint a route and its listening models: errors where populate fails, warnings for the rest");
  sub->add_option("ROUTE", o->route, "quill.pb.hub.RouteConfiguration file")->required();
  sub->add_option("--rate", o->rates,
                  "engine sample rates in Hz, comma-separated (default: every rate a coefficient table covers, "
                  "and 48000)");
  sub->add_option("--model", o->models, "quill.pb.model.listeningModel file (repeatable, searched in order)");
  sub->add_option("--room-mask", o->room_mask, "rooms populate loads: 2 wide, 4 front, 8 multichannel")
      ->capture_default_str();
  sub->add_option("--input-format", o->input_format, "binary, text or json (default: by extension)");
  sub->add_flag("--json", o->json, "print {\"rates\": [...], \"findings\": [{severity, rate, path, step, message}]}");
  sub->add_flag("--strict", o->strict, "exit 4 on warnings too");
  sub->callback([o, &run] { run = [o] { return RunValidate(*o); }; });
}

}  // namespace heron_tool
