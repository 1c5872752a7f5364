// Smallest and largest pixel values of images.
#pragma once

#include "lumetra/colourise/strips.h"
#include "lumetra/levels/value_range.h"

namespace lumetra {

/// The ranges of the three channels of an image, or three that together cover a single channel.
template<class Value>
ThreeRanges<Value> channelRanges(const cv::Mat& image) {
    const auto channels = static_cast<std::size_t>(image.channels());
    ThreeRanges<Value> ranges;
    forEachRun<Value>(image, [&](const Value* in, std::size_t pixels) {
        includeValues(ranges, in, pixels * channels);
    });
    return ranges;
}

/// The range of all pixel values of an image.
template<class Value>
ValueRange<Value> valueRange(const cv::Mat& image) {
    return merged(channelRanges<Value>(image));
}

} // namespace lumetra
