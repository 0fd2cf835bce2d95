// heron design peq: the --band argument and the band-type help.
#include "design_bands.h"

#include <cstdio>
#include <sstream>
#include <vector>

#include "designer_catalogue.h"
#include "message_io.h"

namespace heron_tool {
namespace {

ToolError Usage(const std::string& reason) { return ToolError{"--band", reason, kExitInputError}; }

int BandTypeFromText(const std::string& text) {
  for (const qh_design::BandType& t : qh_design::BandTypes()) {
    if (text == t.name) return t.value;
  }
  try {
    size_t used = 0;
    const int value = std::stoi(text, &used);
    if (used == text.size()) return value;
  } catch (const std::exception&) {
  }
  std::string names;
  for (const qh_design::BandType& t : qh_design::BandTypes()) names += std::string(t.name) + ", ";
  throw Usage("unknown band type '" + text + "' (" + names + "or a number)");
}

double NumberField(const std::string& text, const std::string& band) {
  try {
    size_t used = 0;
    const double v = std::stod(text, &used);
    if (used == text.size()) return v;
  } catch (const std::exception&) {
  }
  throw Usage("'" + band + "': '" + text + "' is not a number");
}

}  // namespace

OVAParametriceqBandSpec ParseBand(const std::string& text) {
  std::vector<std::string> parts;
  std::stringstream in(text);
  for (std::string item; std::getline(in, item, ',');) parts.push_back(item);
  if (parts.size() != 4 && parts.size() != 5) throw Usage("takes TYPE,FREQ,Q,GAIN[,INVERT], not '" + text + "'");
  OVAParametriceqBandSpec band{};
  band.type = BandTypeFromText(parts[0]);
  band.center_freq = static_cast<float>(NumberField(parts[1], text));
  band.q = static_cast<float>(NumberField(parts[2], text));
  band.gain = static_cast<float>(NumberField(parts[3], text));
  if (parts.size() == 5) {
    if (parts[4] != "0" && parts[4] != "1") throw Usage("'" + text + "': INVERT must be 0 or 1");
    band.invert = parts[4] == "1";
  }
  return band;
}

std::string BandTypeFooter() {
  std::string s = "Band types (name or number):\n";
  for (const qh_design::BandType& t : qh_design::BandTypes()) {
    char line[200];
    std::snprintf(line, sizeof line, "  %d %-12s %s; Q: %s\n", t.value, t.name, t.response,
                  t.q_means ? t.q_means : "unused");
    s += line;
  }
  s += "traditional and peaking both boost or cut around FREQ: traditional keeps boost and cut\n"
       "mirror images (a cut undoes the same boost), peaking keeps its bandwidth set by Q.\n"
       "INVERT 1 negates the band's numerator (b0, b1, b2): the band's output changes polarity.\n"
       "FREQ in Hz, GAIN in dB, Q in engine units (the shelf slope for the shelves).";
  return s;
}

}  // namespace heron_tool
