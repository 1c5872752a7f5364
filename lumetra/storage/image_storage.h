// The memory that results are written into.
#pragma once

#include <opencv2/core/mat.hpp>

namespace lumetra {

/// An image of the source's rows and columns for a result that is going to be assigned to `dst`:
/// on the storage of `dst` itself if that has this size and type, came from OpenCV's default
/// allocator and cannot be seen by anybody else, or else new. An application that colours frame
/// after frame into one image so needs no new memory.
cv::Mat resultImage(const cv::Mat& source, int type, const cv::Mat& dst);

} // namespace lumetra
