#include "lumetra/levels/level_table.h"

#include <algorithm>
#include <cmath>

namespace lumetra {

Levels withMinimumGap(Levels measured) {
    if (measured.black + 1 < measured.white)
        return measured;
    const int white = std::min<int>(measured.white, 254) + 1;
    const int black = std::max<int>(measured.black, 1) - 1;
    return {static_cast<unsigned short>(black), static_cast<unsigned short>(white)};
}

LevelTable levelTable(Levels levels) {
    const int lo = std::min<int>(levels.black, 253);
    const int hi = std::clamp<int>(levels.white, 2, 255);

    LevelTable table{};
    for (int k = lo + 1; k < hi; ++k) {
        const double share = static_cast<double>(k - lo) / (hi - lo);
        table[static_cast<std::size_t>(k)] =
            static_cast<unsigned char>(std::floor(share * 255.0 + 0.5));
    }
    // Last, so that a white level at or below the black one makes a threshold.
    std::fill(table.begin() + hi, table.end(), static_cast<unsigned char>(255));
    return table;
}

} // namespace lumetra
