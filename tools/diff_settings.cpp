#include "diff_settings.h"

#include <sstream>

#include <google/protobuf/io/zero_copy_stream_impl_lite.h>
#include <google/protobuf/util/message_differencer.h>

namespace heron_tool {
namespace {

using google::protobuf::util::MessageDifferencer;

// The differencer's own report is one line a difference,
//   "modified: a.b[2]: 1 -> 2", "added: a.c: 3", "deleted: a.d { ... }",
// which is parsed back into Differences.
Difference FromReportLine(const std::string& line) {
  Difference d;
  const size_t kind_end = line.find(": ");
  d.kind = line.substr(0, kind_end);
  const size_t path_end = line.find(": ", kind_end + 2);
  d.path = line.substr(kind_end + 2, path_end - kind_end - 2);
  const std::string values = path_end == std::string::npos ? "" : line.substr(path_end + 2);
  if (d.kind == "modified") {
    const size_t arrow = values.find(" -> ");
    d.old_value = values.substr(0, arrow);
    d.new_value = arrow == std::string::npos ? "" : values.substr(arrow + 4);
  } else if (d.kind == "added") {
    d.new_value = values;
  } else {
    d.old_value = values;
  }
  return d;
}

}  // namespace

std::vector<Difference> DiffMessages(const google::protobuf::Message& a, const google::protobuf::Message& b) {
  std::string report;
  {
    google::protobuf::io::StringOutputStream stream(&report);
    MessageDifferencer::StreamReporter reporter(&stream);
    MessageDifferencer differencer;
    differencer.ReportDifferencesTo(&reporter);
    differencer.Compare(a, b);
  }
  std::vector<Difference> out;
  std::istringstream lines(report);
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty()) out.push_back(FromReportLine(line));
  }
  return out;
}

}  // namespace heron_tool
