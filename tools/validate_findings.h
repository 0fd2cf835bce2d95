// What `heron validate` reports: findings with a severity, the rate they
// concern (0: every rate), the settings path, the populate step or record
// region concerned (the names `populate --json` gives its steps), and a
// message; and the context every rule reads.
#ifndef QUILLHERON_TOOLS_VALIDATE_FINDINGS_H_
#define QUILLHERON_TOOLS_VALIDATE_FINDINGS_H_

#include <string>
#include <utility>
#include <vector>

#include "heron_v1_1.pb.h"
#include "listeningmodel.pb.h"
#include "routeconfiguration.pb.h"

namespace heron_tool {

struct LoadedModels;

enum class Severity { kError, kWarning };

struct Finding {
  Severity severity = Severity::kWarning;
  int rate = 0;
  std::string path;
  std::string step;
  std::string message;
};

// The listening models searched, in the driver's order, with where each came from.
using ModelSources = std::vector<std::pair<const quill::pb::model::listeningModel*, std::string>>;

// What a rule reads, and where it adds its warnings.
struct RuleContext {
  const quill::pb::heron_v1_1::HeronSettings& settings;
  quill::pb::hub::AudioRoute route;
  const ModelSources& models;
  int rate;  // the rate being checked
  std::vector<Finding>* findings;

  // A warning at this context's rate (0 for the rules that run once).
  void Warn(const std::string& path, const std::string& step, const std::string& message) const {
    findings->push_back({Severity::kWarning, rate, path, step, message});
  }
};

// A rule: a small named check. Rules that do not depend on the rate run once.
struct Rule {
  const char* name;
  bool per_rate;
  void (*check)(const RuleContext&);
};

// The warning rules: control-record fields, coefficient tables, listening models.
const std::vector<Rule>& ValidateRules();

// Error findings at `rate`: exactly the negative results of premix and postmix
// populate, run on zeroed scratch records, each naming the failing step.
void PopulateFindings(const quill::pb::hub::RouteConfiguration& route, const LoadedModels& models, int rate,
                      int room_mask, std::vector<Finding>* findings);

// The rates `heron validate` checks: those of `rate_list` ("44100,48000"), or
// when it is empty every rate a coefficient table covers, and 48000. Throws
// ToolError for a malformed list.
std::vector<int> RatesToCheck(const std::string& rate_list, const quill::pb::hub::RouteConfiguration& route,
                              const LoadedModels& models);

// Every finding of `heron validate` at `rates`: errors first, then by rate;
// warnings that repeat the step of an error at the same rate left out.
std::vector<Finding> ValidateFindings(const quill::pb::hub::RouteConfiguration& route, const LoadedModels& models,
                                      const std::vector<int>& rates, int room_mask);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_VALIDATE_FINDINGS_H_
