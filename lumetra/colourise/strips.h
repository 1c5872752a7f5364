// Walking over images in runs of pixels that stay in the first-level cache.
#pragma once

#include "lumetra/storage/image_storage.h"

#include <opencv2/core/mat.hpp>

#include <algorithm>
#include <cstddef>

namespace lumetra {

/// Pixels in a strip, at most.
constexpr std::size_t stripPixels = 2048;

/// A number of pixels side by side, cut into strips: `work(first, count)` with the place of a
/// strip's first pixel and how many it has.
template<class Work>
void cutIntoStrips(std::size_t pixels, Work work) {
    for (std::size_t first = 0; first < pixels; first += stripPixels)
        work(first, std::min(stripPixels, pixels - first));
}

/// An image in runs of pixels side by side, its rows or all of it: `work(in, pixels)`, with a
/// pointer to the first value.
template<class In, class Work>
void forEachRun(const cv::Mat& image, Work work) {
    const int runs = image.isContinuous() ? 1 : image.rows;
    const std::size_t pixels = image.total() / static_cast<std::size_t>(runs);
    for (int y = 0; y < runs; ++y)
        work(image.ptr<In>(y), pixels);
}

/// The runs of an image in strips: `work(in, count)`.
template<class In, class Work>
void forEachStrip(const cv::Mat& image, Work work) {
    const auto channels = static_cast<std::size_t>(image.channels());
    forEachRun<In>(image, [&](const In* in, std::size_t pixels) {
        cutIntoStrips(pixels, [&](std::size_t first, std::size_t count) {
            work(in + first * channels, count);
        });
    });
}

/// Makes `dst` the image of another one's size that `work(in, out, count)` fills strip by strip.
template<class In, class Out, class Work>
void makeFromStrips(const cv::Mat& image, cv::Mat& dst, int type, Work work) {
    cv::Mat result = resultImage(image, type, dst);
    auto* out = result.ptr<Out>();
    const auto channels = static_cast<std::size_t>(result.channels());
    forEachStrip<In>(image, [&](const In* in, std::size_t count) {
        work(in, out, count);
        out += count * channels;
    });
    dst = result;
}

} // namespace lumetra
