/// @file
/// Colour-mode conversion. A host may link another library that defines the same function.

#ifndef VANTREL_VANTREL_H
#define VANTREL_VANTREL_H

#include <opencv2/core/mat.hpp>

namespace Vantrel {

/// Brings an image to three channels (blue, green, red) of the bit depth that is asked for.
///
/// @param src   Image of one, three or four channels and any depth, or an empty image.
/// @param dst   Receives an image of its own with the rows and columns of `src` and exactly the
///              type `type`. Replaced as a whole, never written into; may be the same object as
///              `src`, which may be a view into a larger matrix.
/// @param type  A three-channel type code, such as `CV_8UC3` or `CV_16UC3`.
///
/// - Channels: gray becomes three equal channels, the fourth of four channels is dropped.
/// - Integer depths to one another: values keep their share of full scale, rounded (255 of 8 bits
///   is 65535 of 16 bits); negative ones become 0 where the new depth has no sign.
/// - Floating-point values to an integer depth: rounded and clamped, not-a-number becoming 0.
/// - To a floating-point depth: values stay as they are.
/// - An empty image stays empty.
///
/// @throws cv::Exception for other channel counts, more than two dimensions, or a `type` that does
///         not have three channels; `dst` is then unchanged.
///
/// Thread-safe on distinct destinations.
void ConvertColorMode(const cv::Mat& src, cv::Mat& dst, int type);

} // namespace Vantrel

#endif
