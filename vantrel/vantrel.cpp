#include "vantrel/vantrel.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

namespace {

/// The value's share of full scale in another integer depth, to the nearest number there. No share
/// lies halfway between two, as full scale is odd in every depth.
template<class To, class From>
To sameShare(From value) {
    using Wide =
        std::conditional_t<std::max(sizeof(To), sizeof(From)) <= 2, std::uint32_t, std::uint64_t>;
    constexpr Wide fullFrom = std::numeric_limits<From>::max();
    constexpr Wide fullTo = std::numeric_limits<To>::max();
    const auto share = [](Wide magnitude) {
        return (2 * fullTo * magnitude + fullFrom) / (2 * fullFrom);
    };
    if (value >= 0)
        return static_cast<To>(share(static_cast<Wide>(value)));
    if constexpr (std::is_unsigned_v<To>)
        return 0;
    else // the lowest value lies one beyond the negative full scale, here as there
        return static_cast<To>(-static_cast<std::int64_t>(
            std::min(share(static_cast<Wide>(-static_cast<std::int64_t>(value))), fullTo + 1)));
}

/// A floating-point value rounded, halves to even, and clamped; 0 for not-a-number.
template<class To, class From>
To nearest(From value) {
    constexpr double smallest = std::numeric_limits<To>::min();
    constexpr double largest = std::numeric_limits<To>::max();
    // Next to 1.5 · 2⁵² a `double` has no bits left for a fraction, so the sum is rounded.
    constexpr double noFraction = 0x1.8p52;
    const double number = std::isnan(value) ? 0.0 : static_cast<double>(value);
    const double fromBelow = number > smallest ? number : smallest;
    const double inside = fromBelow < largest ? fromBelow : largest;
    return static_cast<To>(inside + noFraction - noFraction);
}

/// IEEE 754: a sign, 5 bits of exponent, 10 of fraction. The instructions of processors and their
/// replacements elsewhere differ in what they make of some values, so halves are converted here.
struct Half {
    std::uint16_t bits;
};

constexpr std::uint32_t infinityOfFloat = 0x7F800000, quietFloat = 0x400000;
constexpr std::uint32_t infinityOfHalf = 0x7C00, quietHalf = 0x200;
constexpr std::uint32_t otherBias = (127 - 15)
                                    << 23; ///< Between the exponents, as bits of a float.
constexpr int shorterFraction = 23 - 10;
constexpr float smallestHalf = 0x1p-24F, smallestNormalHalf = 0x1p-14F;

/// Exact; a quiet not-a-number for any.
float toFloat(Half half) {
    const std::uint32_t sign = std::uint32_t{half.bits} >> 15 << 31;
    const std::uint32_t magnitude = half.bits & 0x7FFF;
    std::uint32_t bits = (magnitude << shorterFraction) + otherBias;
    if (magnitude > infinityOfHalf)
        bits = infinityOfFloat | magnitude << shorterFraction | quietFloat;
    else if (magnitude == infinityOfHalf)
        bits = infinityOfFloat;
    else if (const float subnormal = static_cast<float>(magnitude) * smallestHalf;
             subnormal < smallestNormalHalf)
        std::memcpy(&bits, &subnormal, sizeof bits);
    bits |= sign;
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// The nearest one, halves to even; infinite from 65520 on, a quiet not-a-number for any.
Half toHalf(float value) {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    const std::uint32_t sign = bits >> 31 << 15, magnitude = bits & 0x7FFFFFFF;
    std::uint32_t half = 0;
    if (magnitude > infinityOfFloat)
        half = infinityOfHalf | quietHalf | (magnitude >> shorterFraction & 0x3FF);
    else if (std::fabs(value) >= 65520)
        half = infinityOfHalf;
    else if (std::fabs(value) < smallestNormalHalf) // in steps of the smallest half
        half =
            static_cast<std::uint32_t>(std::fabs(double{value}) / smallestHalf + 0x1p52 - 0x1p52);
    else
        half =
            (magnitude - otherBias + 0xFFF + (magnitude >> shorterFraction & 1)) >> shorterFraction;
    return {static_cast<std::uint16_t>(sign | half)};
}

/// A value in another depth, by the rules that the header gives. Halves go through `float`, which
/// holds each of them.
template<class To, class From>
To convertedValue(From value) {
    if constexpr (std::is_same_v<From, Half>)
        return convertedValue<To>(toFloat(value));
    else if constexpr (std::is_same_v<To, Half>)
        return toHalf(static_cast<float>(value));
    else if constexpr (std::is_floating_point_v<To>)
        return static_cast<To>(value);
    else if constexpr (std::is_integral_v<From>)
        return sameShare<To>(value);
    else
        return nearest<To>(value);
}

template<class To, class From>
void convertValues(const cv::Mat& image, cv::Mat& converted) {
    const auto count =
        static_cast<std::size_t>(image.cols) * static_cast<std::size_t>(image.channels());
    for (int y = 0; y < image.rows; ++y) {
        const From* const in = image.ptr<From>(y);
        std::transform(in, in + count, converted.ptr<To>(y), convertedValue<To, From>);
    }
}

/// Calls `work` with a value of the type that a depth stands for.
template<class Work>
void withValueOf(int depth, Work work) {
    switch (depth) {
    case CV_8U:
        return work(std::uint8_t{});
    case CV_8S:
        return work(std::int8_t{});
    case CV_16U:
        return work(std::uint16_t{});
    case CV_16S:
        return work(std::int16_t{});
    case CV_32S:
        return work(std::int32_t{});
    case CV_32F:
        return work(float{});
    case CV_64F:
        return work(double{});
    case CV_16F:
        return work(Half{});
    default:
        CV_Error(cv::Error::StsUnsupportedFormat, "pixel values of an unknown bit depth");
    }
}

/// The image in another depth, its channels as they are.
cv::Mat inDepth(const cv::Mat& image, int depth) {
    cv::Mat converted;
    if (image.depth() == depth)
        return image;
    converted.create(image.rows, image.cols, CV_MAKETYPE(depth, image.channels()));
    withValueOf(image.depth(), [&](auto from) {
        withValueOf(
            depth, [&](auto to) { convertValues<decltype(to), decltype(from)>(image, converted); });
    });
    return converted;
}

/// The same values under an integer depth: rearranging channels knows no half floats.
cv::Mat asIntegers(const cv::Mat& image) {
    if (image.depth() != CV_16F)
        return image;
    return {image.rows, image.cols, CV_MAKETYPE(CV_16U, image.channels()), image.data, image.step};
}

/// An image of one or four channels in three.
cv::Mat inThreeChannels(const cv::Mat& image) {
    cv::Mat colours(image.rows, image.cols, CV_MAKETYPE(image.depth(), 3));
    cv::Mat to = asIntegers(colours);
    const int step = image.channels() == 1 ? 0 : 1;
    cv::mixChannels(asIntegers(image), to, {0, 0, step, 1, 2 * step, 2});
    return colours;
}

} // namespace

void Vantrel::ConvertColorMode(const cv::Mat& src, cv::Mat& dst, int type) {
    if (CV_MAT_CN(type) != 3)
        CV_Error(cv::Error::StsBadArg, "the type to convert to has three channels");
    if (src.dims > 2)
        CV_Error(cv::Error::StsBadSize, "an image to be converted has two dimensions");
    if (src.empty()) {
        dst = cv::Mat(src.rows, src.cols, type);
        return;
    }
    const int channels = src.channels();
    if (channels != 1 && channels != 3 && channels != 4)
        CV_Error(cv::Error::StsUnsupportedFormat,
                 "an image to be converted has one, three or four channels");

    const cv::Mat values = inDepth(src, CV_MAT_DEPTH(type));
    if (channels != 3)
        dst = inThreeChannels(values);
    else
        dst = values.data == src.data ? values.clone() : values;
}
