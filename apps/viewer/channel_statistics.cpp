#include "apps/viewer/channel_statistics.h"

#include "render/level_policy.h"

#include <algorithm>
#include <cmath>

namespace lumetra {
namespace {

/// Every so many rows of a plane, as a plane.
cv::Mat someRows(const cv::Mat& plane, int apart) {
    const int rows = (plane.rows + apart - 1) / apart;
    return {rows, plane.cols, plane.type(), plane.data, plane.step * static_cast<size_t>(apart)};
}

void drawCurve(const Histogram& histogram, int axis,
               std::array<float, ChannelStatistics::bins>& curve) {
    const int width = (axis + 1) / ChannelStatistics::bins;
    auto next = histogram.counts().begin();
    for (float& height : curve) {
        std::uint64_t sum = 0;
        for (int i = 0; i < width; ++i)
            sum += *next++;
        height = static_cast<float>(std::log1p(static_cast<double>(sum)));
    }
    const float highest = *std::max_element(curve.begin(), curve.end());
    for (float& height : curve)
        height /= std::max(highest, 1e-6F);
}

} // namespace

int significantBits(int largestValue) {
    int bits = 8;
    while (bits < 16 && largestValue > largestOf(bits))
        bits += 2;
    return bits;
}

void ChannelMeter::measure(const cv::Mat& plane, bool isLive, ChannelStatistics& result) {
    constexpr std::size_t pixelsForLive = 1 << 18;
    Histogram& histogram = plane.depth() == CV_8U ? histogram8_ : histogram16_;
    histogram.clear();
    const int apart = isLive ? static_cast<int>(plane.total() / pixelsForLive) + 1 : 1;
    histogram.add(someRows(plane, apart));
    result.bits = histogram.bitDepth();
    result.range = histogram.range();
    result.automatic = *levelsOf(histogram, LevelPolicy{});
    const int largest = result.range.high;
    result.axis = largestOf(significantBits(largest));
    const bool isAtEnd = largest == result.axis;
    const auto count = histogram.counts()[static_cast<std::size_t>(largest)];
    result.saturated = isAtEnd && !histogram.isEmpty()
                           ? static_cast<double>(count) / static_cast<double>(histogram.total())
                           : 0;
    drawCurve(histogram, result.axis, result.curve);
}

} // namespace lumetra
