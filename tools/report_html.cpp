#include "report_html.h"

#include <cmath>
#include <cstdio>
#include <sstream>

#include "report_assets.h"
#include "svg_plot.h"

namespace heron_tool {
namespace {

// Curve colours, in order; a dashed reference takes the colour of the curve
// before it.
constexpr const char* kColours[] = {"#1f77b4", "#d62728", "#2ca02c", "#9467bd", "#ff7f0e",
                                    "#17becf", "#8c564b", "#e377c2", "#7f7f7f", "#bcbd22"};

std::string Escape(const std::string& s) { return XmlEscape(s); }

// Text inside a <script> element: "</script" would end it.
std::string ScriptText(const std::string& s) {
  std::string out;
  for (size_t i = 0; i < s.size(); ++i) {
    out += s[i];
    if (s[i] == '<' && i + 7 < s.size() && s[i + 1] == '/' && (s.compare(i + 2, 6, "script") == 0 ||
                                                                s.compare(i + 2, 6, "SCRIPT") == 0)) {
      out += '\\';
    }
  }
  return out;
}

std::string JsonString(const std::string& s) {
  std::string out = "\"";
  for (char c : s) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      char buf[8];
      std::snprintf(buf, sizeof buf, "\\u%04x", c);
      out += buf;
    } else {
      out += c;
    }
  }
  return out + "\"";
}

// Four significant digits; null for what is not a finite number.
void Numbers(std::ostringstream& s, const std::vector<double>& v, const char* format) {
  s << '[';
  for (size_t i = 0; i < v.size(); ++i) {
    if (i) s << ',';
    if (!std::isfinite(v[i])) {
      s << "null";
      continue;
    }
    char buf[32];
    std::snprintf(buf, sizeof buf, format, v[i]);
    s << buf;
  }
  s << ']';
}

std::vector<std::string> Colours(const ReportChart& c) {
  std::vector<std::string> out;
  int next = 0;
  for (const ReportCurve& curve : c.curves) {
    if (curve.dashed && !out.empty()) {
      out.push_back(out.back());
    } else {
      out.push_back(kColours[next++ % (sizeof kColours / sizeof *kColours)]);
    }
  }
  return out;
}

// The static picture: magnitude only, scaled to the page.
std::string MagnitudeSvg(const ReportChart& c, const std::vector<double>& grid) {
  const std::vector<std::string> colours = Colours(c);
  PlotPanel panel{"Magnitude (dB)", true, {}};
  for (size_t i = 0; i < c.curves.size(); ++i) {
    PlotCurve p;
    p.label = c.curves[i].label;
    p.colour = colours[i];
    p.dashed = c.curves[i].dashed;
    for (size_t k = 0; k < grid.size(); ++k) {
      if (!std::isnan(c.curves[i].magnitude_db[k])) p.points.push_back({grid[k], c.curves[i].magnitude_db[k]});
    }
    panel.curves.push_back(std::move(p));
  }
  std::string svg = RenderChartSvg(c.title + " at " + std::to_string(c.rate) + " Hz", {panel});
  // A viewBox from the drawing's own size, so that it scales with the page.
  const size_t w = svg.find("width=\""), h = svg.find("height=\"");
  if (w != std::string::npos && h != std::string::npos) {
    const std::string width = svg.substr(w + 7, svg.find('"', w + 7) - w - 7);
    const std::string height = svg.substr(h + 8, svg.find('"', h + 8) - h - 8);
    svg.insert(5, "viewBox=\"0 0 " + width + " " + height + "\" role=\"img\" ");
  }
  return svg;
}

