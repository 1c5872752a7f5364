// What several tests share: images to try, plain statements of rules, comparisons that explain.
#pragma once

#include <gtest/gtest.h>
#include <opencv2/core.hpp>

#include <algorithm>
#include <climits>
#include <string>
#include <vector>

/// Every width from 1 to 17, so that all row paddings and vector remainders occur, one row, one
/// column, and a few wider images, up to some thousands of pixels.
inline std::vector<cv::Size> imageSizes() {
    std::vector<cv::Size> sizes;
    for (int width = 1; width <= 17; ++width)
        sizes.emplace_back(width, 3);
    sizes.insert(sizes.end(),
                 {{1, 1}, {1, 19}, {23, 1}, {64, 4}, {100, 3}, {130, 2}, {257, 5}, {2051, 2}});
    return sizes;
}

/// Reproducible noise: all values of the 8- and 16-bit unsigned depths; for the others values that
/// lie within 8 bits as well as beyond them on either side.
inline cv::Mat randomImage(cv::Size size, int type) {
    const int depth = CV_MAT_DEPTH(type);
    const bool isUnsigned = depth == CV_8U || depth == CV_16U;
    cv::Mat image(size, type);
    cv::RNG random(static_cast<uint64_t>(size.width * 1000 + size.height * 10 + type));
    random.fill(image, cv::RNG::UNIFORM, isUnsigned ? 0 : -100, depth == CV_16U ? 65536 : 256,
                true);
    if (depth >= CV_16S)
        image *= 1.5;
    return image;
}

/// 8-bit noise without the darkest and brightest values, so that stretching it changes it.
inline cv::Mat mediumContrast(cv::Size size, int type) {
    const cv::Mat image = randomImage(size, type);
    return CV_MAT_DEPTH(type) == CV_8U ? cv::Mat(image / 2 + cv::Scalar(40, 50, 60, 70)) : image;
}

/// The same image as a view into a larger matrix of noise, so that its rows do not touch.
inline cv::Mat viewInto(const cv::Mat& image) {
    cv::Mat parent = randomImage(image.size() + cv::Size(5, 3), image.type());
    cv::Mat view = parent(cv::Rect(cv::Point(2, 1), image.size()));
    image.copyTo(view);
    return view;
}

/// The whole matrix that an image is a view into.
inline cv::Mat parentOf(cv::Mat view) {
    cv::Size whole;
    cv::Point offset;
    view.locateROI(whole, offset);
    view.adjustROI(whole.height, whole.height, whole.width, whole.width);
    return view;
}

/// The same type, size and bytes.
inline testing::AssertionResult sameImage(const cv::Mat& actual, const cv::Mat& expected) {
    const auto describe = [](const cv::Mat& image) {
        return cv::typeToString(image.type()) + " " + std::to_string(image.rows) + " x " +
               std::to_string(image.cols);
    };
    if (describe(actual) != describe(expected))
        return testing::AssertionFailure()
               << describe(actual) << " in place of " << describe(expected);
    for (int y = 0; y < expected.rows; ++y) {
        const auto length = static_cast<std::ptrdiff_t>(expected.elemSize()) * expected.cols;
        const uchar* const end = expected.ptr(y) + length;
        const uchar* const differs = std::mismatch(expected.ptr(y), end, actual.ptr(y)).first;
        if (differs == end)
            continue;
        const auto x = (differs - expected.ptr(y)) / static_cast<int>(expected.elemSize());
        const cv::Rect pixel(static_cast<int>(x), y, 1, 1);
        return testing::AssertionFailure() << "row " << y << " column " << x << ": "
                                           << actual(pixel) << " in place of " << expected(pixel);
    }
    return testing::AssertionSuccess();
}

/// One sample of an 8- or 16-bit unsigned image.
inline int sampleAt(const cv::Mat& image, int y, int x, int channel) {
    const int i = x * image.channels() + channel;
    return image.depth() == CV_16U ? image.ptr<ushort>(y)[i] : image.ptr<uchar>(y)[i];
}

/// Gives each sample of an 8- or 16-bit unsigned image the value of `rule(y, x, channel)`, of which
/// only the low bits are kept.
template<class Rule>
void fillSamples(cv::Mat image, Rule rule) {
    for (int y = 0; y < image.rows; ++y)
        for (int x = 0; x < image.cols; ++x)
            for (int c = 0, i = x * image.channels(); c < image.channels(); ++c, ++i)
                if (image.depth() == CV_16U)
                    image.ptr<ushort>(y)[i] = static_cast<ushort>(rule(y, x, c));
                else
                    image.ptr<uchar>(y)[i] = static_cast<uchar>(rule(y, x, c));
}

/// What colouring makes of a source before it looks at a pixel: alpha dropped, and any depth but
/// the unsigned ones rounded and clamped to 8 bits.
inline cv::Mat reducedForColouring(const cv::Mat& source) {
    std::vector<cv::Mat> channels;
    cv::split(source, channels);
    channels.resize(std::min<std::size_t>(channels.size(), 3));
    cv::Mat reduced;
    cv::merge(channels, reduced);
    if (reduced.depth() != CV_16U)
        reduced.convertTo(reduced, CV_8U);
    return reduced;
}

/// A black and a white level.
using Levels = std::pair<int, int>;

/// The levels of some samples by a histogram, with the gap of two that they need at least.
inline Levels plainLevels(const std::vector<uchar>& samples) {
    int count[256] = {};
    for (uchar sample : samples)
        ++count[sample];
    int black = 0, white = 255;
    while (black < 255 && count[black] == 0)
        ++black;
    while (white > 0 && count[white] == 0)
        --white;
    if (black + 1 >= white)
        return {std::max(black, 1) - 1, std::min(white, 254) + 1};
    return {black, white};
}

/// A sample stretched between two levels, in whole numbers: the quotient rounded, halves up.
inline int plainStretch(int v, Levels levels) {
    const int lo = std::min(levels.first, 253);
    const int hi = std::clamp(levels.second, 2, 255);
    if (v >= hi)
        return 255;
    return v <= lo ? 0 : (2 * 255 * (v - lo) + (hi - lo)) / (2 * (hi - lo));
}
