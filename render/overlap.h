// Where planes that are moved against each other overlap.
#pragma once

#include "render/channel.h"

#include <cstddef>
#include <vector>

namespace lumetra {

/// The part of each plane that an image of all channels shows.
///
/// Hidden channels count, so that the image keeps its size when one is hidden. Offsets may be any
/// `int`.
class LUMETRA_RENDER_EXPORT Overlap {
public:
    /// @param planeSize  Columns and rows of every plane.
    /// @throws RenderError if there is no channel, or the planes share no pixel once they are
    /// moved.
    Overlap(cv::Size planeSize, const std::vector<Channel>& channels);

    /// Columns and rows of the image.
    cv::Size imageSize() const { return imageSize_; }

    /// The part of the plane of channel `i`, of the size of the image. Its corner is the pixel of
    /// the plane that the image shows at (0, 0).
    cv::Rect partOf(std::size_t i) const { return {corners_.at(i), imageSize_}; }

private:
    std::vector<cv::Point> corners_;
    cv::Size imageSize_;
};

} // namespace lumetra
