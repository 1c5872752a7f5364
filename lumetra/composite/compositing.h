// The compositing core: where each image lies on the canvas, and how it is added.
#pragma once

#include <opencv2/core/mat.hpp>

#include <cstdint>
#include <vector>

namespace lumetra {

/// Where the images of one composite lie, from their offsets. All of it is in 64 bits, since
/// offsets may spread over twice the range of an `int`.
class Alignment {
public:
    /// @param offsets  One or more.
    explicit Alignment(const std::vector<cv::Point>& offsets);

    /// Rows and columns that all shifted images of one size cover; below 1 where they cover none.
    std::int64_t commonRows(int rows) const { return rows - (maxY_ - minY_); }
    std::int64_t commonColumns(int columns) const { return columns - (maxX_ - minX_); }

    /// The row and the column of an image with this offset that come first on the canvas, 0 or
    /// more for the offsets that the alignment was made from.
    std::int64_t firstRow(cv::Point offset) const { return offset.y - minY_; }
    std::int64_t firstColumn(cv::Point offset) const { return offset.x - minX_; }

    /// The part of an image with this offset that falls on the canvas, as a view; an empty image
    /// if the canvas has no pixels.
    cv::Mat visiblePart(const cv::Mat& image, cv::Point offset, const cv::Mat& canvas) const;

private:
    std::int64_t minX_;
    std::int64_t maxX_;
    std::int64_t minY_;
    std::int64_t maxY_;
};

/// Makes the canvas the sum of two or more parts, each value clamped to the largest of the bit
/// depth; zero for depths other than 8 and 16 bits unsigned. The parts have three channels and the
/// size and type of the canvas, which is not empty. The first part may be the canvas itself: the
/// others are then added to it.
void composite(const std::vector<cv::Mat>& parts, cv::Mat& canvas);

} // namespace lumetra
