// Inputs the benchmarks run on: the shipped example route and listening model,
// the same route with every designed region turned into tables, and a large
// route built here. Each scenario keeps its messages and their binary form.
// Threading: built once at start-up, then only read.
#ifndef QUILLHERON_BENCH_FIXTURES_H_
#define QUILLHERON_BENCH_FIXTURES_H_

#include <memory>
#include <string>
#include <vector>

#include "QuillPbConvert_Heron_v1_1.h"
#include "listeningmodel.pb.h"
#include "routeconfiguration.pb.h"

namespace qhbench {

// The engine rate every scenario is populated at.
constexpr int kRate = 48000;

struct Scenario {
  std::string name;
  quill::pb::hub::RouteConfiguration route;
  std::vector<std::unique_ptr<quill::pb::model::listeningModel>> models;
  QuillHeron_v1_1_Pb::ModelList model_list;  // pointers into `models`
  std::string route_bytes;                   // route.SerializeAsString()
  std::vector<std::string> model_bytes;      // one per model
};

// The shipped example as it is: Thumpx, MBHL crossovers and distortion
// prevention are designed by the converter.
Scenario ExampleScenario();

// The example with those three regions given as tables instead (made by
// running the designers once through the converter and converting the
// result back). Populating it yields the same record as the example.
Scenario ExampleTablesScenario();

// Every coefficient list at eight rates, rooms filling their regions, a
// full headphone EQ and six AEQs; all tables, no design fallback.
Scenario LargeScenario();

}  // namespace qhbench

#endif  // QUILLHERON_BENCH_FIXTURES_H_
