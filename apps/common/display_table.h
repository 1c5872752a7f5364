// Samples of any depth brought to eight bits for the eye.
#pragma once

#include "apps/common/channel.h"

#include <opencv2/core/mat.hpp>

#include <cstdint>
#include <optional>
#include <vector>

namespace apps {

/// Levels without gamma as arithmetic on samples of 16 bits, several of them at a time: a line that
/// rises from black to white.
///
/// The numbers are floats, whose rounding may miss a step of the formula for wide ranges.
class LevelLine {
public:
    /// @param levels  0 <= low < high <= 65535.
    explicit LevelLine(LevelRange levels);

    /// Whether it gives what `DisplayTable` promises for every sample.
    bool isExact() const;

    void apply(const std::uint16_t* samples, unsigned char* shown, std::size_t count) const;

private:
    int shownAbove(int samplesAboveBlack) const;

    std::uint16_t low_, high_;
    float slope_, start_;
};

/// What every sample of a plane becomes, through a black and a white level and a gamma.
class DisplayTable {
public:
    /// For planes of 8 or 16 bits; does nothing if it is set so already.
    ///
    /// A sample v becomes 255 · ((v − low) / (high − low))^gamma, rounded, halves up; 0 up to low
    /// and 255 from high on. For 8 bits without gamma that is `Lumetra::StretchLevelsGray`.
    /// @param levels  0 <= low < high <= 65535.
    void set(int bits, LevelRange levels, double gamma);

    /// Whether samples are calculated, not looked up. The bytes are the same.
    bool isLine() const { return line_.has_value(); }

    /// Brings a plane of the depth that was set to CV_8UC1, reusing the storage of `result`.
    void apply(const cv::Mat& plane, cv::Mat& result) const;

private:
    void fill();

    int bits_ = 0;
    LevelRange levels_;
    double gamma_ = 0;
    std::optional<LevelLine> line_;
    std::vector<unsigned char> entries_; ///< 256 or 65,536, unless there is a line.
};

} // namespace apps
