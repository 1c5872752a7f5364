#include "render/palette.h"

namespace lumetra {

std::vector<Colour> safePalette(std::size_t channels) {
    constexpr Colour neutral{0xd8, 0xd8, 0xd8};
    std::vector<Colour> colours{{0xff, 0, 0xff}, {0, 0xff, 0}};
    if (channels > 2) // bright ones of the blue, the orange and the neutral side
        colours = {{0x3d, 0x9b, 0xff}, {0xff, 0xb0, 0}, {0xff, 0x3f, 0xae}, neutral};
    colours.resize(channels, neutral);
    return colours;
}

} // namespace lumetra
