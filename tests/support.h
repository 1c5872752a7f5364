// What several tests share: images to try, plain statements of rules, comparisons that explain.
#pragma once

#include <gtest/gtest.h>
#include <opencv2/core.hpp>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

constexpr int allDepths[] = {CV_8U, CV_8S, CV_16U, CV_16S, CV_32S, CV_32F, CV_64F, CV_16F};

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
    if (depth == CV_16F) { // which is not filled with noise directly
        cv::Mat halves;
        randomImage(size, CV_MAKETYPE(CV_32F, CV_MAT_CN(type))).convertTo(halves, CV_16F);
        return halves;
    }
    cv::Mat image(size, type);
    cv::RNG random(static_cast<uint64_t>(size.width * 1000 + size.height * 10 + type));
    random.fill(image, cv::RNG::UNIFORM, isUnsigned ? 0 : -100, depth == CV_16U ? 65536 : 256,
                true);
    if (!isUnsigned && depth != CV_8S)
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

/// The samples of any depth as they are. Of 32-bit integers, OpenCV's own conversion keeps only the
/// first 24 bits on some processors.
inline cv::Mat exactSamples(const cv::Mat& image) {
    cv::Mat samples(image.size(), CV_MAKETYPE(CV_64F, image.channels()));
    if (image.depth() != CV_32S)
        image.convertTo(samples, CV_64F);
    else
        for (int y = 0; y < image.rows; ++y)
            std::copy_n(image.ptr<int>(y), image.cols * image.channels(), samples.ptr<double>(y));
    return samples;
}

/// A column of samples: all that a depth of 8 or 16 bits has, or those of another between which
/// rounding and clamping differ.
inline cv::Mat samplesOf(int depth) {
    if (CV_ELEM_SIZE1(depth) <= 2) {
        const bool isByte = CV_ELEM_SIZE1(depth) == 1;
        cv::Mat bits(isByte ? 256 : 65536, 1, isByte ? CV_8U : CV_16U);
        fillSamples(bits, [depth](int y, int, int) {
            const bool isAnyNaN = depth == CV_16F && (y & 0x7FFF) > 0x7C00;
            return isAnyNaN ? 0x7E00 : y; // one stands for all
        });
        return cv::Mat(bits.size(), CV_MAKETYPE(depth, 1), bits.data).clone();
    }
    std::vector<double> values = {std::numeric_limits<double>::quiet_NaN()};
    const auto add = [&](double value) { values.insert(values.end(), {value, -value}); };
    for (double value = 0; value < 300; value += 0.25)
        add(value);
    const double epsilon = std::numeric_limits<double>::epsilon();
    for (double near : {0.5, 1.5, 2.5, 254.5, 65535.5, 2147483646.5, 2147483647.5})
        for (double value :
             {near, near * (1 - epsilon), near * (1 + epsilon), near * (1 - 0x1p-23)})
            add(value);
    for (double value :
         {5e-324, 32766.5, 32767.5, 65534.5, 16777217.0, 2147483647.0, 2147483648.0, 3e9,
          4294967297.0, 9.5e18, 2e19, 1e30, 3.5e38, 1e300, std::numeric_limits<double>::infinity()})
        add(value);
    cv::Mat samples;
    cv::Mat(values).convertTo(samples, depth);
    return samples;
}

/// What colouring makes of a source before it looks at a pixel: alpha dropped, and any depth but
/// the unsigned ones rounded, halves to even, and clamped to 8 bits.
inline cv::Mat reducedForColouring(const cv::Mat& source) {
    const cv::Mat samples = exactSamples(source);
    const bool isDeep = source.depth() == CV_16U;
    cv::Mat reduced(source.size(),
                    CV_MAKETYPE(isDeep ? CV_16U : CV_8U, std::min(source.channels(), 3)));
    fillSamples(reduced, [&](int y, int x, int c) {
        const double sample = samples.ptr<double>(y)[x * source.channels() + c];
        const double largest = isDeep ? 65535 : 255;
        return std::isnan(sample) ? 0 : std::clamp(std::nearbyint(sample), 0.0, largest);
    });
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
