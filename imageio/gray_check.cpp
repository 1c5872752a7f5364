#include "imageio/gray_check.h"

#include <opencv2/core.hpp>

#include <cstdint>

namespace lumetra {
namespace {

/// Looks row by row, so that an image with colours is told by the first row that has one.
template<class Value>
bool isGray(const cv::Mat& image) {
    for (int y = 0; y < image.rows; ++y) {
        const auto* row = image.ptr<Value>(y);
        unsigned differences = 0;
        for (int x = 0; x < image.cols; ++x, row += 3)
            differences |= static_cast<unsigned>((row[0] ^ row[1]) | (row[0] ^ row[2]));
        if (differences != 0)
            return false;
    }
    return true;
}

} // namespace

cv::Mat grayIfEqual(cv::Mat image) {
    if (image.channels() != 3 || (image.depth() != CV_8U && image.depth() != CV_16U))
        return image;
    if (!(image.depth() == CV_8U ? isGray<std::uint8_t>(image) : isGray<std::uint16_t>(image)))
        return image;
    cv::Mat gray;
    cv::extractChannel(image, gray, 0);
    return gray;
}

} // namespace lumetra
