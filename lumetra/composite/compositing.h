// The compositing core: where each image lies on the canvas, and how it is added.
#pragma once

#include <QList>
#include <QPoint>

#include <opencv2/core/mat.hpp>

#include <cstdint>
#include <vector>

namespace lumetra {

/// Where the images of one composite lie, from their offsets.
class Alignment {
public:
    explicit Alignment(const QList<QPoint>& offsets);

    /// Rows and columns that all shifted images of one size cover; below 1 where they cover none.
    /// In 64 bits, since offsets may spread over twice the range of an `int`.
    std::int64_t commonRows(int rows) const { return rows - (maxY_ - minY_); }
    std::int64_t commonColumns(int columns) const { return columns - (maxX_ - minX_); }

    /// The part of an image with this offset that falls on the canvas, as a view; an empty image
    /// if the canvas has no pixels.
    cv::Mat visiblePart(const cv::Mat& image, QPoint offset, const cv::Mat& canvas) const;

private:
    std::int64_t minX_;
    std::int64_t maxX_;
    std::int64_t minY_;
    std::int64_t maxY_;
};

/// Type of the canvas: three channels of the first image's depth.
int canvasType(const cv::Mat& first);

/// Brings an image to the canvas type, in place.
///
/// @throws cv::Exception for more than two dimensions, or channels that cannot be converted.
void unifyColourMode(cv::Mat& image, int type);

/// Shows the user the message box about images of unlike size. Without a QApplication, or on
/// another thread than its own, there are no widgets and nothing is shown.
void reportSizeMismatch();

/// Makes the canvas the sum of two or more parts, each sample clamped to the largest of the depth;
/// zero for depths that are not composited. The parts have the size and type of the canvas, which
/// is not empty. The first part may be the canvas itself: the others are then added to it.
void composite(const std::vector<cv::Mat>& parts, cv::Mat& canvas);

} // namespace lumetra
