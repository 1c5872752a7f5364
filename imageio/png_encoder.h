// PNG, written.
#pragma once

#include <opencv2/core/mat.hpp>

#include <QIODevice>

#include <optional>

namespace lumetra {

/// Writes an image as PNG, block by block: filter Sub, and prefix codes for what is left (see
/// DeflateEncoder). It is made for the noise of cameras and dark backgrounds.
/// @param image  CV_8U or CV_16U with one channel, or three (blue, green, red).
/// @param pixelSize  The side of a pixel in µm, if it is to be told.
/// @throws Reason if the device does not take it, or a side has more than a million pixels.
void encodePng(const cv::Mat& image, QIODevice& device, std::optional<double> pixelSize = {});

} // namespace lumetra
