// Colours for channels by their number.
#pragma once

#include "render/colour.h"

#include <cstddef>
#include <vector>

namespace lumetra {

/// Colours for so many channels that people with any colour vision can tell apart: magenta and
/// green for up to two; light blue, amber and pink for more; light gray from the fourth on.
/// @return As many colours as channels.
LUMETRA_RENDER_EXPORT std::vector<Colour> safePalette(std::size_t channels);

} // namespace lumetra