// An energy-decay picture: dB over time, 0 to -60 dB.
std::string DecaySvg(const ModelOverview& m) {
  constexpr double kW = 360, kH = 110, kFloorDb = -60;
  const int rate = m.table_rate > 0 ? m.table_rate : m.rate;
  const double ms = m.decay_db.empty() ? 0 : 1000.0 * m.decay_db.size() / rate;
  std::ostringstream s;
  s << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << kW << ' ' << kH + 20 << "\" width=\"" << kW
    << "\" height=\"" << kH + 20 << "\" font-family=\"sans-serif\" font-size=\"10\">";
  s << "<rect x=\"30\" y=\"2\" width=\"" << kW - 34 << "\" height=\"" << kH - 4
    << "\" fill=\"none\" stroke=\"#999\"/>";
  s << "<text x=\"26\" y=\"10\" text-anchor=\"end\">0</text><text x=\"26\" y=\"" << kH - 2
    << "\" text-anchor=\"end\">-60</text>";
  std::string points;
  const size_t n = m.decay_db.size();
  const size_t step = n > 300 ? n / 300 : 1;
  for (size_t i = 0; i < n; i += step) {
    const double x = 30 + (kW - 34) * (n > 1 ? double(i) / (n - 1) : 0);
    const double y = 2 + (kH - 4) * std::min(1.0, std::max(0.0, m.decay_db[i] / kFloorDb));
    char buf[40];
    std::snprintf(buf, sizeof buf, "%.1f,%.1f ", x, y);
    points += buf;
  }
  s << "<polyline fill=\"none\" stroke=\"#1f77b4\" stroke-width=\"1.5\" points=\"" << points << "\"/>";
  char label[64];
  std::snprintf(label, sizeof label, "energy left (dB) over %.1f ms", ms);
  s << "<text x=\"" << 30 + (kW - 34) / 2 << "\" y=\"" << kH + 14 << "\" text-anchor=\"middle\">" << label
    << "</text></svg>";
  return s.str();
}

void Header(std::ostringstream& s, const ReportData& d) {
  s << "<header><h1>Route report: " << Escape(d.route_name) << "</h1>\n<table class=\"origin\">";
  s << "<tr><th>settings</th><th>bytes</th></tr>";
  for (const auto& [path, bytes] : d.origin) {
    s << "<tr><td><code>" << Escape(path) << "</code></td><td>" << bytes << "</td></tr>";
  }
  s << "</table>\n<p>Rates: ";
  for (size_t i = 0; i < d.rates.size(); ++i) s << (i ? ", " : "") << d.rates[i] << " Hz";
  s << "</p>\n<h2>Populate</h2>\n<table id=\"populate\">";
  for (const RatePopulate& p : d.populate) {
    const bool ok = p.premix >= 0 && p.postmix >= 0;
    s << "<tr id=\"populate-" << p.rate << "\" class=\"" << (ok ? "ok" : "fail") << "\"><td>" << p.rate
      << " Hz</td><td>premix " << p.premix << ", postmix " << p.postmix << "</td><td>"
      << (ok ? "populates" : "fails at " + Escape(p.failed)) << "</td><td><details><summary>trace</summary><pre>";
    for (const std::string& line : p.trace) s << Escape(line) << '\n';
    s << "</pre></details></td></tr>\n";
  }
  s << "</table>\n<h2>Findings</h2>\n";
  if (d.findings.empty()) s << "<p id=\"clean\">validate finds nothing at these rates.</p>\n";
  s << "<ol id=\"findings\">";
  for (const Finding& f : d.findings) {
    const bool error = f.severity == Severity::kError;
    const std::string anchor = FindingAnchor(d, f);
    s << "<li class=\"finding " << (error ? "error" : "warning") << "\" data-rate=\"" << f.rate << "\">"
      << "<span class=\"severity\">" << (error ? "error" : "warning") << "</span> ";
    if (f.rate != 0) s << f.rate << " Hz ";
    s << (anchor.empty() ? "" : "<a href=\"#" + anchor + "\">") << "<code>" << Escape(f.path) << "</code>"
      << (anchor.empty() ? "" : "</a>") << ": " << Escape(f.message) << "</li>\n";
  }
  s << "</ol></header>\n";
}

