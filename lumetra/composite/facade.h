// Between a host's images and offsets and the compositing core.
#pragma once

#include <QList>
#include <QPoint>

#include <opencv2/core/mat.hpp>

#include <vector>

namespace lumetra {

/// Offsets as the core takes them.
std::vector<cv::Point> pointsOf(const QList<QPoint>& offsets);

/// Type of the canvas: three channels of the first image's depth.
int canvasType(const cv::Mat& first);

/// Brings an image to the canvas type, in place.
///
/// @throws cv::Exception for more than two dimensions, or channels that cannot be converted.
void unifyColourMode(cv::Mat& image, int type);

/// Shows the user the message box about images of unlike size. Without a QApplication, or on
/// another thread than its own, there are no widgets and nothing is shown.
void reportSizeMismatch();

} // namespace lumetra
