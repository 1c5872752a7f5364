#include "lumetra/colourise/pixel_area.h"

#include <algorithm>

namespace lumetra {

PixelArea pixelArea(cv::Mat& image) {
    return {image.data, static_cast<std::size_t>(image.cols), static_cast<std::size_t>(image.rows),
            image.step[0]};
}

void copyPixels(PixelArea from, PixelArea to) {
    for (std::size_t y = 0; y < from.height; ++y)
        std::copy_n(from.row(y), from.rowBytes(), to.row(y));
}

} // namespace lumetra
