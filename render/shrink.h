// Images made smaller.
#pragma once

#include "render/export.h"

#include <opencv2/core/mat.hpp>

namespace lumetra {

/// Makes an image smaller: each pixel is the mean of the area that it covers in the original, with
/// the shares of the pixels at its edges, rounded.
///
/// @param image   CV_8U or CV_16U, of any channels.
/// @param size    Columns and rows, from 1 to those of the image.
/// @param result  Receives the image, of the same type; may not be the image itself.
/// @throws cv::Exception for another type, or a size that is none of these.
LUMETRA_RENDER_EXPORT void shrink(const cv::Mat& image, cv::Size size, cv::Mat& result);

} // namespace lumetra
