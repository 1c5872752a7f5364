// What is measured of each channel while it is shown.
#pragma once

#include "apps/common/channel.h"
#include "apps/common/histogram.h"

#include <opencv2/core/mat.hpp>

#include <array>

namespace apps {

/// What the user is told about the samples of a plane.
struct Measure {
    static constexpr int bins = 256;

    int bits = 0;   ///< Of the plane's depth, 8 or 16; 0 before the first.
    int axis = 255; ///< The sample at the right end of the curve; 0 is at the left.
    std::array<float, bins> curve{}; ///< The histogram with logarithmic height, 0 to 1.
    LevelRange range;                ///< The smallest and the largest sample.
    LevelRange automatic;            ///< Without 0.1 % of the samples at each end.
    double saturated = 0;            ///< The share of samples at the end of the converter's range.
};

/// The bits, 8, 10, 12, 14 or 16, of the smallest converter that gives such a sample.
int converterBits(int largestSample);

/// The largest sample of so many bits.
inline int largestOf(int bits) { return (1 << bits) - 1; }

/// Measures planes, and keeps the memory that it needs.
class Measurer {
public:
    /// @param isLive  Looks at one row in a few only: enough for levels and a curve, and it must be
    ///                done thirty times a second.
    void measure(const cv::Mat& plane, bool isLive, Measure& result);

private:
    Histogram shallow_, deep_;
};

} // namespace apps
