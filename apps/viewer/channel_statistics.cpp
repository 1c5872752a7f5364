#include "apps/viewer/channel_statistics.h"

#include "render/level_policy.h"

#include <algorithm>
#include <numeric>

namespace lumetra {
namespace {

/// Every so many rows of a plane, as a plane.
cv::Mat someRows(const cv::Mat& plane, int apart) {
    const int rows = (plane.rows + apart - 1) / apart;
    return {rows, plane.cols, plane.type(), plane.data, plane.step * static_cast<size_t>(apart)};
}

/// Adds up the counts between the ends of the axis in parts of equal width.
void drawCurve(const Histogram& histogram, ChannelStatistics& result) {
    const auto& counts = histogram.counts();
    const auto width =
        static_cast<std::size_t>(result.axis.high) - static_cast<std::size_t>(result.axis.low) + 1;
    const auto at = [&](std::size_t bin) {
        return static_cast<std::size_t>(result.axis.low) + bin * width / ChannelStatistics::bins;
    };
    for (std::size_t bin = 0; bin < result.curve.size(); ++bin) {
        const std::size_t first = at(bin), last = std::max(at(bin + 1), first + 1);
        std::uint64_t sum = 0;
        for (std::size_t value = first; value < last; ++value)
            sum += counts[value];
        result.curve[bin] = static_cast<float>(sum);
    }
}

} // namespace

int significantBits(int largestValue) {
    int bits = 8;
    while (bits < 16 && largestValue > largestOf(bits))
        bits += 2;
    return bits;
}

void ChannelMeter::measure(const cv::Mat& plane, int bits, const MeasureOptions& options,
                           ChannelStatistics& result) {
    constexpr std::size_t pixelsForLive = 1 << 18;
    Histogram& histogram = plane.depth() == CV_8U ? histogram8_ : histogram16_;
    histogram.clear();
    const int apart = options.isLive ? static_cast<int>(plane.total() / pixelsForLive) + 1 : 1;
    histogram.add(someRows(plane, apart));
    if (result.bits != histogram.bitDepth())
        result.largest = 0;
    result.bits = histogram.bitDepth();
    result.range = histogram.range();
    LevelPolicy policy;
    policy.percent = options.saturatedPercent;
    result.automatic = *levelsOf(histogram, policy);
    const int guessed = largestOf(significantBits(result.range.high));
    result.largest = bits > 0 ? std::min(largestOf(bits), largestOf(result.bits))
                              : std::max(guessed, result.largest);
    const auto& counts = histogram.counts();
    const auto saturated =
        std::accumulate(counts.begin() + result.largest, counts.end(), std::uint64_t{0});
    result.saturated = histogram.isEmpty() ? 0
                                           : static_cast<double>(saturated) /
                                                 static_cast<double>(histogram.total());
    result.axis = options.showsDataRange ? result.range : ContrastLimits{0, result.largest};
    result.axis.high = std::max({result.axis.high, result.range.high, result.axis.low + 1});
    if (result.axis.high > largestOf(result.bits)) // of an image that is white everywhere
        result.axis = {result.range.low - 1, result.range.high};
    drawCurve(histogram, result);
}

} // namespace lumetra
