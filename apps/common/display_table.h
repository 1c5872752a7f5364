// Samples of any depth brought to eight bits for the eye.
#pragma once

#include "apps/common/channel.h"

#include <opencv2/core/mat.hpp>

#include <vector>

namespace apps {

/// What every sample of a plane becomes, through a black and a white level and a gamma.
class DisplayTable {
public:
    /// Fills the table for planes of 8 or 16 bits; does nothing if it is the one already there.
    ///
    /// A sample v becomes 255 · ((v − low) / (high − low))^gamma, rounded, halves up; 0 up to low
    /// and 255 from high on. For 8 bits without gamma that is `Lumetra::StretchLevelsGray`.
    /// @param levels  low < high.
    void set(int bits, LevelRange levels, double gamma);

    /// What each sample becomes; 256 or 65,536 entries.
    const std::vector<unsigned char>& entries() const { return entries_; }

    /// Brings a plane of the depth that was set to CV_8UC1, reusing the storage of `result`.
    void apply(const cv::Mat& plane, cv::Mat& result) const;

private:
    std::vector<unsigned char> entries_;
    LevelRange levels_;
    double gamma_ = 0;
};

} // namespace apps
