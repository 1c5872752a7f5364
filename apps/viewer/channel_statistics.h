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

    int bits = 0;                    ///< Of the plane's type, 8 or 16; 0 before the first.
    int largest = 255;               ///< The largest pixel value of the source's bit depth.
    std::array<float, bins> curve{}; ///< How many pixels there are in each part of the axis.
    ContrastLimits axis;             ///< The pixel values at both ends of the curve.
    ContrastLimits range;            ///< The smallest and the largest pixel value.
    ContrastLimits automatic;        ///< What auto-contrast gives.
    double saturated = 0;            ///< The share of pixels that have the largest value or more.
};

/// How planes are measured.
struct MeasureOptions {
    /// Look at one row in a few only: enough for contrast limits and a curve, and it must be done
    /// thirty times a second.
    bool isLive = false;
    double saturatedPercent = 0.1; ///< What auto-contrast saturates at each end.
    bool showsDataRange = false;   ///< The axis is the range of the pixel values, or the full one.
};

inline bool operator==(const MeasureOptions& a, const MeasureOptions& b) {
    return a.isLive == b.isLive && a.saturatedPercent == b.saturatedPercent &&
           a.showsDataRange == b.showsDataRange;
}

/// The bit depth, 8, 10, 12, 14 or 16, of the smallest camera that gives such a pixel value.
int significantBits(int largestValue);

/// The largest pixel value of a bit depth.
inline int largestOf(int bits) { return (1 << bits) - 1; }

/// Measures planes, and keeps the memory that it needs.
class ChannelMeter {
public:
    /// @param bits    The bit depth of the source; 0 if it does not know. It is then guessed from
    ///                the largest pixel value so far.
    /// @param result  What was measured of the plane before.
    void measure(const cv::Mat& plane, int bits, const MeasureOptions& options,
                 ChannelStatistics& result);

private:
    Histogram histogram8_, histogram16_;
};

} // namespace lumetra
