// The memory that results are written into.
#pragma once

#include <opencv2/core/mat.hpp>

namespace lumetra {

/// As `image.create(rows, cols, type)`, with the system told about new storage of many megabytes:
/// in large pages its first use costs a quarter.
void createImage(cv::Mat& image, int rows, int cols, int type);

/// An image of the source's rows and columns for a result that is going to be assigned to `dst`:
/// on the storage of `dst` itself if that has this size and type and nobody else could tell, or
/// else new. An application that colours frame after frame into one image so needs no new memory.
cv::Mat resultImage(const cv::Mat& source, int type, const cv::Mat& dst);

} // namespace lumetra
