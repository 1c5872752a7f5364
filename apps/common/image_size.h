// The sizes of images in messages.
#pragma once

#include <opencv2/core/mat.hpp>

#include <QString>

namespace lumetra {

/// "W x H".
QString sizeText(cv::Size size);
QString sizeText(const cv::Mat& image);

/// @throws Error with both names unless the images have equal sizes.
void requireEqualSizes(const QString& firstFile, const cv::Mat& first, const QString& file,
                       const cv::Mat& image);

} // namespace lumetra
