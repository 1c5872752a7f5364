#include "render/intensity_lut.h"

#include "lumetra/levels/level_ramp.h"

#include <opencv2/core.hpp>

#include <cmath>
#include <cstdint>
#include <numeric>

namespace lumetra {
namespace {

/// Within these limits a stretch takes them as they are; beyond, it would move them.
bool isStretchable(ContrastLimits limits) { return limits.low <= 253 && limits.high >= 2; }

unsigned char displayed(int value, ContrastLimits limits, double gamma) {
    if (value >= limits.high)
        return 255;
    if (value <= limits.low)
        return 0;
    const std::int64_t above = value - limits.low;
    const std::int64_t span = limits.high - limits.low;
    if (gamma == 1)
        return static_cast<unsigned char>((2 * 255 * above + span) / (2 * span));
    const double share = static_cast<double>(above) / static_cast<double>(span);
    return static_cast<unsigned char>(std::floor(255 * std::pow(share, gamma) + 0.5));
}

template<class Value>
void lookUp(const Value* values, const unsigned char* table, unsigned char* displayed,
            std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        displayed[i] = table[values[i]];
}

} // namespace

LinearRamp::LinearRamp(ContrastLimits limits)
    : low_(static_cast<std::uint16_t>(limits.low)), high_(static_cast<std::uint16_t>(limits.high)),
      slope_(255.0F / static_cast<float>(limits.high - limits.low)),
      // One half, to round, and half of the way from there to the next value that can occur, so
      // that errors to either side do no harm.
      start_(0.5F + 0.25F / static_cast<float>(limits.high - limits.low)) {}

int LinearRamp::displayedAbove(int valuesAboveBlack) const {
    return static_cast<int>(static_cast<float>(valuesAboveBlack) * slope_ + start_);
}

/// The ramp and the formula both rise, so they are equal everywhere if they are equal on both sides
/// of every step of the formula.
bool LinearRamp::isExact() const {
    const int span = high_ - low_;
    for (int level = 1; level <= 255; ++level) {
        const int first = ((2 * level - 1) * span + 509) / 510; // 255 · first / span >= level − 1/2
        if (displayedAbove(first) < level || displayedAbove(first - 1) >= level)
            return false;
    }
    return displayedAbove(span) == 255;
}

void LinearRamp::apply(const std::uint16_t* values, unsigned char* displayed,
                       std::size_t count) const {
    const std::uint16_t low = low_, high = high_; // bytes that are written could be anybody's
    const float slope = slope_, start = start_;
    for (std::size_t i = 0; i < count; ++i) {
        // Minimum, maximum and difference in 16 bits, since twice as many fit into a register.
        const std::uint16_t upToWhite = values[i] < high ? values[i] : high;
        const std::uint16_t between = upToWhite > low ? upToWhite : low;
        const auto aboveBlack = static_cast<std::uint16_t>(between - low);
        const auto rise = static_cast<float>(int{aboveBlack}) * slope + start;
        displayed[i] = static_cast<unsigned char>(static_cast<int>(rise));
    }
}

void IntensityLut::set(int bitDepth, ContrastLimits limits, double gamma) {
    if (bitDepth_ == bitDepth && limits_ == limits && gamma_ == gamma)
        return;
    bitDepth_ = bitDepth;
    limits_ = limits;
    gamma_ = gamma;
    ramp_.reset();
    if (bitDepth == 16 && gamma == 1 && LinearRamp(limits).isExact())
        ramp_.emplace(limits);
    else
        fill();
}

void IntensityLut::fill() {
    entries_.resize(bitDepth_ == 8 ? 256 : 65536);
    if (bitDepth_ == 8 && gamma_ == 1 && limits_.high < 256 && isStretchable(limits_)) {
        std::iota(entries_.begin(), entries_.end(), static_cast<unsigned char>(0));
        const Stretch<1> stretch({Levels{static_cast<unsigned short>(limits_.low),
                                         static_cast<unsigned short>(limits_.high)}});
        stretch(entries_.data(), entries_.size());
        return;
    }
    for (std::size_t value = 0; value < entries_.size(); ++value)
        entries_[value] = displayed(static_cast<int>(value), limits_, gamma_);
}

void IntensityLut::apply(const cv::Mat& plane, cv::Mat& result) const {
    CV_Assert(plane.type() == (bitDepth_ == 16 ? CV_16UC1 : CV_8UC1));
    result.create(plane.rows, plane.cols, CV_8UC1);
    const auto columns = static_cast<std::size_t>(plane.cols);
    for (int y = 0; y < plane.rows; ++y) {
        auto* const out = result.ptr<unsigned char>(y);
        if (ramp_)
            ramp_->apply(plane.ptr<std::uint16_t>(y), out, columns);
        else if (bitDepth_ == 16)
            lookUp(plane.ptr<std::uint16_t>(y), entries_.data(), out, columns);
        else
            lookUp(plane.ptr<unsigned char>(y), entries_.data(), out, columns);
    }
}

} // namespace lumetra
