#include "lumetra/colourise/colour_source.h"

#include <opencv2/core.hpp>

namespace lumetra {
namespace {

cv::Mat withoutFourthChannel(const cv::Mat& image) {
    cv::Mat samples = image;
    if (image.depth() == CV_16F) // whose channels cannot be rearranged
        image.convertTo(samples, CV_32F);
    cv::Mat colours(image.size(), CV_MAKETYPE(samples.depth(), 3));
    cv::mixChannels(samples, colours, {0, 0, 1, 1, 2, 2});
    return colours;
}

cv::Mat reducedTo8Bit(const cv::Mat& image) {
    cv::Mat reduced;
    image.convertTo(reduced, CV_8U);
    return reduced;
}

} // namespace

ColourWay colourWay(const cv::Mat& source) {
    if (source.empty())
        return ColourWay::bitmap;
    switch (source.type()) {
    case CV_8UC1:
        return ColourWay::gray8;
    case CV_8UC3:
        return ColourWay::colour8;
    case CV_16UC1:
        return ColourWay::gray16;
    case CV_16UC3:
        return ColourWay::colour16;
    default:
        return ColourWay::bitmap;
    }
}

cv::Mat colourSource(const cv::Mat& src) {
    if (src.dims > 2)
        CV_Error(cv::Error::StsBadSize, "an image to be coloured has two dimensions");
    if (src.empty())
        return {};
    if (src.channels() == 4)
        return withoutFourthChannel(src);
    if (src.channels() == 1 && src.depth() != CV_8U && src.depth() != CV_16U)
        return reducedTo8Bit(src);
    return src;
}

} // namespace lumetra
