// Pixel values of any bit depth brought to eight bits for the eye.
#pragma once

#include "render/channel.h"

#include <opencv2/core/mat.hpp>

#include <cstdint>
#include <optional>
#include <vector>

namespace lumetra {

/// Contrast limits without gamma as arithmetic on 16-bit values, several of them at a time: a line
/// that rises from black to white.
///
/// The numbers are floats, whose rounding may miss a step of the formula for wide ranges.
class LUMETRA_RENDER_EXPORT LinearRamp {
public:
    /// @param limits  0 <= low < high <= 65535.
    explicit LinearRamp(ContrastLimits limits);

    /// Whether it gives what `IntensityLut` promises for every pixel value.
    bool isExact() const;

    void apply(const std::uint16_t* values, unsigned char* displayed, std::size_t count) const;

private:
    int displayedAbove(int valuesAboveBlack) const;

    std::uint16_t low_, high_;
    float slope_, start_;
};

/// What every pixel value of a plane becomes, through contrast limits and a gamma.
class LUMETRA_RENDER_EXPORT IntensityLut {
public:
    /// For planes of 8 or 16 bits; does nothing if it is set so already.
    ///
    /// A value v becomes 255 · ((v − low) / (high − low))^gamma, rounded, halves up; 0 up to low
    /// and 255 from high on. For 8 bits without gamma that is `Lumetra::StretchLevelsGray`.
    /// @param limits  0 <= low < high <= 65535.
    void set(int bitDepth, ContrastLimits limits, double gamma);

    /// Whether values are calculated, not looked up. The bytes are the same.
    bool isRamp() const { return ramp_.has_value(); }

    /// Brings a plane of the bit depth that was set to CV_8UC1, reusing the storage of `result`.
    void apply(const cv::Mat& plane, cv::Mat& result) const;

private:
    void fill();

    int bitDepth_ = 0;
    ContrastLimits limits_;
    double gamma_ = 0;
    std::optional<LinearRamp> ramp_;
    std::vector<unsigned char> entries_; ///< 256 or 65,536, unless there is a ramp.
};

} // namespace lumetra
