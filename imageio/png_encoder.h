// PNG, written.
#pragma once

#include <opencv2/core/mat.hpp>

#include <QIODevice>

#include <optional>

namespace lumetra {

/// Writes an image as PNG, row by row: filter Sub, zlib's fastest level, runs alone as matches.
/// @param image  CV_8U or CV_16U with one channel, or three (blue, green, red).
/// @param pixelSize  The side of a pixel in µm, if it is to be told.
/// @throws Reason if the device does not take it, or the image is too large for PNG.
void encodePng(const cv::Mat& image, QIODevice& device, std::optional<double> pixelSize = {});

} // namespace lumetra
