#include "lumetra/lumetra"

#include "lumetra/levels/level_ramp.h"
#include "lumetra/levels/pixel_count.h"

bool Lumetra::AutoCountHistoGray(unsigned char* buf, int w, int h, unsigned short* low,
                                 unsigned short* high) {
    if (!buf)
        return false;
    lumetra::ColourRanges ranges; // three that together cover the single channel
    lumetra::includeValues<unsigned char>(ranges, buf, lumetra::pixelCount(w, h));
    const lumetra::Levels levels = lumetra::levelsOf(lumetra::merged(ranges));
    *low = levels.black;
    *high = levels.white;
    return true;
}

bool Lumetra::StretchLevelsGray(unsigned short low, unsigned short high, unsigned char* buf, int w,
                                int h) {
    if (!buf)
        return false;
    const lumetra::Stretch<1> stretch({lumetra::Levels{low, high}});
    stretch(buf, lumetra::pixelCount(w, h));
    return true;
}
