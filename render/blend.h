// How a channel is laid over the channels before it.
#pragma once

#include "render/export.h"

#include <string>
#include <string_view>

namespace lumetra {

/// What becomes of a component of a pixel, a, and of that of the next channel, b, where m is the
/// largest of the bit depth. The C interface has the same numbers.
enum class Blend {
    add,    ///< min(a + b, m): light on light.
    screen, ///< m − (m − a)(m − b) / m, rounded: light that never saturates; no halves occur.
    darkest, ///< min(a, b): for what is dark on a bright ground, such as transmitted light.
};

/// `add`, `screen` or `darkest`.
LUMETRA_RENDER_EXPORT std::string blendText(Blend blend);

/// Understands what `blendText` gives.
/// @throws RenderError for anything else.
LUMETRA_RENDER_EXPORT Blend parseBlend(std::string_view text);

} // namespace lumetra
