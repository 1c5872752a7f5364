// Compositing spelt out: the sum of the images over the rectangle that all of them cover.
#pragma once

#include "support.h"
#include "user_interface.h"

#include <QList>
#include <QPoint>

/// A gray, three- or four-channel image of 8 or 16 unsigned bits, with three channels of `depth`.
inline cv::Mat plainUnified(const cv::Mat& image, int depth) {
    cv::Mat unified(image.size(), CV_MAKETYPE(depth, 3));
    fillSamples(unified, [&](int y, int x, int c) {
        const int sample = sampleAt(image, y, x, image.channels() == 1 ? 0 : c);
        if (depth == image.depth())
            return sample;
        return depth == CV_16U ? sample * 257 : (sample + 128) / 257;
    });
    return unified;
}

/// The composite of three-channel images of one type and size.
inline cv::Mat plainCanvas(const std::vector<cv::Mat>& images, const QList<QPoint>& offsets) {
    const auto byX = [](QPoint a, QPoint b) { return a.x() < b.x(); };
    const auto byY = [](QPoint a, QPoint b) { return a.y() < b.y(); };
    const auto [minX, maxX] = std::minmax_element(offsets.begin(), offsets.end(), byX);
    const auto [minY, maxY] = std::minmax_element(offsets.begin(), offsets.end(), byY);
    cv::Mat canvas(images[0].rows - (maxY->y() - minY->y()),
                   images[0].cols - (maxX->x() - minX->x()), images[0].type());
    const int largest = canvas.depth() == CV_16U ? 65535 : 255;
    fillSamples(canvas, [&, top = minY->y(), left = minX->x()](int y, int x, int c) {
        int sum = 0;
        for (int k = 0; k < offsets.size(); ++k)
            sum += sampleAt(images[static_cast<std::size_t>(k)], y + (offsets[k].y() - top),
                            x + (offsets[k].x() - left), c);
        return std::min(sum, largest);
    });
    return canvas;
}

/// That one message box was shown, the one about sizes, without a parent.
inline void expectSizeBox(const BoxReader& reader) {
    EXPECT_EQ(reader.boxes, QStringList("Fluorescence: Image Size doesn't match!"));
}
