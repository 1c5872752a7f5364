#include "lumetra/lumetra"

#include "lumetra/levels/level_table.h"
#include "lumetra/levels/pixel_count.h"
#include "lumetra/levels/sample_range.h"

bool Lumetra::AutoCountHistoRGB24(unsigned char* buf, int w, int h, TS_LEVELS& levels) {
    if (!buf)
        return false;

    lumetra::Levels blue{0, 255};
    lumetra::Levels green{0, 255};
    lumetra::Levels red{0, 255};
    if (const std::size_t count = lumetra::pixelCount(w, h)) {
        const auto [b, g, r] = lumetra::channelRanges<3>(buf, 3 * count);
        blue = lumetra::withMinimumGap({b.smallest, b.largest});
        green = lumetra::withMinimumGap({g.smallest, g.largest});
        red = lumetra::withMinimumGap({r.smallest, r.largest});
    }
    levels = {blue.black, green.black, red.black, blue.white, green.white, red.white};
    return true;
}

bool Lumetra::StretchLevelsRGB24(TS_LEVELS levels, unsigned char* buf, int w, int h) {
    if (!buf)
        return false;

    const lumetra::LevelTable blue = lumetra::levelTable({levels.wLowB, levels.wHighB});
    const lumetra::LevelTable green = lumetra::levelTable({levels.wLowG, levels.wHighG});
    const lumetra::LevelTable red = lumetra::levelTable({levels.wLowR, levels.wHighR});
    unsigned char* const end = buf + 3 * lumetra::pixelCount(w, h);
    for (unsigned char* pixel = buf; pixel != end; pixel += 3) {
        pixel[0] = blue[pixel[0]];
        pixel[1] = green[pixel[1]];
        pixel[2] = red[pixel[2]];
    }
    return true;
}
