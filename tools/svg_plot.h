// Draws responses as an SVG chart: one panel a quantity (magnitude in dB,
// phase, group delay) over a shared log-frequency axis.
#ifndef QUILLHERON_TOOLS_SVG_PLOT_H_
#define QUILLHERON_TOOLS_SVG_PLOT_H_

#include <string>
#include <utility>
#include <vector>

namespace heron_tool {

struct PlotCurve {
  std::string label;
  std::string colour;  // any SVG colour
  bool dashed = false;
  bool faint = false;  // thin and light, left out of the legend
  std::vector<std::pair<double, double>> points;  // (Hz, value)
};

struct PlotPanel {
  std::string axis;       // "Magnitude (dB)"
  bool db_marks = false;  // label 0 dB and mark -3 dB
  std::vector<PlotCurve> curves;
};

// `s` with the characters XML gives a meaning (< > & ") escaped.
std::string XmlEscape(const std::string& s);

// A complete SVG document: the title, then the panels one above the other,
// each with labelled axes, a grid and a legend. A curve with no finite point
// is named in its panel as "not a number" instead of being drawn.
std::string RenderChartSvg(const std::string& title, const std::vector<PlotPanel>& panels);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_SVG_PLOT_H_
