// The view of a bitmap that the stages of colouring work on.
#pragma once

#include "lumetra/levels/value_range.h"

#include <algorithm>
#include <cstddef>

namespace lumetra {

/// A rectangle of 24-bit pixels (blue, green, red) in somebody else's memory.
struct PixelArea {
    unsigned char* first; ///< First byte of the first row.
    std::size_t width;    ///< Pixels in a row.
    std::size_t height;   ///< Rows.
    std::size_t stride;   ///< Bytes from one row to the next, at least `rowBytes()`.

    std::size_t rowBytes() const { return 3 * width; }
    unsigned char* row(std::size_t y) const { return first + y * stride; }

    /// Calls `work(row)` for each row; it may not touch the padding behind the pixels.
    template<class Work>
    void forEachRow(Work work) const {
        for (std::size_t y = 0; y < height; ++y)
            work(row(y));
    }
};

/// The ranges of the three channels.
inline ColourRanges rangesOf(PixelArea area) {
    ColourRanges ranges;
    area.forEachRow([&](const unsigned char* row) { includeValues(ranges, row, area.rowBytes()); });
    return ranges;
}

/// Copies the pixels of `from` to an area of the same width and height, leaving out the padding.
inline void copyPixels(PixelArea from, PixelArea to) {
    for (std::size_t y = 0; y < from.height; ++y)
        std::copy_n(from.row(y), from.rowBytes(), to.row(y));
}

} // namespace lumetra
