#include "lumetra/colourise/source_form.h"

#include "lumetra/colourise/reduction.h"

#include <opencv2/core.hpp>

namespace lumetra {
namespace {

cv::Mat withoutFourthChannel(const cv::Mat& image) {
    cv::Mat values = image;
    if (image.depth() == CV_16F) // whose channels cannot be rearranged
        image.convertTo(values, CV_32F);
    cv::Mat colours(image.size(), CV_MAKETYPE(values.depth(), 3));
    cv::mixChannels(values, colours, {0, 0, 1, 1, 2, 2});
    return colours;
}

} // namespace

SourceForm formOf(const cv::Mat& image) {
    if (image.empty())
        return SourceForm::other;
    switch (image.type()) {
    case CV_8UC1:
        return SourceForm::gray8;
    case CV_8UC3:
        return SourceForm::colour8;
    case CV_16UC1:
        return SourceForm::gray16;
    case CV_16UC3:
        return SourceForm::colour16;
    default:
        return SourceForm::other;
    }
}

cv::Mat colourable(const cv::Mat& src) {
    if (src.empty())
        return {};
    if (src.dims > 2)
        CV_Error(cv::Error::StsBadSize, "an image to be coloured has two dimensions");
    if (src.channels() == 4)
        return withoutFourthChannel(src);
    if (src.channels() == 1 && src.depth() != CV_16U)
        return reducedTo8Bits(src);
    return src;
}

} // namespace lumetra
