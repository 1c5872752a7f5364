// Whole images tinted or coloured as the library does it, RGB images among them.
#pragma once

#include "render/channel.h"
#include "render/level_policy.h"

#include <opencv2/core/mat.hpp>

#include <vector>

namespace lumetra {

/// The contrast limits that each component of an image has by a policy, blue first; none at all
/// where pixel values stay as they are.
///
/// @param image   8 or 16 bits, 1 or 3 channels.
/// @param policy  Limits that it fixes are whole numbers from 0 to 65535.
LUMETRA_RENDER_EXPORT std::vector<ContrastLimits> componentLimits(const cv::Mat& image,
                                                                  const LevelPolicy& policy);

/// Brings each component of an image to 8 bits through contrast limits of its own.
///
/// @param image   8 or 16 bits, 1 or 3 channels.
/// @param limits  One for each; none gives the image itself.
LUMETRA_RENDER_EXPORT cv::Mat stretched(const cv::Mat& image,
                                        const std::vector<ContrastLimits>& limits, double gamma);

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
