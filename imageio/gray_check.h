// Images of three channels that are gray.
#pragma once

#include <opencv2/core/mat.hpp>

namespace lumetra {

/// One channel of an image whose three are equal in every pixel; else the image itself.
/// @param image  CV_8U or CV_16U with one channel or three; of another type it is given back.
cv::Mat grayIfEqual(cv::Mat image);

} // namespace lumetra
