// Smallest and largest samples of images.
#pragma once

#include "lumetra/colourise/strips.h"
#include "lumetra/levels/sample_range.h"

namespace lumetra {

/// The ranges of the three channels of an image, or three that together cover a single channel.
template<class Sample>
ThreeRanges<Sample> channelRanges(const cv::Mat& image) {
    const auto channels = static_cast<std::size_t>(image.channels());
    ThreeRanges<Sample> ranges;
    forEachRun<Sample>(image, [&](const Sample* in, std::size_t pixels) {
        includeSamples(ranges, in, pixels * channels);
    });
    return ranges;
}

/// The range of all samples of an image.
template<class Sample>
SampleRange<Sample> sampleRange(const cv::Mat& image) {
    return merged(channelRanges<Sample>(image));
}

} // namespace lumetra
