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

std::string Escape(const std::string& s) {
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

}  // namespace

std::string RenderResponseSvg(const std::string& title, const std::vector<PlotCurve>& curves) {
  double fmin = 1e300, fmax = 0, dmin = 1e300, dmax = -1e300;
  for (const auto& c : curves) {
    for (const auto& [hz, db] : c.points) {
      fmin = std::min(fmin, hz);
      fmax = std::max(fmax, hz);
      if (std::isfinite(db)) {
        dmin = std::min(dmin, db);
        dmax = std::max(dmax, db);
      }
    }
  }
  if (fmax <= fmin) {
    fmin = 10;
    fmax = 24000;
  }
  if (dmax < dmin) {
    dmin = -1;
    dmax = 1;
  }
  // Round the dB range out to multiples of 6 dB, with at least 12 dB shown.
  dmin = std::floor(std::max(dmin, -150.0) / 6.0) * 6.0;
  dmax = std::ceil(std::min(dmax, 150.0) / 6.0) * 6.0;
  if (dmax - dmin < 12) dmin = dmax - 12;
  const double dstep = (dmax - dmin) > 72 ? 24 : (dmax - dmin) > 36 ? 12 : 6;

  const double pw = kWidth - kLeft - kRight, ph = kHeight - kTop - kBottom;
  auto x_of = [&](double hz) { return kLeft + pw * std::log(hz / fmin) / std::log(fmax / fmin); };
  auto y_of = [&](double db) {
    db = std::clamp(db, dmin, dmax);
    return kTop + ph * (dmax - db) / (dmax - dmin);
  };

  std::ostringstream s;
  s << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << kWidth << "\" height=\"" << kHeight
    << "\" font-family=\"sans-serif\" font-size=\"12\">\n";
  s << "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
  s << "<text x=\"" << kWidth / 2 << "\" y=\"22\" text-anchor=\"middle\" font-size=\"15\">"
    << Escape(title) << "</text>\n";
  // Frequency grid: decades and their 2x, 5x steps.
  for (double decade = 1; decade <= fmax * 10; decade *= 10) {
    for (double m : {1.0, 2.0, 5.0}) {
      const double hz = decade * m;
      if (hz < fmin || hz > fmax) continue;
      const double x = x_of(hz);
      s << "<line x1=\"" << Num(x) << "\" y1=\"" << kTop << "\" x2=\"" << Num(x) << "\" y2=\""
        << kTop + ph << "\" stroke=\"#ddd\"/>\n";
      s << "<text x=\"" << Num(x) << "\" y=\"" << kTop + ph + 16 << "\" text-anchor=\"middle\">"
        << HzLabel(hz) << "</text>\n";
    }
  }
  for (double db = dmin; db <= dmax + 1e-9; db += dstep) {
    const double y = y_of(db);
    s << "<line x1=\"" << kLeft << "\" y1=\"" << Num(y) << "\" x2=\"" << kLeft + pw << "\" y2=\""
      << Num(y) << "\" stroke=\"#ddd\"/>\n";
    s << "<text x=\"" << kLeft - 6 << "\" y=\"" << Num(y + 4) << "\" text-anchor=\"end\">" << db
      << "</text>\n";
  }
  s << "<rect x=\"" << kLeft << "\" y=\"" << kTop << "\" width=\"" << pw << "\" height=\"" << ph
    << "\" fill=\"none\" stroke=\"black\"/>\n";
  s << "<text x=\"" << kLeft + pw / 2 << "\" y=\"" << kHeight - 18
    << "\" text-anchor=\"middle\">Frequency (Hz)</text>\n";
  s << "<text transform=\"translate(18," << kTop + ph / 2
    << ") rotate(-90)\" text-anchor=\"middle\">Magnitude (dB)</text>\n";
  // Curves first, then the legend in the plot's lower-left corner on a
  // white box sized to the longest label.
  size_t longest = 0;
  for (const auto& c : curves) {
    longest = std::max(longest, c.label.size());
    s << "<polyline fill=\"none\" stroke=\"" << Escape(c.colour) << "\" stroke-width=\"1.6\""
      << (c.dashed ? " stroke-dasharray=\"6,4\"" : "") << " points=\"";
    for (const auto& [hz, db] : c.points) {
      if (!std::isfinite(db)) continue;
      s << Num(x_of(hz)) << ',' << Num(y_of(db)) << ' ';
    }
    s << "\"/>\n";
  }
  const double box_w = 48 + 6.8 * longest, box_h = 10 + 18.0 * curves.size();
  const double box_x = kLeft + 8, box_y = kTop + ph - box_h - 8;
  s << "<rect x=\"" << Num(box_x) << "\" y=\"" << Num(box_y) << "\" width=\"" << Num(box_w) << "\" height=\""
    << Num(box_h) << "\" fill=\"white\" fill-opacity=\"0.9\" stroke=\"#999\"/>\n";
  for (size_t i = 0; i < curves.size(); ++i) {
    const PlotCurve& c = curves[i];
    const double ly = box_y + 18 + 18.0 * i;
    s << "<line x1=\"" << Num(box_x + 8) << "\" y1=\"" << Num(ly - 4) << "\" x2=\"" << Num(box_x + 38) << "\" y2=\""
      << Num(ly - 4) << "\" stroke=\"" << Escape(c.colour) << "\" stroke-width=\"2\""
      << (c.dashed ? " stroke-dasharray=\"6,4\"" : "") << "/>\n";
    s << "<text x=\"" << Num(box_x + 44) << "\" y=\"" << Num(ly) << "\">" << Escape(c.label) << "</text>\n";
  }
  s << "</svg>\n";
  return s.str();
}

}  // namespace heron_tool
