// Draws magnitude responses as an SVG chart: dB over log frequency.
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
  std::vector<std::pair<double, double>> points;  // (Hz, dB)
};

// A complete SVG document with labelled axes, a grid and a legend.
std::string RenderResponseSvg(const std::string& title, const std::vector<PlotCurve>& curves);

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_SVG_PLOT_H_
