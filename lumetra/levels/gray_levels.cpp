#include "lumetra/lumetra"

#include "lumetra/levels/level_table.h"
#include "lumetra/levels/pixel_count.h"
#include "lumetra/levels/sample_range.h"

bool Lumetra::AutoCountHistoGray(unsigned char* buf, int w, int h, unsigned short* low,
                                 unsigned short* high) {
    if (!buf)
        return false;

    lumetra::Levels levels{0, 255};
    if (const std::size_t count = lumetra::pixelCount(w, h)) {
        const auto [gray] = lumetra::channelRanges<1>(buf, count);
        levels = lumetra::withMinimumGap({gray.smallest, gray.largest});
    }
    *low = levels.black;
    *high = levels.white;
    return true;
}

bool Lumetra::StretchLevelsGray(unsigned short low, unsigned short high, unsigned char* buf, int w,
                                int h) {
    if (!buf)
        return false;

    const lumetra::LevelTable table = lumetra::levelTable({low, high});
    const std::size_t count = lumetra::pixelCount(w, h);
    for (std::size_t i = 0; i < count; ++i)
        buf[i] = table[buf[i]];
    return true;
}
