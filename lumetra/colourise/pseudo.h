// Colouring images of 8 and 16 bits through a colormap.
#pragma once

#include "lumetra/colourise/paint.h"
#include "lumetra/levels/value_range.h"

#include <opencv2/core/mat.hpp>

#include <cstddef>

namespace lumetra {

/// Colours each pixel by where its intensity lies between the smallest and the largest pixel value
/// of the image.
///
/// @param source   Two dimensions: `CV_8UC1` or `CV_8UC3`, which give `CV_8UC3`, or `CV_16UC1` or
///                 `CV_16UC3`, which give `CV_16UC3`. Only read.
/// @param dst      Replaced by an image of the source's rows and columns, whose storage is that of
///                 `dst` itself where nobody else can see it.
/// @param colours  The colours of slots 0 to 255, the last of which is never reached.
/// @return False for a source of another type or without pixels: `dst` is then untouched.
///
/// Thread-safe on distinct destinations.
bool pseudo(const cv::Mat& source, cv::Mat& dst, const LevelColours& colours);

/// The colour of each 8-bit luma in an image with this range, given those of the slots.
LevelColours lumaColours(ValueRange<unsigned char> range, const LevelColours& colours);

/// Colours 24-bit pixels by their luma; they may not overlap the coloured ones.
void paintByLuma(const unsigned char* pixels, unsigned char* coloured, std::size_t count,
                 const Palette& ofLuma);

} // namespace lumetra
