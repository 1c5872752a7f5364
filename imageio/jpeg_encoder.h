// JPEG, written.
#pragma once

#include <opencv2/core/mat.hpp>

#include <QIODevice>

namespace lumetra {

/// Writes an image as JPEG of quality 95, row by row.
/// @param image  CV_8UC1, or CV_8UC3 (blue, green, red).
/// @throws Reason if the device does not take it, or the image is too large or of another type.
void encodeJpeg(const cv::Mat& image, QIODevice& device);

} // namespace lumetra
