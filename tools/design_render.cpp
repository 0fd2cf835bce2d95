// The renderers of `heron design`: text, JSON and SVG, each in one place.
// They print a DesignOutput and the responses computed for its curves.
#include <cstdio>

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

// Float design and de-quantised form of each pair.
const char* const kColours[2][2] = {{"#1f5fbf", "#d0301f"}, {"#2f8f2f", "#b07010"}};

}  // namespace

void PrintDesignText(const DesignOutput& d, const std::vector<Response>& responses) {
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
  if (!responses.empty()) {
    // The float design of the main pair.
    std::printf("response of the %s (Hz, dB):\n", d.curves.front().name.c_str());
    const Response& r = responses.front();
    for (size_t i = 0; i < r.size(); i += 10) std::printf("  %10.1f  %8.3f\n", r[i].first, r[i].second);
  }
}

void PrintDesignJson(const DesignOutput& d, const std::vector<Response>& responses) {
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
  for (size_t c = 0; c < responses.size(); ++c) {
    j.Key(JsonKey(d.curves[c])).BeginArray();
    for (const auto& [hz, db] : responses[c]) j.BeginArray().Double(hz).Double(db).EndArray();
    j.EndArray();
  }
  j.EndObject();
  std::printf("%s\n", j.str().c_str());
}

std::string RenderDesignSvg(const DesignOutput& d, const std::vector<Response>& responses) {
  std::vector<PlotCurve> curves;
  for (size_t c = 0; c < responses.size(); ++c) {
    const Curve& curve = d.curves[c];
    curves.push_back({PlotLabel(curve, d), kColours[curve.pair][curve.quantised], curve.quantised, responses[c]});
  }
  std::string title = "heron design " + d.design;
  if (d.rate_applies) title += ", " + std::to_string(d.rate) + " Hz";
  return RenderResponseSvg(title + ", " + FormatText(d), curves);
}

}  // namespace heron_tool
