#include "lumetra/levels/level_ramp.h"

#include <algorithm>

namespace lumetra {

Levels levelsOf(ValueRange<unsigned char> range) {
    if (range.smallest > range.largest)
        return {0, 255};
    if (range.smallest + 1 < range.largest)
        return {range.smallest, range.largest};
    const int white = std::min<int>(range.largest, 254) + 1;
    const int black = std::max<int>(range.smallest, 1) - 1;
    return {static_cast<unsigned short>(black), static_cast<unsigned short>(white)};
}

LevelRamp levelRamp(Levels levels) {
    const int white = std::clamp<int>(levels.white, 2, 255);
    const int black = std::min({static_cast<int>(levels.black), 253, white - 1});
    const int span = white - black;

    // With x = v − black, the value is the whole part of (255·x + span/2) / span. Both sides of the
    // division are multiplied by what brings the divisor to 128 to 255. Its reciprocal then fills
    // 16 bits, and is off by so little that one more in the dividend makes up for one rounded down.
    constexpr int one = 1 << (16 + LevelRamp::shift);
    const int factor = 255 / span;
    const int divisor = span * factor;
    const int reciprocal = std::min((one + divisor / 2) / divisor, 65535);
    const int scale = 255 * factor;
    const int offset = divisor / 2 + (reciprocal * divisor < one ? 1 : 0);
    return {static_cast<unsigned char>(black), static_cast<unsigned char>(white),
            static_cast<std::uint16_t>(scale), static_cast<std::uint16_t>(offset - black * scale),
            static_cast<std::uint16_t>(reciprocal)};
}

} // namespace lumetra
