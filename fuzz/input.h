// What the targets share: images made of the input, and the end of a run that went wrong.
#pragma once

#include "tests/support.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <QtGlobal>

#include <cstdio>
#include <cstdlib>

/// Ends the process, with an explanation, unless a condition holds.
inline void require(const testing::AssertionResult& condition, const char* what) {
    if (condition)
        return;
    std::fprintf(stderr, "%s: %s\n", what, condition.message());
    std::abort();
}

inline void require(bool condition, const char* what) {
    require(testing::AssertionResult(condition), what);
}

inline int number(FuzzedDataProvider& input, int least, int most) {
    return input.ConsumeIntegralInRange(least, most);
}

/// Any depth, half floats included, and any number of channels up to five.
inline int imageType(FuzzedDataProvider& input) {
    const int depth = number(input, CV_8U, CV_16F);
    return CV_MAKETYPE(depth, number(input, 1, 5));
}

/// An image whose bytes are some of the input's, again and again; by turns a view into a larger
/// one.
inline cv::Mat image(FuzzedDataProvider& input, cv::Size size, int type) {
    const cv::Size border = input.ConsumeBool() ? cv::Size(3, 2) : cv::Size();
    const cv::Mat parent(size + border, type);
    const auto pattern =
        input.ConsumeBytes<uchar>(static_cast<std::size_t>(number(input, 1, 4000)));
    for (int y = 0; y < parent.rows; ++y)
        for (std::size_t i = 0, length = parent.elemSize() * static_cast<std::size_t>(parent.cols);
             i < length; ++i)
            parent.data[static_cast<std::size_t>(y) * parent.step + i] =
                pattern.empty()
                    ? uchar{}
                    : pattern[(static_cast<std::size_t>(y) * length + i) % pattern.size()];
    return parent(cv::Rect(cv::Point(border) / 2, size));
}

/// A copy; of an empty image the image, whose type and sides a clone would lose.
inline cv::Mat copyOf(const cv::Mat& image) { return image.empty() ? image : image.clone(); }

/// Keeps the messages of Qt, of which there is one for each odd input, off the output.
inline void silenceQt() {
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
}
