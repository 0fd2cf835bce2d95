// heron design peq: parsing of --band TYPE,FREQ,Q,GAIN[,INVERT] and the help
// text that lists the band types from the designer catalogue.
#ifndef QUILLHERON_TOOLS_DESIGN_BANDS_H_
#define QUILLHERON_TOOLS_DESIGN_BANDS_H_

#include <string>

#include "quillheron_filterdesign.h"

namespace heron_tool {

// One band; TYPE is a band type's name or number. Throws ToolError (usage).
OVAParametriceqBandSpec ParseBand(const std::string& text);

// The band types with their numbers, what INVERT does, traditional against
// peaking, and the units of the band fields.
std::string BandTypeFooter();

}  // namespace heron_tool

#endif  // QUILLHERON_TOOLS_DESIGN_BANDS_H_
