#include "lumetra/levels/colour_levels.h"

#include "lumetra/levels/pixel_count.h"

namespace lumetra {

TS_LEVELS colourLevels(const ColourRanges& ranges) {
    const Levels blue = levelsOf(ranges[0]);
    const Levels green = levelsOf(ranges[1]);
    const Levels red = levelsOf(ranges[2]);
    return {blue.black, green.black, red.black, blue.white, green.white, red.white};
}

Stretch<3> colourStretch(const TS_LEVELS& levels) {
    return Stretch<3>({Levels{levels.wLowB, levels.wHighB}, Levels{levels.wLowG, levels.wHighG},
                       Levels{levels.wLowR, levels.wHighR}});
}

} // namespace lumetra

bool Lumetra::AutoCountHistoRGB24(unsigned char* buf, int w, int h, TS_LEVELS& levels) {
    if (!buf)
        return false;
    lumetra::ColourRanges ranges;
    lumetra::includeSamples<unsigned char>(ranges, buf, 3 * lumetra::pixelCount(w, h));
    levels = lumetra::colourLevels(ranges);
    return true;
}

bool Lumetra::StretchLevelsRGB24(TS_LEVELS levels, unsigned char* buf, int w, int h) {
    if (!buf)
        return false;
    lumetra::colourStretch(levels)(buf, 3 * lumetra::pixelCount(w, h));
    return true;
}
