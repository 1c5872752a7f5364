#include "lumetra/colourise/colour_source.h"

#include <opencv2/core.hpp>

namespace lumetra {

cv::Mat colourSource(const cv::Mat& src) {
    if (src.dims > 2)
        CV_Error(cv::Error::StsBadSize, "an image to be coloured has two dimensions");
    if (src.empty())
        return {};
    if (src.channels() != 4)
        return src;
    cv::Mat samples = src;
    if (src.depth() == CV_16F) // whose channels cannot be rearranged
        src.convertTo(samples, CV_32F);
    cv::Mat colours(src.size(), CV_MAKETYPE(samples.depth(), 3));
    cv::mixChannels(samples, colours, {0, 0, 1, 1, 2, 2});
    return colours;
}

bool isSixteenBit(const cv::Mat& source) {
    return source.type() == CV_16UC1 || source.type() == CV_16UC3;
}

cv::Mat preparedForBitmap(const cv::Mat& source) {
    if (source.channels() != 1)
        return source;
    cv::Mat gray;
    source.convertTo(gray, CV_8U);
    cv::Mat colours(gray.size(), CV_8UC3);
    if (!gray.empty())
        cv::mixChannels(gray, colours, {0, 0, 0, 1, 0, 2});
    return colours;
}

} // namespace lumetra
