// How the pixels of an image lie in memory.
#pragma once

namespace lumetra {

/// The order of an image's components.
enum class PixelFormat {
    bgr,  ///< CV_8UC3, or CV_16UC3 where pixel values keep their 16 bits.
    rgb,  ///< The same with red first.
    bgra, ///< CV_8UC4 for the screen, alpha 255: QImage::Format_RGB32.
};

} // namespace lumetra
