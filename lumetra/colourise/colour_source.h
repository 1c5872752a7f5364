// Bringing a source image into one of the forms that can be coloured.
#pragma once

#include <opencv2/core/mat.hpp>

namespace lumetra {

/// The source without a fourth channel, or a header on its own pixels.
///
/// An empty source of any type gives an empty 8-bit single-channel matrix.
///
/// @throws cv::Exception for more than two dimensions.
cv::Mat colourSource(const cv::Mat& src);

/// Whether colouring gives a 16-bit image, made directly, without a bitmap.
bool isSixteenBit(const cv::Mat& source);

/// The image that the bitmap is encoded from: a single-channel source as three equal 8-bit
/// channels, any other as it is.
cv::Mat preparedForBitmap(const cv::Mat& source);

} // namespace lumetra
