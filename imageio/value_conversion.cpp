#include "imageio/value_conversion.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace lumetra {
namespace {

constexpr double lastStep = 65535;

template<class Value>
FiniteRange rangeOf(const cv::Mat& plane) {
    FiniteRange range;
    double low = std::numeric_limits<double>::infinity(), high = -low;
    for (int y = 0; y < plane.rows; ++y) {
        const auto* row = plane.ptr<Value>(y);
        for (int x = 0; x < plane.cols; ++x) {
            const auto value = static_cast<double>(row[x]);
            if (!std::isfinite(value))
                continue;
            low = std::min(low, value);
            high = std::max(high, value);
            ++range.finite;
        }
    }
    range.notFinite = plane.total() - range.finite;
    if (range.finite > 0) {
        range.low = low;
        range.high = high;
    }
    return range;
}

template<class Value>
void convert(const cv::Mat& plane, double low, double high, cv::Mat& out) {
    // Halves, so that the difference of the largest and the smallest double is finite.
    const double extent = high / 2 - low / 2;
    for (int y = 0; y < plane.rows; ++y) {
        const auto* in = plane.ptr<Value>(y);
        auto* to = out.ptr<std::uint16_t>(y);
        for (int x = 0; x < plane.cols; ++x) {
            const auto value = static_cast<double>(in[x]);
            double step = 0;
            if (!std::isfinite(value) || value <= low)
                step = 0;
            else if (value >= high)
                step = lastStep;
            else
                step = std::floor((value / 2 - low / 2) / extent * lastStep + 0.5);
            to[x] = static_cast<std::uint16_t>(std::min(step, lastStep));
        }
    }
}

/// Calls `act` with a value of the plane's type.
template<class Act>
void withTypeOf(const cv::Mat& plane, const Act& act) {
    CV_Assert(plane.channels() == 1);
    switch (plane.depth()) {
    case CV_8U:
        return act(std::uint8_t{});
    case CV_16U:
        return act(std::uint16_t{});
    case CV_32F:
        return act(float{});
    default:
        CV_Assert(plane.depth() == CV_64F);
        return act(double{});
    }
}

} // namespace

void FiniteRange::add(const FiniteRange& other) {
    notFinite += other.notFinite;
    if (other.finite == 0)
        return;
    low = finite > 0 ? std::min(low, other.low) : other.low;
    high = finite > 0 ? std::max(high, other.high) : other.high;
    finite += other.finite;
}

bool needsConversion(const cv::Mat& plane) {
    return plane.depth() != CV_8U && plane.depth() != CV_16U;
}

FiniteRange finiteRange(const cv::Mat& plane) {
    FiniteRange range;
    withTypeOf(plane, [&](auto value) { range = rangeOf<decltype(value)>(plane); });
    return range;
}

cv::Mat toDisplay16(const cv::Mat& plane, double low, double high) {
    cv::Mat out(plane.size(), CV_16UC1);
    withTypeOf(plane, [&](auto value) { convert<decltype(value)>(plane, low, high, out); });
    return out;
}

double fromDisplay16(double step, double low, double high) {
    const double share = step / lastStep;
    return low * (1 - share) + high * share;
}

} // namespace lumetra
