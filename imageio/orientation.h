// Which way up an image is stored.
#pragma once

#include <opencv2/core/mat.hpp>

#include <cstddef>

namespace lumetra {

/// The image as an observer sees it.
/// @param orientation  1 to 8 as TIFF and EXIF count: 1 as stored, 2 mirrored left to right, 3
///                     turned by half, 4 mirrored top to bottom, 5 to 8 with rows and columns
///                     exchanged; anything else counts as 1.
cv::Mat oriented(const cv::Mat& stored, int orientation);

/// The orientation that a block of EXIF data (a TIFF header, then directories) tells; 1 if none.
int exifOrientation(const unsigned char* bytes, std::size_t count);

} // namespace lumetra
