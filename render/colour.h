// A colour of the screen.
#pragma once

#include "render/export.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lumetra {

/// A colour in sRGB, each component from 0 to 255.
struct Colour {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
};

inline bool operator==(Colour a, Colour b) {
    return a.red == b.red && a.green == b.green && a.blue == b.blue;
}
inline bool operator!=(Colour a, Colour b) { return !(a == b); }

/// A colour for each of 256 steps from dark to bright: a LUT, also called a colormap.
using Colormap = std::array<Colour, 256>;

/// `#rrggbb`, with small letters.
LUMETRA_RENDER_EXPORT std::string toHex(Colour colour);

/// Understands `#rrggbb`, letters of either case; none for anything else.
LUMETRA_RENDER_EXPORT std::optional<Colour> parseHex(std::string_view text);

} // namespace lumetra
