#include "lumetra/colourise/reduction.h"

#include "lumetra/colourise/strips.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>

namespace lumetra {
namespace {

template<class Value>
unsigned char reduced(Value value) {
    if constexpr (std::is_integral_v<Value>) {
        return static_cast<unsigned char>(std::clamp<int>(value, 0, 255));
    } else {
        // 2⁵² leaves a `double` no bits for a fraction, so adding it rounds to a whole number.
        constexpr double noFraction = 0x1p52;
        const double positive = value > 0 ? static_cast<double>(value) : 0.0;
        const double inside = positive < 255 ? positive : 255.0;
        return static_cast<unsigned char>(inside + noFraction - noFraction);
    }
}

template<class Value>
cv::Mat reducedValues(const cv::Mat& image) {
    cv::Mat result(image.rows, image.cols, CV_MAKETYPE(CV_8U, image.channels()));
    auto* out = result.ptr();
    const auto channels = static_cast<std::size_t>(image.channels());
    forEachRun<Value>(image, [&](const Value* in, std::size_t pixels) {
        out = std::transform(in, in + pixels * channels, out, reduced<Value>);
    });
    return result;
}

} // namespace

cv::Mat reducedTo8Bits(const cv::Mat& image) {
    switch (image.depth()) {
    case CV_8U:
        return image;
    case CV_8S:
        return reducedValues<signed char>(image);
    case CV_16U:
        return reducedValues<std::uint16_t>(image);
    case CV_16S:
        return reducedValues<std::int16_t>(image);
    case CV_32S:
        return reducedValues<std::int32_t>(image);
    case CV_32F:
        return reducedValues<float>(image);
    case CV_64F:
        return reducedValues<double>(image);
    default: { // halves, each of which is a `float`, too
        cv::Mat floats;
        image.convertTo(floats, CV_32F);
        return reducedValues<float>(floats);
    }
    }
}

} // namespace lumetra
