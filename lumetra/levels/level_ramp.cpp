#include "lumetra/levels/level_ramp.h"

#include <cstdlib>

namespace lumetra {
namespace {

/// 255·x/span, rounded, halves up.
constexpr std::int64_t rounded(std::int64_t x, std::int64_t span) {
    return (2 * 255 * x + span) / (2 * span);
}

/// The smallest offset with which (x·scale + offset)·multiplier has the right high half for every x
/// up to span, or −1 if there is none.
std::int64_t exactOffset(std::int64_t span, std::int64_t scale, std::int64_t multiplier) {
    std::int64_t least = 0;
    std::int64_t most = 65535 - span * scale;
    for (std::int64_t x = 0; x <= span && least <= most; ++x) {
        const std::int64_t value = rounded(x, span);
        const std::int64_t first = (value * 65536 + multiplier - 1) / multiplier;
        const std::int64_t last = ((value + 1) * 65536 - 1) / multiplier;
        least = std::max(least, first - x * scale);
        most = std::min(most, last - x * scale);
    }
    return least <= most ? least : -1;
}

} // namespace

Levels levelsOf(SampleRange<unsigned char> range) {
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
    const std::int64_t span = white - black;

    // The product of two 16-bit factors comes much closer to 255/span than one factor could. Every
    // span has such a pair; scales so far off that no offset could help are passed over quickly.
    constexpr std::int64_t unit = 255 * 65536;
    for (std::int64_t scale = 65535 / (span + 1);; --scale) {
        const std::int64_t multiplier = (2 * unit + span * scale) / (2 * span * scale);
        if (std::abs(span * scale * multiplier - unit) * span > 4 * 65536)
            continue;
        const std::int64_t offset = exactOffset(span, scale, multiplier);
        if (offset >= 0)
            return {static_cast<unsigned char>(black), static_cast<unsigned char>(span),
                    static_cast<std::uint16_t>(scale), static_cast<std::uint16_t>(offset),
                    static_cast<std::uint16_t>(multiplier)};
    }
}

} // namespace lumetra
