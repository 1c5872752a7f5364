// Whole images tinted or coloured as the library does it, RGB images among them.
#pragma once

#include "render/channel.h"
#include "render/level_policy.h"

#include <opencv2/core/mat.hpp>

namespace lumetra {

/// Brings each component of an image to 8 bits through contrast limits of its own.
///
/// @param image   8 or 16 bits, 1 or 3 channels.
/// @param policy  `none` gives the image itself.
LUMETRA_RENDER_EXPORT cv::Mat stretched(const cv::Mat& image, const LevelPolicy& policy,
                                        double gamma);

/// Multiplies an image by a colour, channel by channel, as `Lumetra::Dye` without automatic levels.
///
/// @param image     8 or 16 bits, 1 or 3 channels (blue, green, red).
/// @param dominant  Uses the brightest channel of an 8-bit RGB image only.
/// @param result    Receives three channels of the same bit depth.
/// @throws cv::Exception for another type of image.
LUMETRA_RENDER_EXPORT void tintImage(const cv::Mat& image, Colour colour, bool dominant,
                                     cv::Mat& result);

/// Colours an image by its brightness, from its smallest to its largest value, as
/// `Lumetra::Pseudo`.
///
/// @param image   8 or 16 bits, 1 or 3 channels (blue, green, red).
/// @param result  Receives three channels of the same bit depth.
/// @throws cv::Exception for another type of image.
LUMETRA_RENDER_EXPORT void colourImage(const cv::Mat& image, const Colormap& colormap,
                                       cv::Mat& result);

} // namespace lumetra
