// Coloured images laid over each other.
#pragma once

#include "render/channel.h"

#include <opencv2/core/mat.hpp>

#include <vector>

namespace lumetra {

/// Lays images that have their colours already over each other, as the renderer does it with the
/// channels that it has tinted. A sum is that of `Lumetra::Composite`.
///
/// @param images    CV_8UC3 or CV_16UC3, all of one type and size; only read.
/// @param channels  One for each: of them, offset, blend and visibility count. Hidden images count
///                  for the part that is shown.
/// @param result    Receives the part that all images share once they are moved, in their type. Its
///                  storage is used again if it has the size and type; it may not overlap an image.
/// @throws RenderError if there is no image, sizes, types or counts differ, or the offsets leave no
///         common pixel; cv::Exception for images of another type.
LUMETRA_RENDER_EXPORT void compositeImages(const std::vector<cv::Mat>& images,
                                           const std::vector<Channel>& channels, cv::Mat& result);

} // namespace lumetra