void Charts(std::ostringstream& s, const ReportData& d) {
  s << "<nav>";
  for (size_t i = 0; i < d.charts.size(); ++i) {
    if (i == 0 || d.charts[i].filter != d.charts[i - 1].filter) {
      s << "<a href=\"#" << ChartAnchor(d.charts[i].filter, d.charts[i].rate) << "\">" << Escape(d.charts[i].title)
        << "</a> ";
    }
  }
  s << "</nav>\n<main>\n";
  for (size_t i = 0; i < d.charts.size(); ++i) {
    const ReportChart& c = d.charts[i];
    if (i == 0 || c.filter != d.charts[i - 1].filter) {
      s << "<section class=\"filter\" data-filter=\"" << Escape(c.filter) << "\"><h2>" << Escape(c.title)
        << "</h2>\n<label class=\"overlay\"><input type=\"checkbox\"> overlay every rate</label>\n";
    }
    s << "<div class=\"chart" << (c.missing ? " missing" : "") << "\" id=\"" << ChartAnchor(c.filter, c.rate)
      << "\" data-filter=\"" << Escape(c.filter) << "\" data-rate=\"" << c.rate << "\" data-step=\""
      << Escape(c.step) << "\">\n<h3>" << Escape(c.title) << " at " << c.rate << " Hz</h3>\n<p class=\"source\">"
      << Escape(c.source) << "</p>\n";
    if (!c.analysis.empty()) s << "<p class=\"analysis\">" << Escape(c.analysis) << "</p>\n";
    if (!c.curves.empty()) {
      s << "<div class=\"views\"><button type=\"button\" data-q=\"m\" class=\"on\">Magnitude</button>"
           "<button type=\"button\" data-q=\"p\">Phase</button><button type=\"button\" data-q=\"g\">Group "
           "delay</button></div>\n<div class=\"plot\"></div>\n<figure class=\"static\">"
        << MagnitudeSvg(c, d.grid_hz) << "</figure>\n";
    }
    s << "</div>\n";
    if (i + 1 == d.charts.size() || d.charts[i + 1].filter != c.filter) s << "</section>\n";
  }
  s << "<section id=\"models\"><h2>Rooms and headphone EQ</h2>\n";
  if (d.models.empty()) s << "<p>No room or headphone EQ is loaded at these rates.</p>\n";
  if (!d.models.empty()) {
    s << "<table><tr><th>rate</th><th>what</th><th>table rate</th><th>taps</th><th>detail</th><th>energy "
         "decay</th></tr>\n";
    for (const ModelOverview& m : d.models) {
      s << "<tr class=\"model\"><td>" << m.rate << " Hz</td><td>" << Escape(m.what) << "</td><td>" << m.table_rate
        << " Hz</td><td>" << m.taps << "</td><td>" << Escape(m.detail) << "</td><td class=\"decay\">"
        << DecaySvg(m) << "</td></tr>\n";
    }
    s << "</table>\n";
  }
  s << "</section>\n</main>\n";
}

void Data(std::ostringstream& s, const ReportData& d) {
  s << "<script type=\"application/json\" id=\"report-data\">{\"grid\":";
  Numbers(s, d.grid_hz, "%.5g");
  s << ",\"charts\":[";
  for (size_t i = 0; i < d.charts.size(); ++i) {
    const ReportChart& c = d.charts[i];
    const std::vector<std::string> colours = Colours(c);
    s << (i ? ",\n" : "\n") << "{\"id\":" << JsonString(ChartAnchor(c.filter, c.rate))
      << ",\"filter\":" << JsonString(c.filter) << ",\"rate\":" << c.rate << ",\"curves\":[";
    for (size_t k = 0; k < c.curves.size(); ++k) {
      const ReportCurve& v = c.curves[k];
      s << (k ? "," : "") << "{\"label\":" << ScriptText(JsonString(v.label)) << ",\"colour\":\"" << colours[k]
        << "\",\"dashed\":" << (v.dashed ? "true" : "false") << ",\"m\":";
      Numbers(s, v.magnitude_db, "%.4g");
      s << ",\"p\":";
      Numbers(s, v.phase_deg, "%.4g");
      s << ",\"g\":";
      Numbers(s, v.group_delay_ms, "%.4g");
      s << '}';
    }
    s << "]}";
  }
  s << "]}</script>\n";
}

}  // namespace

bool ReportIsInteractive() { return kChartScript[0] != '\0'; }

std::string RenderReportHtml(const ReportData& d) {
  std::ostringstream s;
  s << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
    // Everything the page needs is inside it; nothing may be fetched.
    << "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; script-src 'unsafe-inline'; "
       "style-src 'unsafe-inline'; img-src data:\">\n"
    << "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
    << "<meta name=\"generator\" content=\"heron report" << (ReportIsInteractive() ? ", uPlot " : "")
    << kChartLibraryVersion << "\">\n"
    << "<title>heron report: " << Escape(d.route_name) << " (" << Escape(d.route_path) << ")</title>\n<style>\n"
    << kChartStyle << '\n' << kPageStyle << "</style>\n</head>\n<body>\n";
  Header(s, d);
  Charts(s, d);
  if (ReportIsInteractive()) {
    Data(s, d);
    s << "<script>\n" << ScriptText(kChartScript) << "\n</script>\n<script>\n" << ScriptText(kPageScript)
      << "\n</script>\n";
  }
  s << "</body>\n</html>\n";
  return s.str();
}

}  // namespace heron_tool
