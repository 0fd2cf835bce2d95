#include "svg_plot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sstream>

#include "json_writer.h"

namespace heron_tool {
namespace {

constexpr double kWidth = 860, kHeight = 480;
constexpr double kLeft = 70, kRight = 20, kTop = 40, kBottom = 60;


std::string Num(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.2f", v);
  return buf;
}

std::string HzLabel(double hz) {
  char buf[32];
  if (hz >= 1000) {
    std::snprintf(buf, sizeof buf, "%gk", hz / 1000);
  } else {
    std::snprintf(buf, sizeof buf, "%g", hz);
  }
  return buf;
}

struct Range {
  double lo, hi, step;
};

// The value range of a panel rounded out to a readable grid: multiples of
// 6 dB (at least 12 dB shown) for magnitudes, a 1-2-5 step otherwise.
Range ValueRange(const PlotPanel& panel) {
  double lo = 1e300, hi = -1e300;
  for (const auto& c : panel.curves) {
    for (const auto& [hz, v] : c.points) {
      if (!std::isfinite(v)) continue;
      lo = std::min(lo, v);
      hi = std::max(hi, v);
    }
  }
  if (hi < lo) lo = -1, hi = 1;
  if (panel.db_marks) {
    lo = std::floor(std::max(lo, -150.0) / 6.0) * 6.0;
    hi = std::ceil(std::min(hi, 150.0) / 6.0) * 6.0;
    if (hi - lo < 12) lo = hi - 12;
    return {lo, hi, (hi - lo) > 72 ? 24.0 : (hi - lo) > 36 ? 12.0 : 6.0};
  }
  if (hi - lo < 1e-9) lo -= 1, hi += 1;
  const double raw = (hi - lo) / 6, decade = std::pow(10.0, std::floor(std::log10(raw)));
  const double step = raw <= decade ? decade : raw <= 2 * decade ? 2 * decade : raw <= 5 * decade ? 5 * decade : 10 * decade;
  return {std::floor(lo / step) * step, std::ceil(hi / step) * step, step};
}

void DrawPanel(std::ostringstream& s, const PlotPanel& panel, double top, double height, double fmin, double fmax,
               bool frequency_labels) {
  const double pw = kWidth - kLeft - kRight;
  const Range r = ValueRange(panel);
  auto x_of = [&](double hz) { return kLeft + pw * std::log(hz / fmin) / std::log(fmax / fmin); };
  auto y_of = [&](double v) { return top + height * (r.hi - std::clamp(v, r.lo, r.hi)) / (r.hi - r.lo); };
  // Frequency grid: decades and their 2x, 5x steps.
  for (double decade = 1; decade <= fmax * 10; decade *= 10) {
    for (double m : {1.0, 2.0, 5.0}) {
      const double hz = decade * m;
      if (hz < fmin || hz > fmax) continue;
      const double x = x_of(hz);
      s << "<line x1=\"" << Num(x) << "\" y1=\"" << Num(top) << "\" x2=\"" << Num(x) << "\" y2=\""
        << Num(top + height) << "\" stroke=\"#ddd\"/>\n";
      if (frequency_labels) {
        s << "<text x=\"" << Num(x) << "\" y=\"" << Num(top + height + 16) << "\" text-anchor=\"middle\">"
          << HzLabel(hz) << "</text>\n";
      }
    }
  }
  // Grid lines at multiples of the step, so 0 is one of them when in range.
  for (double v = std::ceil(r.lo / r.step - 1e-9) * r.step; v <= r.hi + 1e-9; v += r.step) {
    const double y = y_of(v);
    const bool zero_db = panel.db_marks && std::abs(v) < 1e-9;
    s << "<line x1=\"" << kLeft << "\" y1=\"" << Num(y) << "\" x2=\"" << kLeft + pw << "\" y2=\"" << Num(y)
      << "\" stroke=\"" << (zero_db ? "#888" : "#ddd") << "\"/>\n";
    s << "<text x=\"" << kLeft - 6 << "\" y=\"" << Num(y + 4) << "\" text-anchor=\"end\">" << (zero_db ? 0.0 : v)
      << (zero_db ? " dB" : "") << "</text>\n";
  }
  if (panel.db_marks && r.lo < -3 && r.hi > -3) {
    const double y = y_of(-3);
    s << "<line x1=\"" << kLeft << "\" y1=\"" << Num(y) << "\" x2=\"" << kLeft + pw << "\" y2=\"" << Num(y)
      << "\" stroke=\"#c88\" stroke-dasharray=\"2,3\"/>\n";
    s << "<text x=\"" << kLeft + pw - 4 << "\" y=\"" << Num(y - 3) << "\" text-anchor=\"end\" fill=\"#a66\">-3 dB</text>\n";
  }
  s << "<rect x=\"" << kLeft << "\" y=\"" << Num(top) << "\" width=\"" << pw << "\" height=\"" << Num(height)
    << "\" fill=\"none\" stroke=\"black\"/>\n";
  s << "<text transform=\"translate(18," << Num(top + height / 2) << ") rotate(-90)\" text-anchor=\"middle\">"
    << XmlEscape(panel.axis) << "</text>\n";
  // Faint curves under the others; a curve with nothing finite is named.
  std::vector<const PlotCurve*> legend, not_a_number;
  for (int pass = 0; pass < 2; ++pass) {
    for (const auto& c : panel.curves) {
      if (c.faint != (pass == 0)) continue;
      std::string points;
      for (const auto& [hz, v] : c.points) {
        if (std::isfinite(v)) points += Num(x_of(hz)) + ',' + Num(y_of(v)) + ' ';
      }
      if (points.empty()) {
        not_a_number.push_back(&c);
        continue;
      }
      s << "<polyline fill=\"none\" stroke=\"" << XmlEscape(c.colour) << "\" stroke-width=\"" << (c.faint ? "1" : "1.6")
        << "\"" << (c.faint ? " stroke-opacity=\"0.7\"" : "") << (c.dashed ? " stroke-dasharray=\"6,4\"" : "")
        << " points=\"" << points << "\"/>\n";
      if (!c.faint) legend.push_back(&c);
    }
  }
  for (size_t i = 0; i < not_a_number.size(); ++i) {
    s << "<text x=\"" << kLeft + pw / 2 << "\" y=\"" << Num(top + height / 2 + 18.0 * i)
      << "\" text-anchor=\"middle\" fill=\"#b00\">" << XmlEscape(not_a_number[i]->label) << ": not a number</text>\n";
  }
  // The legend in the panel's lower-left corner on a white box sized to the
  // longest label.
  if (legend.empty()) return;
  size_t longest = 0;
  for (const PlotCurve* c : legend) longest = std::max(longest, c->label.size());
  const double box_w = 48 + 6.8 * longest, box_h = 10 + 18.0 * legend.size();
  const double box_x = kLeft + 8, box_y = top + height - box_h - 8;
  s << "<rect x=\"" << Num(box_x) << "\" y=\"" << Num(box_y) << "\" width=\"" << Num(box_w) << "\" height=\""
    << Num(box_h) << "\" fill=\"white\" fill-opacity=\"0.9\" stroke=\"#999\"/>\n";
  for (size_t i = 0; i < legend.size(); ++i) {
    const PlotCurve& c = *legend[i];
    const double ly = box_y + 18 + 18.0 * i;
    s << "<line x1=\"" << Num(box_x + 8) << "\" y1=\"" << Num(ly - 4) << "\" x2=\"" << Num(box_x + 38) << "\" y2=\""
      << Num(ly - 4) << "\" stroke=\"" << XmlEscape(c.colour) << "\" stroke-width=\"2\""
      << (c.dashed ? " stroke-dasharray=\"6,4\"" : "") << "/>\n";
    s << "<text x=\"" << Num(box_x + 44) << "\" y=\"" << Num(ly) << "\">" << XmlEscape(c.label) << "</text>\n";
  }
}

}  // namespace

std::string XmlEscape(const std::string& s) {
  std::string out;
  for (char c : s) {
    switch (c) {
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '&': out += "&amp;"; break;
      case '"': out += "&quot;"; break;
      default: out += c;
    }
  }
  return out;
}

std::string RenderChartSvg(const std::string& title, const std::vector<PlotPanel>& panels) {
  double fmin = 1e300, fmax = 0;
  for (const auto& panel : panels) {
    for (const auto& c : panel.curves) {
      for (const auto& [hz, v] : c.points) {
        fmin = std::min(fmin, hz);
        fmax = std::max(fmax, hz);
      }
    }
  }
  if (fmax <= fmin) fmin = 10, fmax = 24000;
  const double panel_height = kHeight - kTop - kBottom, gap = 24;
  const double height = kTop + panels.size() * (panel_height + gap) - gap + kBottom;
  std::ostringstream s;
  s << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << kWidth << "\" height=\"" << height
    << "\" font-family=\"sans-serif\" font-size=\"12\">\n";
  s << "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
  s << "<text x=\"" << kWidth / 2 << "\" y=\"22\" text-anchor=\"middle\" font-size=\"15\">" << XmlEscape(title)
    << "</text>\n";
  for (size_t i = 0; i < panels.size(); ++i) {
    DrawPanel(s, panels[i], kTop + i * (panel_height + gap), panel_height, fmin, fmax, i + 1 == panels.size());
  }
  s << "<text x=\"" << kLeft + (kWidth - kLeft - kRight) / 2 << "\" y=\"" << height - 18
    << "\" text-anchor=\"middle\">Frequency (Hz)</text>\n";
  s << "</svg>\n";
  return s.str();
}

}  // namespace heron_tool
