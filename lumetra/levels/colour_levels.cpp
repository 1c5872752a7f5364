#include "lumetra/lumetra"

#include "lumetra/levels/level_ramp.h"
#include "lumetra/levels/pixel_count.h"

bool Lumetra::AutoCountHistoRGB24(unsigned char* buf, int w, int h, TS_LEVELS& levels) {
    if (!buf)
        return false;
    lumetra::ColourRanges ranges;
    lumetra::includeValues<unsigned char>(ranges, buf, 3 * lumetra::pixelCount(w, h));
    const lumetra::Levels blue = lumetra::levelsOf(ranges[0]);
    const lumetra::Levels green = lumetra::levelsOf(ranges[1]);
    const lumetra::Levels red = lumetra::levelsOf(ranges[2]);
    levels = {blue.black, green.black, red.black, blue.white, green.white, red.white};
    return true;
}

bool Lumetra::StretchLevelsRGB24(TS_LEVELS levels, unsigned char* buf, int w, int h) {
    if (!buf)
        return false;
    const lumetra::Stretch<3> stretch({lumetra::Levels{levels.wLowB, levels.wHighB},
                                       lumetra::Levels{levels.wLowG, levels.wHighG},
                                       lumetra::Levels{levels.wLowR, levels.wHighR}});
    stretch(buf, 3 * lumetra::pixelCount(w, h));
    return true;
}
