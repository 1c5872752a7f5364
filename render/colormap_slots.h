// The colours of a colormap as colouring takes them.
#pragma once

#include "render/colour.h"

#include <cstddef>

namespace lumetra {

/// The slots that the values of an image are sorted into, from the smallest to the largest.
constexpr std::size_t slotCount = 255;

/// The colour of a slot: as many colours from first to last of the 256.
Colour colourOfSlot(const Colormap& colormap, std::size_t slot);

} // namespace lumetra
