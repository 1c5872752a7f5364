#include "vantrel/vantrel.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

bool isInteger(int depth) { return depth <= CV_32S; }

struct Range {
    double smallest;
    double largest;
};

template<class Sample>
constexpr Range rangeOf() {
    return {std::numeric_limits<Sample>::min(), std::numeric_limits<Sample>::max()};
}

Range integerRange(int depth) {
    switch (depth) {
    case CV_8U:
        return rangeOf<unsigned char>();
    case CV_8S:
        return rangeOf<signed char>();
    case CV_16U:
        return rangeOf<unsigned short>();
    case CV_16S:
        return rangeOf<short>();
    default:
        return rangeOf<int>();
    }
}

/// The samples times a factor as `double`, clamped to the range of an integer depth: rounding them
/// afterwards cannot leave it, as it could for samples that no integer holds.
cv::Mat scaledSamples(const cv::Mat& image, double factor, Range range) {
    cv::Mat samples;
    image.convertTo(samples, CV_64F);
    auto* const first = samples.ptr<double>();
    std::transform(first, first + samples.total() * static_cast<std::size_t>(samples.channels()),
                   first, [=](double sample) {
                       return std::isnan(sample)
                                  ? 0.0
                                  : std::clamp(sample * factor, range.smallest, range.largest);
                   });
    return samples;
}

/// The image in another depth, its channels as they are.
cv::Mat inDepth(const cv::Mat& image, int depth) {
    if (image.depth() == depth)
        return image;
    cv::Mat converted;
    if (isInteger(depth)) {
        const Range range = integerRange(depth);
        const double factor =
            isInteger(image.depth()) ? range.largest / integerRange(image.depth()).largest : 1.0;
        scaledSamples(image, factor, range).convertTo(converted, depth);
    } else {
        image.convertTo(converted, depth);
    }
    return converted;
}

/// The same samples under an integer depth: rearranging channels knows no half floats.
cv::Mat asIntegers(const cv::Mat& image) {
    if (image.depth() != CV_16F)
        return image;
    return {image.rows, image.cols, CV_MAKETYPE(CV_16U, image.channels()), image.data, image.step};
}

} // namespace

void Vantrel::ConvertColorMode(const cv::Mat& src, cv::Mat& dst, int type) {
    if (CV_MAT_CN(type) != 3)
        CV_Error(cv::Error::StsBadArg, "the type to convert to has three channels");
    if (src.dims > 2)
        CV_Error(cv::Error::StsBadSize, "an image to be converted has two dimensions");

    cv::Mat converted(src.rows, src.cols, type);
    if (!src.empty()) {
        if (src.channels() != 1 && src.channels() != 3 && src.channels() != 4)
            CV_Error(cv::Error::StsUnsupportedFormat,
                     "an image to be converted has one, three or four channels");
        const cv::Mat samples = inDepth(src, CV_MAT_DEPTH(type));
        cv::Mat channels = asIntegers(converted);
        const int step = src.channels() == 1 ? 0 : 1;
        cv::mixChannels(asIntegers(samples), channels, {0, 0, step, 1, 2 * step, 2});
    }
    dst = converted;
}
