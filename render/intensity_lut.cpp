#include "render/intensity_lut.h"

#include "lumetra/colourise/pseudo.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>

namespace lumetra {
namespace {

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

/// The value that one between the limits is brought to by gamma, for a scale of colours.
std::uint16_t throughGamma(int value, ContrastLimits limits, double gamma) {
    const auto [low, high] = limits;
    const int inside = std::clamp(value, low, high);
    if (gamma == 1)
        return static_cast<std::uint16_t>(inside);
    const double span = std::max(high - low, 1);
    return static_cast<std::uint16_t>(low +
                                      std::lround(span * std::pow((inside - low) / span, gamma)));
}

template<class Value, class Change>
void changeRows(const cv::Mat& plane, cv::Mat& result, Change change) {
    for (int y = 0; y < plane.rows; ++y) {
        const auto* const values = plane.ptr<Value>(y);
        std::transform(values, values + plane.cols, result.ptr(y),
                       [&](Value value) { return static_cast<unsigned char>(change(value)); });
    }
}

template<class Change>
void changeValues(const cv::Mat& plane, cv::Mat& result, Change change) {
    if (plane.depth() == CV_8U)
        changeRows<unsigned char>(plane, result, change);
    else
        changeRows<std::uint16_t>(plane, result, change);
}

} // namespace

LinearRamp::LinearRamp(ContrastLimits limits, float slope, float start)
    : low_(static_cast<std::uint16_t>(limits.low)), high_(static_cast<std::uint16_t>(limits.high)),
      slope_(slope), start_(start) {}

// Starts have half of the way from a value to the next one that can occur, so that errors to either
// side do no harm.
LinearRamp::LinearRamp(ContrastLimits limits)
    : LinearRamp(limits, 255.0F / static_cast<float>(limits.high - limits.low),
                 0.5F + 0.25F / static_cast<float>(limits.high - limits.low)) {}

LinearRamp LinearRamp::toSlots(ContrastLimits limits) {
    const auto values = static_cast<float>(limits.high - limits.low + 1);
    return {limits, 255.0F / values, 0.5F / values};
}

/// The ramp and the formula both rise, so they are equal everywhere if they are equal on both sides
/// of every step of the formula.
bool LinearRamp::isExact() const {
    const int span = high_ - low_;
    for (int level = 1; level <= 255; ++level) {
        const int first = ((2 * level - 1) * span + 509) / 510; // 255 · first / span >= level − 1/2
        if (risen(static_cast<std::uint16_t>(first)) < level ||
            risen(static_cast<std::uint16_t>(first - 1)) >= level)
            return false;
    }
    return risen(static_cast<std::uint16_t>(span)) == 255;
}

bool IntensityLut::isSetTo(const Settings& settings) const {
    return settings_.bitDepth == settings.bitDepth && settings_.limits == settings.limits &&
           settings_.gamma == settings.gamma && settings_.isToSlots == settings.isToSlots;
}

/// Until it is set again: there may be no memory for that.
void IntensityLut::unset() {
    settings_ = {};
    ramp_.reset();
}

bool IntensityLut::set(int bitDepth, ContrastLimits limits, double gamma) {
    const Settings settings{bitDepth, limits, gamma, false};
    if (isSetTo(settings))
        return false;
    unset();
    if (const LinearRamp ramp(limits); gamma == 1 && ramp.isExact())
        ramp_ = ramp;
    else
        fillWithIntensities(settings);
    settings_ = settings;
    return true;
}

bool IntensityLut::setToSlots(int bitDepth, ContrastLimits limits, double gamma) {
    const Settings settings{bitDepth, limits, gamma, true};
    if (isSetTo(settings))
        return false;
    unset();
    fillWithSlots(settings);
    const LinearRamp ramp = LinearRamp::toSlots(limits);
    int differences = 0;
    for (std::size_t value = 0; value < entries_.size(); ++value)
        differences |= ramp(static_cast<std::uint16_t>(value)) ^ entries_[value];
    if (differences == 0 && bitDepth == 16) // 8 bits are looked up together with their colours
        ramp_ = ramp;
    settings_ = settings;
    return true;
}

void IntensityLut::fillWithIntensities(const Settings& settings) {
    entries_.resize(settings.bitDepth == 8 ? 256 : 65536);
    for (std::size_t value = 0; value < entries_.size(); ++value)
        entries_[value] = displayed(static_cast<int>(value), settings.limits, settings.gamma);
}

/// Slots are spread over the range of the values that are there, so behind all values stand the
/// ends of the range that is wanted. 16 bits, because all slots can be reached with them.
void IntensityLut::fillWithSlots(const Settings& settings) {
    const std::size_t size = settings.bitDepth == 8 ? 256 : 65536;
    entries_.resize(size);
    cv::Mat values(1, static_cast<int>(size) + 2, CV_16UC1);
    auto* const value = values.ptr<std::uint16_t>();
    for (std::size_t i = 0; i < size; ++i)
        value[i] = throughGamma(static_cast<int>(i), settings.limits, settings.gamma);
    value[size] = static_cast<std::uint16_t>(settings.limits.low);
    value[size + 1] = static_cast<std::uint16_t>(settings.limits.high);

    LevelColours slots;
    std::iota(slots.begin(), slots.end(), PackedColour{0});
    cv::Mat slotted;
    pseudo(values, slotted, slots);
    for (std::size_t i = 0; i < size; ++i)
        entries_[i] = static_cast<unsigned char>(slotted.ptr<std::uint16_t>()[3 * i] >> 8);
}

void IntensityLut::apply(const cv::Mat& plane, cv::Mat& result) const {
    CV_Assert(plane.type() == (settings_.bitDepth == 16 ? CV_16UC1 : CV_8UC1));
    result.create(plane.rows, plane.cols, CV_8UC1);
    if (ramp_)
        changeValues(plane, result, *ramp_);
    else
        changeValues(plane, result, [table = entries_.data()](auto value) { return table[value]; });
}

} // namespace lumetra
