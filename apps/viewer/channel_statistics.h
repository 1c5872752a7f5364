// What is measured of each channel while it is shown.
#pragma once

#include "apps/common/channel_spec.h"
#include "render/histogram.h"

#include <opencv2/core/mat.hpp>

#include <array>

namespace lumetra {

/// What is shown about the pixel values of a plane.
struct ChannelStatistics {
    static constexpr int bins = 256;

    int bits = 0;   ///< Of the plane's type, 8 or 16; 0 before the first.
    int axis = 255; ///< The pixel value at the right end of the curve; 0 is at the left.
    std::array<float, bins> curve{}; ///< The histogram with logarithmic height, 0 to 1.
    ContrastLimits range;            ///< The smallest and the largest pixel value.
    ContrastLimits automatic;        ///< Contrast limits that saturate 0.1 % at each end.
    double saturated = 0;            ///< The share of pixels at the end of the bit depth's range.
};

/// The bit depth, 8, 10, 12, 14 or 16, of the smallest camera that gives such a pixel value.
int significantBits(int largestValue);

/// The largest pixel value of a bit depth.
inline int largestOf(int bits) { return (1 << bits) - 1; }

/// Measures planes, and keeps the memory that it needs.
class ChannelMeter {
public:
    /// @param isLive  Looks at one row in a few only: enough for contrast limits and a curve, and
    /// it
    ///                must be done thirty times a second.
    void measure(const cv::Mat& plane, bool isLive, ChannelStatistics& result);

private:
    Histogram histogram8_, histogram16_;
};

} // namespace lumetra
