// From other bit depths to 8 bits.
#pragma once

#include <opencv2/core/mat.hpp>

namespace lumetra {

/// The image with every pixel value rounded, halves to even, and clamped to 0 to 255 however large
/// it is; not-a-number becomes 0. An 8-bit image is returned as it is, a header on its own pixels.
///
/// For values that an `int` holds, the bitmap's encoder would do the same. Beyond them, its results
/// differ between processors; these do not.
cv::Mat reducedTo8Bits(const cv::Mat& image);

} // namespace lumetra
