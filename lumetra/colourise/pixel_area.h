// The view that every stage of colouring works on.
#pragma once

#include <opencv2/core/mat.hpp>

#include <cstddef>

namespace lumetra {

/// A rectangle of 24-bit pixels (blue, green, red) in somebody else's memory.
///
/// It serves a bitmap's pixel area, a `CV_8UC3` matrix and a strip of gray levels alike.
struct PixelArea {
    unsigned char* first; ///< First byte of the first row.
    std::size_t width;    ///< Pixels in a row.
    std::size_t height;   ///< Rows.
    std::size_t stride;   ///< Bytes from one row to the next, at least `rowBytes()`.

    std::size_t rowBytes() const { return 3 * width; }
    unsigned char* row(std::size_t y) const { return first + y * stride; }
};

/// The pixels of a `CV_8UC3` image.
PixelArea pixelArea(cv::Mat& image);

/// Copies the pixels of `from` to an area of the same width and height, leaving out the padding.
void copyPixels(PixelArea from, PixelArea to);

} // namespace lumetra
