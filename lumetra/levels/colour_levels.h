// Between the levels of a 24-bit picture and those of its channels.
#pragma once

#include "lumetra/lumetra"

#include "lumetra/levels/level_ramp.h"
#include "lumetra/levels/sample_range.h"

namespace lumetra {

/// The automatic levels of pixels with these ranges; the neutral record if there were no pixels.
TS_LEVELS colourLevels(const ColourRanges& ranges);

/// The stretch of 24-bit pixels through these levels.
Stretch<3> colourStretch(const TS_LEVELS& levels);

} // namespace lumetra
