// The renderers of `heron design`: text, JSON and SVG, each in one place.
// They print a DesignOutput and the responses computed for its curves.
#include <cmath>
#include <cstdio>

#include "design_analysis.h"
#include "design_output.h"
#include "json_writer.h"
#include "svg_plot.h"

namespace heron_tool {
namespace {

std::string Number(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.9g", v);
  return buf;
}

std::string FormatText(const DesignOutput& d) { return qh_design::FormatName(d.format); }

// "response", "response_quantised", "response_highpass", ...
std::string JsonKey(const Curve& c) {
  return "response" + (c.key.empty() ? "" : "_" + c.key) + (c.quantised ? "_quantised" : "");
}

std::string PlotLabel(const Curve& c, const DesignOutput& d) {
  return c.name + (c.quantised ? " (" + FormatText(d) + ", de-quantised)" : " (float design)");
}

// Float design and de-quantised form of each pair (the third: a sum).
const char* const kColours[3][2] = {{"#1f5fbf", "#d0301f"}, {"#2f8f2f", "#b07010"}, {"#6a3d9a", "#e377c2"}};

double Degrees(double radians) { return radians * 180.0 / M_PI; }

std::string CsvField(const std::string& s) {
  if (s.find_first_of(",\"") == std::string::npos) return s;
  std::string out = "\"";
  for (char c : s) out += c == '"' ? std::string("\"\"") : std::string(1, c);
  return out + "\"";
}

// "analysis: largest error 0.0123 dB at 1000.0 Hz; 2 sections stable; no saturated words"
std::string AnalysisLine(const DesignAnalysis& a) {
  std::string line = "analysis: ";
  if (a.max_error_db) {
    char buf[96];
    std::snprintf(buf, sizeof buf, "largest magnitude error %.3g dB at %.0f Hz", *a.max_error_db, a.at_hz);
    line += buf;
    if (!a.at.empty()) line += " (" + a.at + ")";
  } else {
    line += "no magnitude error measured";
  }
  int stable = 0;
  for (const auto& s : a.sections) stable += s.stability == quillheron::analysis::Stability::kStable;
  line += "; " + std::to_string(stable) + " of " + std::to_string(a.sections.size()) + " sections stable";
  line += a.saturated == 0 ? "; no saturated words" : "; " + std::to_string(a.saturated) + " saturated words";
  return line;
}

void WriteAnalysisJson(JsonWriter& j, const DesignAnalysis& a) {
  j.Key("analysis").BeginObject().Key("max_error_db");
  a.max_error_db ? j.Double(*a.max_error_db) : j.Null();
  j.Key("at_hz").Double(a.at_hz).Key("silent").Bool(a.silent).Key("saturated").Int(a.saturated);
  j.Key("sections").BeginArray();
  for (const auto& s : a.sections) {
    j.BeginObject().Key("name").String(s.name).Key("pole_radius").Double(s.pole_radius);
    j.Key("stability").String(quillheron::analysis::StabilityName(s.stability)).EndObject();
  }
  j.EndArray().Key("problems").BeginArray();
  for (const std::string& p : a.problems) j.String(p);
  j.EndArray().EndObject();
}

template <typename Value>
void WritePoints(JsonWriter& j, const std::string& key, const Response& r, Value value) {
  j.Key(key).BeginArray();
  for (const ResponsePoint& p : r) j.BeginArray().Double(p.hz).Double(value(p)).EndArray();
  j.EndArray();
}

}  // namespace

void PrintDesignText(const DesignOutput& d, const std::vector<Response>& responses, const RenderOptions& o,
                     const DesignAnalysis& analysis) {
  if (d.rate_applies) {
    std::printf("%s, %d Hz, %s: result %d\n", d.design.c_str(), d.rate, FormatText(d).c_str(), d.result);
  } else {
    std::printf("%s, %s: result %d\n", d.design.c_str(), FormatText(d).c_str(), d.result);
  }
  if (!d.header_hex.empty()) std::printf("header %s\n", d.header_hex.c_str());
  if (!d.sections.empty() && d.sections.front().iwl) {
    std::printf("(fixed point: real value, stored word in brackets; A1 and A2 are stored negated)\n");
  } else {
    std::printf("(A1 and A2 are stored negated: y = b0 x + b1 x1 + b2 x2 + A1 y1 + A2 y2)\n");
  }
  for (const SectionView& s : d.sections) {
    std::string line = s.name + ":";
    if (s.iwl) line += " iwl " + std::to_string(*s.iwl);
    for (size_t i = 0; i < s.values.size(); ++i) {
      line += "  " + s.coef_names[i] + " " + Number(s.values[i]);
      if (i < s.words.size()) line += " [" + std::to_string(s.words[i]) + "]";
    }
    std::printf("%s\n", line.c_str());
  }
  if (analysis.done) std::printf("%s\n", AnalysisLine(analysis).c_str());
  for (const std::string& p : analysis.problems) std::printf("problem: %s\n", p.c_str());
  if (!responses.empty()) {
    // The float design of the main pair.
    std::printf("response of the %s (Hz, dB%s%s):\n", d.curves.front().name.c_str(), o.phase ? ", degrees" : "",
                o.group_delay ? ", samples of delay" : "");
    const Response& r = responses.front();
    for (size_t i = 0; i < r.size(); i += 10) {
      std::printf("  %10.1f  %8.3f", r[i].hz, r[i].magnitude_db);
      if (o.phase) std::printf("  %8.2f", Degrees(r[i].phase));
      if (o.group_delay) std::printf("  %9.3f", r[i].group_delay);
      std::printf("\n");
    }
  }
}

void PrintDesignJson(const DesignOutput& d, const std::vector<Response>& responses, const RenderOptions& o,
                     const DesignAnalysis& analysis) {
  JsonWriter j;
  j.BeginObject().Key("design").String(d.design);
  if (d.rate_applies) j.Key("rate").Int(d.rate);
  j.Key("format").String(FormatText(d));
  j.Key("result").Int(d.result);
  if (d.result != 0) j.Key("error").String(d.reject_reason);
  if (!d.header_hex.empty()) j.Key("header").String(d.header_hex);
  j.Key("output").BeginArray();
  if (d.float_output) {
    for (float f : d.floats) j.Float(f);
  } else {
    for (int64_t w : d.words) j.Int(w);
  }
  j.EndArray();
  j.Key("sections").BeginArray();
  for (const SectionView& s : d.sections) {
    j.BeginObject().Key("name").String(s.name);
    j.Key("iwl");
    s.iwl ? j.Int(*s.iwl) : j.Null();
    for (size_t i = 0; i < s.values.size(); ++i) {
      std::string key = s.coef_names[i];
      if (key == "A1") key = "a1";
      if (key == "A2") key = "a2";
      j.Key(key).Double(s.values[i]);
    }
    if (!s.words.empty()) {
      j.Key("words").BeginArray();
      for (int64_t w : s.words) j.Int(w);
      j.EndArray();
    }
    j.EndObject();
  }
  j.EndArray();
  if (analysis.done) WriteAnalysisJson(j, analysis);
  for (size_t c = 0; c < responses.size(); ++c) {
    if (d.curves[c].faint) continue;
    const std::string key = JsonKey(d.curves[c]);
    WritePoints(j, key, responses[c], [](const ResponsePoint& p) { return p.magnitude_db; });
    if (o.phase) WritePoints(j, key + "_phase", responses[c], [](const ResponsePoint& p) { return Degrees(p.phase); });
    if (o.group_delay) {
      WritePoints(j, key + "_group_delay", responses[c], [](const ResponsePoint& p) { return p.group_delay; });
    }
  }
  j.EndObject();
  std::printf("%s\n", j.str().c_str());
}

std::string RenderDesignSvg(const DesignOutput& d, const std::vector<Response>& responses, const RenderOptions& o) {
  // One panel a quantity: magnitude always, phase and group delay on request.
  const struct {
    bool shown;
    const char* axis;
    bool db;
    double (*value)(const ResponsePoint&);
  } kPanels[] = {
      {true, "Magnitude (dB)", true, [](const ResponsePoint& p) { return p.magnitude_db; }},
      {o.phase, "Phase (degrees)", false, [](const ResponsePoint& p) { return Degrees(p.phase); }},
      {o.group_delay, "Group delay (samples)", false, [](const ResponsePoint& p) { return p.group_delay; }},
  };
  std::vector<PlotPanel> panels;
  for (const auto& kind : kPanels) {
    if (!kind.shown) continue;
    PlotPanel panel;
    panel.axis = kind.axis;
    panel.db_marks = kind.db;
    for (size_t c = 0; c < responses.size(); ++c) {
      const Curve& curve = d.curves[c];
      PlotCurve pc{PlotLabel(curve, d), curve.faint ? "#9aa7b8" : kColours[curve.pair][curve.quantised],
                   curve.quantised, curve.faint, {}};
      for (const ResponsePoint& p : responses[c]) pc.points.emplace_back(p.hz, kind.value(p));
      panel.curves.push_back(pc);
    }
    panels.push_back(panel);
  }
  std::string title = "heron design " + d.design;
  if (d.rate_applies) title += ", " + std::to_string(d.rate) + " Hz";
  title += ", " + FormatText(d);
  if (!d.detail.empty()) title += ": " + d.detail;
  return RenderChartSvg(title, panels);
}

std::string RenderDesignCsv(const DesignOutput& d, const std::vector<Response>& responses, const RenderOptions& o) {
  std::string csv = "hz";
  for (size_t c = 0; c < responses.size(); ++c) {
    if (d.curves[c].faint) continue;
    const std::string label = PlotLabel(d.curves[c], d);
    csv += "," + CsvField(label + " dB");
    if (o.phase) csv += "," + CsvField(label + " degrees");
    if (o.group_delay) csv += "," + CsvField(label + " samples");
  }
  csv += "\n";
  for (size_t i = 0; !responses.empty() && i < responses.front().size(); ++i) {
    csv += Number(responses.front()[i].hz);
    for (size_t c = 0; c < responses.size(); ++c) {
      if (d.curves[c].faint) continue;
      const ResponsePoint& p = responses[c][i];
      csv += "," + Number(p.magnitude_db);
      if (o.phase) csv += "," + Number(Degrees(p.phase));
      if (o.group_delay) csv += "," + Number(p.group_delay);
    }
    csv += "\n";
  }
  return csv;
}

}  // namespace heron_tool
