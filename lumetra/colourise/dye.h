// Tinting images of 8 and 16 bits with the display colour of a dye.
#pragma once

#include "lumetra/colourise/tint.h"
#include "lumetra/levels/level_ramp.h"
#include "lumetra/levels/value_range.h"

#include <opencv2/core/mat.hpp>

namespace lumetra {

/// What is done to an image in the colour of a dye.
struct DyeSettings {
    Tint tint;            ///< The dye's colour; any values, though 0 to 255 is what makes sense.
    bool autoLevels;      ///< 8-bit images only: stretch each channel between its own levels first.
    bool dominantChannel; ///< 8-bit images only: then make each pixel gray, of the value that it
                          ///< has in the channel with the largest total.
};

/// Tints an image.
///
/// @param source  Two dimensions: `CV_8UC1` or `CV_8UC3`, which give `CV_8UC3`, or `CV_16UC1` or
///                `CV_16UC3`, which give `CV_16UC3`. Only read.
/// @param dst     Replaced by an image of the source's rows and columns, whose storage is that of
///                `dst` itself where nobody else can see it.
/// @return False for a source of another type or without pixels: `dst` is then untouched.
///
/// Thread-safe on distinct destinations.
bool dye(const cv::Mat& source, cv::Mat& dst, const DyeSettings& settings);

/// The automatic levels of pixels with these ranges, as a stretch for a dye of this colour.
Stretch<3> automaticStretch(const ColourRanges& ranges, const Tint& tint);

} // namespace lumetra
