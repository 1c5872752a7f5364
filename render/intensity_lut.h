// Pixel values of any bit depth brought to eight bits for the eye.
#pragma once

#include "render/channel.h"

#include <opencv2/core/mat.hpp>

#include <cstdint>
#include <optional>
#include <vector>

namespace lumetra {

/// A line that rises between contrast limits, as arithmetic on 16-bit values, several of them at a
/// time.
///
/// The numbers are floats, whose rounding may miss a step of the formula for wide ranges.
class LUMETRA_RENDER_EXPORT LinearRamp {
public:
    /// From black to white, as `IntensityLut` promises without gamma.
    /// @param limits  0 <= low < high <= 65535.
    explicit LinearRamp(ContrastLimits limits);

    /// From the first to the last slot of a colormap.
    /// @param limits  0 <= low <= high <= 65535.
    static LinearRamp toSlots(ContrastLimits limits);

    /// Whether a line from black to white gives what is promised for every pixel value.
    bool isExact() const;

    std::uint16_t operator()(std::uint16_t value) const {
        // Minimum, maximum and difference in 16 bits, since twice as many fit into a register.
        const std::uint16_t upToHigh = value < high_ ? value : high_;
        const std::uint16_t between = upToHigh > low_ ? upToHigh : low_;
        return risen(static_cast<std::uint16_t>(between - low_));
    }

private:
    LinearRamp(ContrastLimits limits, float slope, float start);
    std::uint16_t risen(std::uint16_t aboveLow) const {
        return static_cast<std::uint16_t>(
            static_cast<int>(static_cast<float>(int{aboveLow}) * slope_ + start_));
    }

    std::uint16_t low_, high_;
    float slope_, start_;
};

/// What every pixel value of a plane becomes, through contrast limits and a gamma.
class LUMETRA_RENDER_EXPORT IntensityLut {
public:
    /// For planes of 8 or 16 bits. Tells whether anything changed; if it is set so already, nothing
    /// is done.
    ///
    /// A value v becomes 255 · ((v − low) / (high − low))^gamma, rounded, halves up; 0 up to low
    /// and 255 from high on. For 8 bits without gamma that is `Lumetra::StretchLevelsGray`.
    /// @param limits  0 <= low < high <= 65535.
    bool set(int bitDepth, ContrastLimits limits, double gamma);

    /// The same for the colours of a colormap, which are spread over the limits: a value becomes
    /// the slot of its colour, as `Lumetra::Pseudo` has them for an image with this range.
    /// @param limits  0 <= low <= high <= 65535.
    bool setToSlots(int bitDepth, ContrastLimits limits, double gamma);

    /// The line to calculate values by in place of looking them up, if there is one. The bytes are
    /// the same.
    const std::optional<LinearRamp>& ramp() const { return ramp_; }

    /// What all values become, unless there is a ramp: 256 or 65,536 entries.
    const std::vector<unsigned char>& entries() const { return entries_; }

    /// Brings a plane of the bit depth that was set to CV_8UC1, reusing the storage of `result`.
    void apply(const cv::Mat& plane, cv::Mat& result) const;

private:
    struct Settings {
        int bitDepth = 0;
        ContrastLimits limits;
        double gamma = 0;
        bool isToSlots = false;
    };
    bool isSetTo(const Settings& settings) const;
    void unset();
    void fillWithIntensities(const Settings& settings);
    void fillWithSlots(const Settings& settings);

    Settings settings_;
    std::optional<LinearRamp> ramp_;
    std::vector<unsigned char> entries_;
};

} // namespace lumetra
